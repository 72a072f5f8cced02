// Options of adding items to version control (see LuSVNOptions.h for the
// conventions of the family).
//
//   field                kind   default
//   recursive            flag   true    add the contents of directories too
//   force                flag   true    no error for items already versioned
//   matchIgnorePatterns  flag   true    skip items the ignore patterns match
//
// Description: "{ <LuSVNAddOptions: 0x...> recursive: 1, force: 1, matchIgnore: 1 }".
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

    std::string description() const override;

private:
    unsigned recursive_ : 1 = 1;
    unsigned force_ : 1 = 1;
    unsigned matchIgnorePatterns_ : 1 = 1;
};
