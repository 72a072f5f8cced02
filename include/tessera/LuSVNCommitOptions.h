// Options of committing (see LuSVNOptions.h for the conventions of the
// family).
//
//   field          kind    default
//   depth          depth   LuSVNDepthUnknown (-2)
//   releaseLocks   flag    true    release the locks of the committed items
//
// Description: "{ <LuSVNCommitOptions: 0x...> depth: -2, releaseLocks: 1 }".
#pragma once

#include <tessera/LuSVNOptions.h>

class TESSERA_EXPORT LuSVNCommitOptions : public LuSVNOptions {
public:
    static LuSVNCommitOptions defaults() { return {}; }

    LuSVNDepth depth() const { return depth_; }
    void setDepth(LuSVNDepth depth) { depth_ = depth; }

    bool releaseLocks() const { return releaseLocks_; }
    /// Keeps only the lowest bit of its argument.
    void setReleaseLocks(int releaseLocks) { releaseLocks_ = releaseLocks & 1; }

    std::string description() const override;

private:
    LuSVNDepth depth_ = LuSVNDepthUnknown;
    unsigned releaseLocks_ : 1 = 1;
};
