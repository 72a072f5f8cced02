// Options of marking conflicts resolved (see LuSVNOptions.h for the
// conventions of the family).
//
//   field            kind    default
//   recursive        flag    true
//   conflictChoice   choice  merged
//
// Description: "{ <LuSVNResolveOptions: 0x...> recursive: 1 }".
#pragma once

#include <tessera/LuSVNOptions.h>

/// Subversion's conflict choices (svn_wc_conflict_choice_t values).
enum LuSVNConflictChoice : std::int32_t {
    LuSVNConflictChoicePostpone = 0,       ///< leave the conflict
    LuSVNConflictChoiceBase = 1,           ///< the original text
    LuSVNConflictChoiceTheirsFull = 2,     ///< the incoming text, whole
    LuSVNConflictChoiceMineFull = 3,       ///< the local text, whole
    LuSVNConflictChoiceTheirsConflict = 4, ///< the incoming side of each conflicting hunk
    LuSVNConflictChoiceMineConflict = 5,   ///< the local side of each conflicting hunk
    LuSVNConflictChoiceMerged = 6,         ///< the working file as it is
};

class TESSERA_EXPORT LuSVNResolveOptions : public LuSVNOptions {
public:
    static LuSVNResolveOptions defaults() { return {}; }

    bool recursive() const { return recursive_; }
    /// Keeps only the lowest bit of its argument.
    void setRecursive(int recursive) { recursive_ = recursive & 1; }

    /// How to resolve; merged (what svn resolved does) by default.
    LuSVNConflictChoice conflictChoice() const { return conflictChoice_; }
    /// Stored as given.
    void setConflictChoice(LuSVNConflictChoice choice) { conflictChoice_ = choice; }

    std::string description() const override;

private:
    LuSVNConflictChoice conflictChoice_ = LuSVNConflictChoiceMerged;
    unsigned recursive_ : 1 = 1;
};
