#include <tessera/LuSVNBundleLoader.h>

#include <dlfcn.h>

#include <algorithm>
#include <cctype>
#include <filesystem>

#include <tessera/LuSVNDebug.h>

#include "LuSVNAssert.h"
#include "LuSVNTrace.h"

std::shared_ptr<LuSVNBundleLoader> LuSVNBundleLoader::sharedInstance()
{
    static const std::shared_ptr<LuSVNBundleLoader> instance(new LuSVNBundleLoader());
    return instance;
}

std::string LuSVNBundleLoader::defaultBundleDirectory()
{
    // The library's own file, wherever it was loaded from: an installed prefix
    // or a build tree.
    Dl_info info{};
    if (dladdr(reinterpret_cast<void*>(&LuSVNBundleLoader::defaultBundleDirectory), &info) == 0 || !info.dli_fname)
        return TESSERA_BUNDLE_SUBDIR;
    std::error_code error;
    std::filesystem::path library = std::filesystem::canonical(info.dli_fname, error);
    if (error)
        library = info.dli_fname;
    return (library.parent_path() / TESSERA_BUNDLE_SUBDIR).string();
}

std::shared_ptr<LuSVNBundleProxy> LuSVNBundleLoader::loadBundleAtPath(const std::string& path)
{
    return loadBundleAtPath(path, false);
}

std::shared_ptr<LuSVNBundleProxy> LuSVNBundleLoader::loadBundleAtPath(const std::string& path, bool loadingCode)
{
    LUSVN_TRACE("LuSVNBundleLoader", "loadBundleAtPath", {"path", path});
    auto bundle = LuSVNPlatformBundle::bundleWithPath(path);
    if (loadingCode)
        bundle->principalObject();
    const LuSVNVersion version =
        LuSVNVersion::versionWithString(bundle->infoDictionary().stringForKey("CFBundleVersion").value_or(""));
    std::lock_guard<std::recursive_mutex> guard(lock_);
    if (auto existing = bundles_.find(version); existing != bundles_.end())
        return existing->second;
    auto proxy = LuSVNBundleProxy::proxyForBundle(std::move(bundle));
    bundles_.emplace(version, proxy);
    bundleVersions_.push_back(version);
    std::sort(bundleVersions_.begin(), bundleVersions_.end());
    return proxy;
}

void LuSVNBundleLoader::loadBundlesInDirectoryAtPath(const std::string& path)
{
    LUSVN_TRACE("LuSVNBundleLoader", "loadBundlesInDirectoryAtPath", {"path", path});
    std::error_code error;
    std::filesystem::directory_iterator entries(path, error);
    if (error)
        return;
    for (const auto& entry : entries) {
        std::string extension = entry.path().extension().string();
        std::transform(extension.begin(), extension.end(), extension.begin(),
                       [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
        if (extension != ".bundle")
            continue;
        const std::string bundlePath = (std::filesystem::path(path) / entry.path().filename()).string();
        try {
            // One broken backend must not take the good ones down with it
            // when it is first used, so its code is loaded now.
            loadBundleAtPath(bundlePath, true);
        } catch (const LuSVNException& e) {
            const auto& cause = e.userInfo() ? e.userInfo()->cause : nullptr;
            std::string reason = cause && cause->message ? *cause->message : e.reason();
            LuSVNDebug::logAtLevel(LuSVNLogLevelNormal, "Skipping svn bundle at %s: %s", bundlePath.c_str(),
                                   reason.c_str());
            std::lock_guard<std::recursive_mutex> guard(lock_);
            brokenBundles_.push_back({bundlePath, std::move(reason)});
        }
    }
}

std::vector<LuSVNBundleLoader::BrokenBundle> LuSVNBundleLoader::brokenBundles()
{
    std::lock_guard<std::recursive_mutex> guard(lock_);
    return brokenBundles_;
}

std::optional<LuSVNVersion> LuSVNBundleLoader::versionForBundle(const std::shared_ptr<LuSVNBundleProxy>& bundleObj)
{
    LUSVN_PARAMETER_ASSERT(bundleObj != nullptr, "bundleObj != nil");
    std::lock_guard<std::recursive_mutex> guard(lock_);
    for (const auto& [version, proxy] : bundles_)
        if (proxy == bundleObj)
            return version;
    return std::nullopt;
}

std::shared_ptr<LuSVNBundleProxy> LuSVNBundleLoader::bundleForVersion(const LuSVNVersion& version)
{
    std::lock_guard<std::recursive_mutex> guard(lock_);
    for (auto candidate = bundleVersions_.rbegin(); candidate != bundleVersions_.rend(); ++candidate)
        if (candidate->matches(version))
            return bundles_.at(*candidate);
    return nullptr;
}

std::optional<LuSVNVersion> LuSVNBundleLoader::newestVersion()
{
    std::lock_guard<std::recursive_mutex> guard(lock_);
    if (bundleVersions_.empty())
        return std::nullopt;
    return bundleVersions_.back();
}

std::optional<LuSVNVersion> LuSVNBundleLoader::oldestVersion()
{
    std::lock_guard<std::recursive_mutex> guard(lock_);
    if (bundleVersions_.empty())
        return std::nullopt;
    return bundleVersions_.front();
}

std::shared_ptr<LuSVNBundleProxy> LuSVNBundleLoader::newestBundle()
{
    const auto version = newestVersion();
    return version ? bundleForVersion(*version) : nullptr;
}

std::shared_ptr<LuSVNBundleProxy> LuSVNBundleLoader::oldestBundle()
{
    const auto version = oldestVersion();
    return version ? bundleForVersion(*version) : nullptr;
}

std::shared_ptr<LuSVNBundleProxy> LuSVNBundleLoader::defaultBundle()
{
    const auto version = defaultVersion();
    return version ? bundleForVersion(*version) : nullptr;
}

std::vector<LuSVNVersion> LuSVNBundleLoader::loadedVersions()
{
    std::vector<LuSVNVersion> versions;
    {
        std::lock_guard<std::recursive_mutex> guard(lock_);
        versions = bundleVersions_;
    }
    std::sort(versions.begin(), versions.end(), std::greater<>());
    return versions;
}

const LuSVNInfoDictionary& LuSVNBundleLoader::infoDictionaryForBundle(const std::shared_ptr<LuSVNBundleProxy>& bundle)
{
    LUSVN_PARAMETER_ASSERT(bundle != nullptr, "bundle != nil");
    return bundle->bundle()->infoDictionary();
}

std::string LuSVNBundleLoader::defaultGlobalIgnoreStringForBundle(const std::shared_ptr<LuSVNBundleProxy>& bundle)
{
    LUSVN_PARAMETER_ASSERT(bundle != nullptr, "bundle != nil");
    return bundle->defaultGlobalIgnoreString();
}

std::vector<std::string> LuSVNBundleLoader::defaultGlobalIgnoreListForBundle(
    const std::shared_ptr<LuSVNBundleProxy>& bundle)
{
    LUSVN_PARAMETER_ASSERT(bundle != nullptr, "bundle != nil");
    return bundle->defaultGlobalIgnoreList();
}
