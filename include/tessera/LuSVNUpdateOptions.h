// Options of updating (see LuSVNOptions.h for the conventions of the
// family).
//
//   field                         kind    default
//   depth                         depth   LuSVNDepthUnknown (-2)
//   depthIsSticky                 flag    false   make the depth the working copy's own
//   processExternals              flag    true
//   allowUnversionedObstructions  flag    false
//
// Description: "{ <LuSVNUpdateOptions: 0x...> depth: -2, depthIsSticky: 0,
// processExternals: 1, allowUnversionedObstructions: 0 }" (on one line).
#pragma once

#include <tessera/LuSVNOptions.h>

class TESSERA_EXPORT LuSVNUpdateOptions : public LuSVNOptions {
public:
    static LuSVNUpdateOptions defaults() { return {}; }

    LuSVNDepth depth() const { return depth_; }
    void setDepth(LuSVNDepth depth) { depth_ = depth; }

    bool depthIsSticky() const { return depthIsSticky_; }
    bool processExternals() const { return processExternals_; }
    bool allowUnversionedObstructions() const { return allowUnversionedObstructions_; }
    /// Each keeps only the lowest bit of its argument.
    void setDepthIsSticky(int depthIsSticky) { depthIsSticky_ = depthIsSticky & 1; }
    void setProcessExternals(int processExternals) { processExternals_ = processExternals & 1; }
    void setAllowUnversionedObstructions(int allow) { allowUnversionedObstructions_ = allow & 1; }

    std::string description() const override;

private:
    LuSVNDepth depth_ = LuSVNDepthUnknown;
    unsigned depthIsSticky_ : 1 = 0;
    unsigned processExternals_ : 1 = 1;
    unsigned allowUnversionedObstructions_ : 1 = 0;
};
