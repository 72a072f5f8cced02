// Options of reverting (see LuSVNOptions.h for the conventions of the
// family).
//
//   field   kind    default
//   depth   depth   LuSVNDepthInfinity (3)
//
// Description: "{ <LuSVNRevertOptions: 0x...> depth: 3 }".
#pragma once

#include <tessera/LuSVNOptions.h>

class TESSERA_EXPORT LuSVNRevertOptions : public LuSVNOptions {
public:
    static LuSVNRevertOptions defaults() { return {}; }

    LuSVNDepth depth() const { return depth_; }
    void setDepth(LuSVNDepth depth) { depth_ = depth; }

    std::string description() const override;

private:
    LuSVNDepth depth_ = LuSVNDepthInfinity;
};
