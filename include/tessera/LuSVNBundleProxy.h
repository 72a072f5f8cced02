// One loaded backend, owned by the loader and never unloaded.
#pragma once

#include <atomic>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include <tessera/LuSVNBundle.h>
#include <tessera/LuSVNExport.h>
#include <tessera/LuSVNPlatformBundle.h>

class TESSERA_EXPORT LuSVNBundleProxy {
public:
    /// A new proxy for an opened bundle; its code is not loaded yet.
    static std::shared_ptr<LuSVNBundleProxy> proxyForBundle(std::shared_ptr<LuSVNPlatformBundle> bundle);

    const std::shared_ptr<LuSVNPlatformBundle>& bundle() const { return bundle_; }

    /// The backend's principal object, created on first call under the
    /// proxy's lock (which loads the bundle's shared object).
    LuSVNBundle* bundleObject();

    const LuSVNBundleEntryPoints* entryPoints() { return bundleObject()->entryPoints(); }
    /// The backend's extension table, or null when it has none.
    const LuSVNBundleExtensionEntryPoints* extensionEntryPoints();
    std::string defaultGlobalIgnoreString() { return bundleObject()->defaultGlobalIgnoreString(); }
    std::vector<std::string> defaultGlobalIgnoreList() { return bundleObject()->defaultGlobalIgnoreList(); }

    /// The bundle's "CFBundleVersion" text.
    std::string description() const;

private:
    explicit LuSVNBundleProxy(std::shared_ptr<LuSVNPlatformBundle> bundle);

    std::shared_ptr<LuSVNPlatformBundle> bundle_;
    std::recursive_mutex lock_;
    // Read without the lock once set: entry points are looked up on every call.
    std::atomic<LuSVNBundle*> bundleObject_{nullptr};
    // Set before bundleObject_ is published, so readable once that is.
    const LuSVNBundleExtensionEntryPoints* extensions_ = nullptr;
};
