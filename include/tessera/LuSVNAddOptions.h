// Options of adding items to version control (see LuSVNOptions.h for the
// conventions of the family).
//
//   field                kind   default
//   recursive            flag   true    add the contents of directories too
//   force                flag   true    no error for items already versioned
//   matchIgnorePatterns  flag   true    skip items the ignore patterns match
//   depth                depth  unknown how deep to add; unknown: recursive decides
//   addParents           flag   false   add the unversioned parents too
//
// Depth and addParents need a backend of 1.5 or later (see LuSVNNode::add).
// Description (of the first three fields only):
// "{ <LuSVNAddOptions: 0x...> recursive: 1, force: 1, matchIgnore: 1 }".
#pragma once

#include <tessera/LuSVNOptions.h>

class TESSERA_EXPORT LuSVNAddOptions : public LuSVNOptions {
public:
    static LuSVNAddOptions defaults() { return {}; }

    bool recursive() const { return recursive_; }
    bool force() const { return force_; }
    bool matchIgnorePatterns() const { return matchIgnorePatterns_; }
    /// Each keeps only the lowest bit of its argument.
    void setRecursive(int recursive) { recursive_ = recursive & 1; }
    void setForce(int force) { force_ = force & 1; }
    void setMatchIgnorePatterns(int matchIgnorePatterns) { matchIgnorePatterns_ = matchIgnorePatterns & 1; }

    /// How deep to add; LuSVNDepthUnknown lets recursive decide (infinity
    /// or empty).
    LuSVNDepth depth() const { return depth_; }
    /// Stored as given.
    void setDepth(LuSVNDepth depth) { depth_ = depth; }
    /// Whether the unversioned parents of the path are added too.
    bool addParents() const { return addParents_; }
    /// Keeps only the lowest bit of its argument.
    void setAddParents(int addParents) { addParents_ = addParents & 1; }

    std::string description() const override;

private:
    unsigned recursive_ : 1 = 1;
    unsigned force_ : 1 = 1;
    unsigned matchIgnorePatterns_ : 1 = 1;
    unsigned addParents_ : 1 = 0;
    LuSVNDepth depth_ = LuSVNDepthUnknown;
};
