// The top of the calling thread's backend stack without a reference of the
// caller's own, for the lookup behind every entry-point call.
#pragma once

#include <memory>

#include <tessera/LuSVNBundleProxy.h>

namespace tessera_private {

/// As LuSVNBundleCurrent, but valid only until the thread's next push or pop.
const std::shared_ptr<LuSVNBundleProxy>& LuSVNBundleTop();

}  // namespace tessera_private
