// A backend on top of the calling thread's stack for the length of a scope,
// without the pool of LuSVNBackendFrame: for work in pools that the caller
// owns.
#pragma once

#include <memory>
#include <utility>

#include <tessera/LuSVNBundleStack.h>

namespace tessera_private {

class LuSVNBundlePushed {
public:
    explicit LuSVNBundlePushed(std::shared_ptr<LuSVNBundleProxy> bundle) { LuSVNBundlePush(std::move(bundle)); }
    ~LuSVNBundlePushed() { LuSVNBundlePop(); }
    LuSVNBundlePushed(const LuSVNBundlePushed&) = delete;
    LuSVNBundlePushed& operator=(const LuSVNBundlePushed&) = delete;
};

}  // namespace tessera_private
