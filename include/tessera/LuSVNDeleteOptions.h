// Options of deleting (see LuSVNOptions.h for the conventions of the
// family).
//
//   field   kind   default
//   force   flag   false   delete modified and unversioned items too
//
// Description: "{ <LuSVNDeleteOptions: 0x...> force: 0 }".
#pragma once

#include <tessera/LuSVNOptions.h>

class TESSERA_EXPORT LuSVNDeleteOptions : public LuSVNOptions {
public:
    static LuSVNDeleteOptions defaults() { return {}; }

    bool force() const { return force_; }
    /// Keeps only the lowest bit of its argument.
    void setForce(int force) { force_ = force & 1; }

    std::string description() const override;

private:
    unsigned force_ : 1 = 0;
};
