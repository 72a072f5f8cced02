// Options of checking out a working copy (see LuSVNOptions.h for the
// conventions of the family).
//
//   field                         kind            default
//   revision                      revision spec   LuSVNRevisionSpec::HEAD()
//   depth                         depth           LuSVNDepthInfinity (3)
//   processExternals              flag            true
//   allowUnversionedObstructions  flag            false
//
// Description, without the revision and with two blanks before
// processExternals:
// "{ <LuSVNCheckOutOptions: 0x...>, depth: 3,  processExternals: 1, allowUnversionedObstructions: 0}".
#pragma once

#include <tessera/LuSVNOptionsWithRevision.h>

class TESSERA_EXPORT LuSVNCheckOutOptions : public LuSVNOptionsWithRevision {
public:
    LuSVNCheckOutOptions();
    static LuSVNCheckOutOptions defaults() { return {}; }

    LuSVNDepth depth() const { return depth_; }
    void setDepth(LuSVNDepth depth) { depth_ = depth; }

    bool processExternals() const { return processExternals_; }
    bool allowUnversionedObstructions() const { return allowUnversionedObstructions_; }
    /// Each keeps only the lowest bit of its argument.
    void setProcessExternals(int processExternals) { processExternals_ = processExternals & 1; }
    void setAllowUnversionedObstructions(int allow) { allowUnversionedObstructions_ = allow & 1; }

    std::string description() const override;

private:
    LuSVNDepth depth_ = LuSVNDepthInfinity;
    unsigned processExternals_ : 1 = 1;
    unsigned allowUnversionedObstructions_ : 1 = 0;
};
