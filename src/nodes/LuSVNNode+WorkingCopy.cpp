#include <tessera/LuSVNBundleLoader.h>
#include <tessera/LuSVNContext.h>
#include <tessera/LuSVNException.h>
#include <tessera/LuSVNNode.h>

#include <filesystem>
#include <fstream>

#include "LuSVNAssert.h"
#include "LuSVNBackendFrame.h"
#include "LuSVNTrace.h"

namespace {

// Subversion's internal form of a local path, allocated in the pool; older
// backends lack the dirent form and use the generic one.
const char* internalStyle(const std::string& path, apr_pool_t* pool)
{
    const std::string absolute = std::filesystem::absolute(path).lexically_normal().string();
    const char* text = absolute.c_str();
    if (tessera_private::LuSVNCurrentHasEntryPoint(28))
        return LuSVNEntry<28>()(text, pool);
    return LuSVNEntry<26>()(text, pool);
}

std::string displayLastComponent(const std::string& path)
{
    std::filesystem::path normal = std::filesystem::path(path).lexically_normal();
    if (!normal.has_filename() && normal.has_parent_path() && normal != normal.root_path())
        normal = normal.parent_path();
    const std::string name = normal.filename().string();
    return name.empty() ? normal.string() : name;
}

// Whether the directory's administrative area names a format of 1.7 or
// later (in "entries", else "format") but holds no wc.db: Subversion 1.14
// crashes on such a directory instead of reporting it.
// Inside the frame of the backend that is about to be asked.
bool administrativeAreaLacksDatabase(const std::string& path, apr_pool_t* pool)
{
    const std::filesystem::path area = std::filesystem::path(path) / LuSVNEntry<100>()(pool);
    std::error_code error;
    if (!std::filesystem::is_directory(area, error) || std::filesystem::exists(area / "wc.db", error))
        return false;
    for (const char* name : {"entries", "format"}) {
        std::ifstream file(area / name);
        if (!file)
            continue;
        int format = 0;
        file >> format;
        return format > 12;
    }
    return false;
}

svn_error_t* LuSVNIgnoreInfoFunc(void*, const char*, const svn_client_info2_t*, apr_pool_t*)
{
    return nullptr;
}

// Raises Subversion's own error for a directory that has an administrative
// area but is no working copy that svn_wc_check_wc reads (too old, E155036
// with the upgrade hint; too new, E155021), through the newest loaded
// backend when it is 1.7 or later, whose svn_client_info3 (entry point 55)
// reports those.
void raiseUnreadableWorkingCopyError(const std::string& path)
{
    auto loader = LuSVNBundleLoader::sharedInstance();
    const auto newest = loader->newestVersion();
    std::error_code error;
    if (!newest || !newest->isGreaterThanOrEqualTo(LuSVNVersion::version1_7()))
        return;
    LuSVNBackendFrame frame(loader->newestBundle());
    if (!std::filesystem::is_directory(std::filesystem::path(path) / LuSVNEntry<100>()(frame.pool()), error) ||
        administrativeAreaLacksDatabase(path, frame.pool()))
        return;
    svn_client_ctx_t* ctx = nullptr;
    LuSVNThrowIfError(LuSVNEntry<47>()(&ctx, frame.pool()));
    svn_opt_revision_t unspecified{};
    unspecified.kind = svn_opt_revision_unspecified;
    LuSVNThrowIfError(LuSVNEntry<55>()(internalStyle(path, frame.pool()), &unspecified, &unspecified,
                                       svn_depth_empty, false, true, nullptr, LuSVNIgnoreInfoFunc, nullptr, ctx,
                                       frame.pool()));
}

}  // namespace

int LuSVNNode::formatVersionForWorkingCopyAtPath(const std::string& path,
                                                 const std::shared_ptr<LuSVNBundleProxy>& bundle)
{
    LUSVN_TRACE("LuSVNNode", "formatVersionForWorkingCopyAtPath:withBundle",
                {"path", path}, {"bundle", bundle ? bundle->description() : "(null)"});
    LuSVNBackendFrame frame(bundle);
    if (administrativeAreaLacksDatabase(path, frame.pool()))
        return 0;
    int format = 0;
    svn_error_t* error = LuSVNEntry<99>()(internalStyle(path, frame.pool()), &format, frame.pool());
    if (!error)
        return format;
    switch (error->apr_err) {
    case 2: {
        LuSVNNoSuchEntryException missing(error);
        LuSVNEntry<30>()(error);
        throw missing;
    }
    case 155021:
        LuSVNEntry<30>()(error);
        return format;
    default:
        LuSVNThrowIfError(error);
        return format;
    }
}

int LuSVNNode::formatVersionForWorkingCopyAtPath(const std::string& path)
{
    auto loader = LuSVNBundleLoader::sharedInstance();
    const std::vector<LuSVNVersion> versions = loader->loadedVersions();
    if (versions.size() < 2)
        return formatVersionForWorkingCopyAtPath(path, loader->newestBundle());
    try {
        return formatVersionForWorkingCopyAtPath(path, loader->bundleForVersion(versions[0]));
    } catch (...) {
        return formatVersionForWorkingCopyAtPath(path, loader->bundleForVersion(versions[1]));
    }
}

LuSVNVersion LuSVNNode::versionForWorkingCopyAtPath(const std::string& path)
{
    LUSVN_TRACE("LuSVNNode", "versionForWorkingCopyAtPath", {"path", path});
    const int format = formatVersionForWorkingCopyAtPath(path);
    if (format == 0)
        raiseUnreadableWorkingCopyError(path);
    if (format == 0)
        throw LuSVNNotWorkingCopyException("\"" + displayLastComponent(path) + "\" is not a working copy");
    auto loader = LuSVNBundleLoader::sharedInstance();
    const std::vector<LuSVNVersion> versions = loader->loadedVersions();
    for (auto version = versions.rbegin(); version != versions.rend(); ++version) {
        const auto bundle = loader->bundleForVersion(*version);
        const std::int64_t readable = loader->infoDictionaryForBundle(bundle).integerForKey("LuSVNWorkingCopyFormatVersion");
        if (readable < 1)
            throw LuSVNInternalInconsistencyException("Bundle (version " + version->versionString() +
                                                      ") does not provide working copy format version in infoDictionary");
        if (readable >= format)
            return version->versionWithMajorAndMinorComponents();
    }
    return *loader->newestVersion();
}

std::string LuSVNNode::adminAreaInDirectoryAtPath(const std::string& path)
{
    LUSVN_TRACE("LuSVNNode", "adminAreaInDirectoryAtPath", {"path", path});
    LuSVNBackendFrame frame(LuSVNBundleLoader::sharedInstance()->defaultBundle());
    const char* name = LuSVNEntry<100>()(frame.pool());
    if (!name)
        throw LuSVNException("Failed to get name used for svn admin directories");
    return (std::filesystem::path(path) / name).string();
}

LuSVNNode::LocalPath LuSVNNode::BASEPathForNodeAtPath(const LocalPath& path, const Context& context)
{
    LUSVN_PARAMETER_ASSERT(path != nullptr, "path != nil");
    LUSVN_PARAMETER_ASSERT(context != nullptr, "context != nil");
    LUSVN_TRACE("LuSVNNode", "BASEPathForNodeAtPath:withContext", {"path", path->string()},
                {"context", context->description()});
    LuSVNBackendFrame frame(context->bundle());
    const char* pristine = nullptr;
    context->throwIfError(LuSVNEntry<103>()(path->SVNRepresentationInPool(frame.pool()), &pristine, frame.pool()));
    return LuSVNLocalPath::pathWithString(pristine);
}
