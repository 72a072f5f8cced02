// Options of marking conflicts resolved (see LuSVNOptions.h for the
// conventions of the family).
//
//   field       kind   default
//   recursive   flag   true
//
// Description: "{ <LuSVNResolveOptions: 0x...> recursive: 1 }".
#pragma once

#include <tessera/LuSVNOptions.h>

class TESSERA_EXPORT LuSVNResolveOptions : public LuSVNOptions {
public:
    static LuSVNResolveOptions defaults() { return {}; }

    bool recursive() const { return recursive_; }
    /// Keeps only the lowest bit of its argument.
    void setRecursive(int recursive) { recursive_ = recursive & 1; }

    std::string description() const override;

private:
    unsigned recursive_ : 1 = 1;
};
