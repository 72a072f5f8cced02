// Options of importing an unversioned tree into a repository (see
// LuSVNOptions.h for the conventions of the family).
//
//   field                kind   default
//   recursive            flag   true
//   matchIgnorePatterns  flag   true    skip items the ignore patterns match
//
// Description: "{ <LuSVNImportOptions: 0x...> recursive: 1, matchIgnorePatterns: 1 }".
#pragma once

#include <tessera/LuSVNOptions.h>

class TESSERA_EXPORT LuSVNImportOptions : public LuSVNOptions {
public:
    static LuSVNImportOptions defaults() { return {}; }

    bool recursive() const { return recursive_; }
    bool matchIgnorePatterns() const { return matchIgnorePatterns_; }
    /// Each keeps only the lowest bit of its argument.
    void setRecursive(int recursive) { recursive_ = recursive & 1; }
    void setMatchIgnorePatterns(int matchIgnorePatterns) { matchIgnorePatterns_ = matchIgnorePatterns & 1; }

    std::string description() const override;

private:
    unsigned recursive_ : 1 = 1;
    unsigned matchIgnorePatterns_ : 1 = 1;
};
