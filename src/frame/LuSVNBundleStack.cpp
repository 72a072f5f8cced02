#include <tessera/LuSVNBundleStack.h>
#include <tessera/LuSVNPlatformExceptions.h>

#include <vector>

#include "LuSVNBackendFrame.h"

namespace {
// Created empty on a thread's first push; proxies on it are held strongly.
thread_local std::vector<std::shared_ptr<LuSVNBundleProxy>> bundleStack;
}  // namespace

void LuSVNBundlePush(std::shared_ptr<LuSVNBundleProxy> proxy)
{
    bundleStack.push_back(std::move(proxy));
}

std::shared_ptr<LuSVNBundleProxy> LuSVNBundlePop()
{
    if (bundleStack.empty())
        throw LuSVNGenericException("Unbalanced bundle stack pop");
    std::shared_ptr<LuSVNBundleProxy> top = std::move(bundleStack.back());
    bundleStack.pop_back();
    return top;
}

const std::shared_ptr<LuSVNBundleProxy>& LuSVNBundleCurrent()
{
    if (bundleStack.empty())
        throw LuSVNGenericException("Bundle stack is empty");
    return bundleStack.back();
}

std::size_t tessera_private::LuSVNBundleStackDepth()
{
    return bundleStack.size();
}
