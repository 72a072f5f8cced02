// Options of moving (see LuSVNOptions.h for the conventions of the family).
//
//   field   kind      default
//   force   boolean   false   move modified items too
//
// Description: "{ <LuSVNMoveOptions: 0x...> force: 0 }".
#pragma once

#include <tessera/LuSVNOptions.h>

class TESSERA_EXPORT LuSVNMoveOptions : public LuSVNOptions {
public:
    static LuSVNMoveOptions defaults() { return {}; }

    bool force() const { return force_; }
    void setForce(bool force) { force_ = force; }

    std::string description() const override;

private:
    bool force_ = false;
};
