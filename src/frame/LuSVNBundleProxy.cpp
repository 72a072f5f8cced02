#include <tessera/LuSVNBundleProxy.h>

LuSVNBundleProxy::LuSVNBundleProxy(std::shared_ptr<LuSVNPlatformBundle> bundle) : bundle_(std::move(bundle)) {}

std::shared_ptr<LuSVNBundleProxy> LuSVNBundleProxy::proxyForBundle(std::shared_ptr<LuSVNPlatformBundle> bundle)
{
    return std::shared_ptr<LuSVNBundleProxy>(new LuSVNBundleProxy(std::move(bundle)));
}

LuSVNBundle* LuSVNBundleProxy::bundleObject()
{
    if (LuSVNBundle* object = bundleObject_.load(std::memory_order_acquire))
        return object;
    std::lock_guard<std::recursive_mutex> guard(lock_);
    if (!bundleObject_.load(std::memory_order_relaxed)) {
        LuSVNBundle* object = bundle_->principalObject();
        extensions_ = bundle_->extensionEntryPoints();
        bundleObject_.store(object, std::memory_order_release);
    }
    return bundleObject_.load(std::memory_order_relaxed);
}

const LuSVNBundleExtensionEntryPoints* LuSVNBundleProxy::extensionEntryPoints()
{
    bundleObject();
    return extensions_;
}

std::string LuSVNBundleProxy::description() const
{
    return bundle_->infoDictionary().stringForKey("CFBundleVersion").value_or("");
}
