// Options of locking (see LuSVNOptions.h for the conventions of the family).
//
//   field        kind   default
//   stealLocks   flag   false   take over locks that others hold
//
// Description: "{ <LuSVNLockOptions: 0x...> stealLocks: 0 }".
#pragma once

#include <tessera/LuSVNOptions.h>

class TESSERA_EXPORT LuSVNLockOptions : public LuSVNOptions {
public:
    static LuSVNLockOptions defaults() { return {}; }

    bool stealLocks() const { return stealLocks_; }
    /// Keeps only the lowest bit of its argument.
    void setStealLocks(int stealLocks) { stealLocks_ = stealLocks & 1; }

    std::string description() const override;

private:
    unsigned stealLocks_ : 1 = 0;
};
