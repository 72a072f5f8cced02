// The process-wide registry of backends.
//
//   LuSVNInitialize();                          // loads the default directory
//   auto loader = LuSVNBundleLoader::sharedInstance();
//   auto newest = loader->newestBundle();       // the default backend
//   auto svn16  = loader->bundleForVersion(LuSVNVersion::version(1, 6));
//
// Backends are keyed by their version; the first bundle loaded for a version
// wins. Nothing is ever unloaded. All operations are safe from any thread.
#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include <tessera/LuSVNBundleProxy.h>
#include <tessera/LuSVNExport.h>
#include <tessera/LuSVNVersion.h>

class TESSERA_EXPORT LuSVNBundleLoader {
public:
    /// The one loader of the process.
    static std::shared_ptr<LuSVNBundleLoader> sharedInstance();

    /// "<directory of the loaded libtessera>/tessera/backends": where the
    /// backends are installed beside the library (and built in a build tree).
    static std::string defaultBundleDirectory();

    /// Opens the bundle and registers it under its version, or returns the
    /// proxy already registered for an equal version. Raises LuSVNException
    /// "Failed to load svn bundle at <path>" when it cannot be opened.
    std::shared_ptr<LuSVNBundleProxy> loadBundleAtPath(const std::string& path);

    /// Loads every entry whose extension is "bundle" (any case), in directory
    /// order, and the code of each (unlike loadBundleAtPath), so that a broken
    /// shared object shows here rather than on first use. A directory that
    /// cannot be listed is ignored. A bundle that fails (unreadable or
    /// malformed Info.json, missing or unloadable shared object, another
    /// interface version) is skipped: it is logged as a warning at level 1,
    /// listed by brokenBundles(), and the scan goes on.
    void loadBundlesInDirectoryAtPath(const std::string& path);
    /// A bundle that a scan skipped: its path and why it failed.
    struct BrokenBundle {
        /// The bundle directory.
        std::string path;
        /// Why it failed, as the load's exception said.
        std::string reason;
    };
    /// The bundles the scans skipped, in the order they were met.
    std::vector<BrokenBundle> brokenBundles();

    /// The version a proxy is registered under, or nullopt. Raises
    /// "Invalid parameter not satisfying: bundleObj != nil" for null.
    std::optional<LuSVNVersion> versionForBundle(const std::shared_ptr<LuSVNBundleProxy>& bundleObj);

    /// The newest loaded backend whose version matches the pattern (see
    /// LuSVNVersion::matches), or null. So 1.6 picks the highest 1.6.x.
    std::shared_ptr<LuSVNBundleProxy> bundleForVersion(const LuSVNVersion& version);

    std::optional<LuSVNVersion> newestVersion();
    std::optional<LuSVNVersion> oldestVersion();
    std::shared_ptr<LuSVNBundleProxy> newestBundle();
    std::shared_ptr<LuSVNBundleProxy> oldestBundle();
    /// The default backend is always the newest loaded one.
    std::optional<LuSVNVersion> defaultVersion() { return newestVersion(); }
    std::shared_ptr<LuSVNBundleProxy> defaultBundle();

    /// The loaded versions, newest first.
    std::vector<LuSVNVersion> loadedVersions();

    /// The proxy's information file. Raises "Invalid parameter not satisfying:
    /// bundle != nil" for null.
    const LuSVNInfoDictionary& infoDictionaryForBundle(const std::shared_ptr<LuSVNBundleProxy>& bundle);
    std::string defaultGlobalIgnoreStringForBundle(const std::shared_ptr<LuSVNBundleProxy>& bundle);
    std::vector<std::string> defaultGlobalIgnoreListForBundle(const std::shared_ptr<LuSVNBundleProxy>& bundle);

    LuSVNBundleLoader(const LuSVNBundleLoader&) = delete;
    LuSVNBundleLoader& operator=(const LuSVNBundleLoader&) = delete;

private:
    LuSVNBundleLoader() = default;
    // With its code loaded first when asked to, so that a broken shared
    // object is refused before the bundle is registered.
    std::shared_ptr<LuSVNBundleProxy> loadBundleAtPath(const std::string& path, bool loadingCode);

    std::recursive_mutex lock_;
    std::map<LuSVNVersion, std::shared_ptr<LuSVNBundleProxy>> bundles_;
    std::vector<LuSVNVersion> bundleVersions_;  // ascending
    std::vector<BrokenBundle> brokenBundles_;
};
