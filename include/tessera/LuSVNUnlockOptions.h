// Options of unlocking (see LuSVNOptions.h for the conventions of the
// family).
//
//   field        kind   default
//   breakLocks   flag   false   remove locks that others hold
//
// Description: "{ <LuSVNUnlockOptions: 0x...> breakLocks: 0 }".
#pragma once

#include <tessera/LuSVNOptions.h>

class TESSERA_EXPORT LuSVNUnlockOptions : public LuSVNOptions {
public:
    static LuSVNUnlockOptions defaults() { return {}; }

    bool breakLocks() const { return breakLocks_; }
    /// Keeps only the lowest bit of its argument.
    void setBreakLocks(int breakLocks) { breakLocks_ = breakLocks & 1; }

    std::string description() const override;

private:
    unsigned breakLocks_ : 1 = 0;
};
