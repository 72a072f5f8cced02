#include <tessera/LuSVNAddOptions.h>
#include <tessera/LuSVNBundleLoader.h>
#include <tessera/LuSVNCommitOptions.h>
#include <tessera/LuSVNContext.h>
#include <tessera/LuSVNException.h>
#include <tessera/LuSVNNode.h>
#include <tessera/LuSVNResolveOptions.h>
#include <tessera/LuSVNRevertOptions.h>
#include <tessera/LuSVNSwitchOptions.h>
#include <tessera/LuSVNUpdateOptions.h>

#include <filesystem>
#include <fstream>

#include "LuSVNAssert.h"
#include "LuSVNBackendFrame.h"
#include "LuSVNTrace.h"
#include "LuSVNWorkingCopyOperation.h"

using namespace tessera_private;

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

}  // namespace

const char* tessera_private::LuSVNWorkingCopyTarget(const LuSVNLocalPath& path, apr_pool_t* pool)
{
    const char* target = path.SVNRepresentationInPool(pool);
    std::error_code error;
    const std::filesystem::path absolute = std::filesystem::absolute(target, error);
    const bool directory = std::filesystem::is_directory(absolute, error);
    if (administrativeAreaLacksDatabase(directory ? absolute.string() : absolute.parent_path().string(), pool))
        LuSVNException::exceptionWithReason("'" + absolute.string() + "' is not a working copy", 155007)->raise();
    return target;
}

namespace {

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
    context->throwIfError(LuSVNEntry<103>()(LuSVNWorkingCopyTarget(*path, frame.pool()), &pristine, frame.pool()));
    return LuSVNLocalPath::pathWithString(pristine);
}

namespace {

std::string firstPath(const std::vector<LuSVNNode::LocalPath>& paths)
{
    return paths.empty() || !paths.front() ? std::string() : paths.front()->string();
}

}  // namespace

std::vector<std::int32_t> LuSVNNode::updateNodes(const std::vector<LocalPath>& nodePaths, const Revision& revision,
                                                 const LuSVNUpdateOptions& options, const Context& context)
{
    LUSVN_PARAMETER_ASSERT(revision != nullptr, "revision != nil");
    LUSVN_PARAMETER_ASSERT(context != nullptr, "context != nil");
    LUSVN_TRACE("LuSVNNode", "updateNodes:toRevision:withOptions:withContext", {"nodePaths", LuSVNDescribePaths(nodePaths)},
                {"revision", revision->description()}, {"options", options.description()},
                {"context", context->description()});
    LuSVNCheckDepth(options.depth());
    const bool newer = LuSVNHasDepthForms(*context);
    const auto version = context->bundleVersion();
    // From 1.7 on Subversion announces each target's update itself.
    const std::optional<std::int32_t> started =
        version && version->isGreaterThanOrEqualTo(LuSVNVersion::version1_7())
            ? std::nullopt
            : std::optional<std::int32_t>(LuSVNNotifyActionLegacyUpdateStarted);
    return LuSVNRunNotified(*context, started, LuSVNNotifyActionUpdateSucceeded, LuSVNNotifyActionUpdateFailed,
                            firstPath(nodePaths), [&] {
        LuSVNBackendFrame frame(context->bundle());
        apr_array_header_t* paths = LuSVNPathArray(nodePaths, frame.pool());
        const svn_opt_revision_t svnRevision = revision->keyRevision()->SVNRevision();
        apr_array_header_t* results = nullptr;
        if (newer)
            context->throwIfError(LuSVNEntry<73>()(&results, paths, &svnRevision, static_cast<svn_depth_t>(options.depth()),
                                                   options.depthIsSticky(), !options.processExternals(),
                                                   options.allowUnversionedObstructions(), context->ctx(),
                                                   frame.pool()));
        else
            context->throwIfError(LuSVNEntry<72>()(&results, paths, &svnRevision,
                                                   LuSVNRecursionForDepth(options.depth()),
                                                   !options.processExternals(), context->ctx(), frame.pool()));
        const int found = results ? results->nelts : 0;
        if (found != static_cast<int>(nodePaths.size()))
            throw LuSVNInternalInconsistencyException("Expected resultant revision array with length of " +
                                                      std::to_string(nodePaths.size()) + ", found " +
                                                      std::to_string(found));
        std::vector<std::int32_t> revisions;
        for (int index = 0; index < found; ++index) {
            const svn_revnum_t number = reinterpret_cast<const svn_revnum_t*>(results->elts)[index];
            if (number < 0)
                throw LuSVNException("Invalid revision");
            revisions.push_back(static_cast<std::int32_t>(number));
        }
        return revisions;
    });
}

std::int32_t LuSVNNode::switchNodeAtPath(const LocalPath& path, const URLPath& toURL,
                                         const LuSVNSwitchOptions& options, const Context& context)
{
    LUSVN_PARAMETER_ASSERT(path != nullptr, "path != nil");
    LUSVN_PARAMETER_ASSERT(toURL != nullptr, "toURL != nil");
    LUSVN_PARAMETER_ASSERT(context != nullptr, "context != nil");
    LUSVN_TRACE("LuSVNNode", "switchNodeAtPath:toURL:withOptions:withContext", {"path", path->string()},
                {"toURL", toURL->string()}, {"options", options.description()},
                {"context", context->description()});
    LuSVNCheckDepth(options.depth());
    const bool newer = LuSVNHasDepthForms(*context);
    return LuSVNRunNotified(*context, LuSVNNotifyActionSwitchStarted, LuSVNNotifyActionSwitchSucceeded,
                            LuSVNNotifyActionSwitchFailed, path->string(), [&] {
        LuSVNBackendFrame frame(context->bundle());
        const svn_opt_revision_t peg = options.revision()->pegRevision()->SVNRevision();
        const svn_opt_revision_t operative = options.revision()->keyRevision()->SVNRevision();
        svn_revnum_t result = -1;
        if (newer)
            context->throwIfError(LuSVNEntry<124>()(&result, LuSVNWorkingCopyTarget(*path, frame.pool()),
                                                    toURL->SVNRepresentationInPool(frame.pool()), &peg, &operative,
                                                    static_cast<svn_depth_t>(options.depth()),
                                                    options.depthIsSticky(), !options.processExternals(),
                                                    options.allowUnversionedObstructions(), context->ctx(),
                                                    frame.pool()));
        else
            context->throwIfError(LuSVNEntry<123>()(&result, LuSVNWorkingCopyTarget(*path, frame.pool()),
                                                    toURL->SVNRepresentationInPool(frame.pool()), &operative,
                                                    LuSVNRecursionForDepth(options.depth()), context->ctx(),
                                                    frame.pool()));
        if (result < 0)
            throw LuSVNException("Invalid revision");
        return static_cast<std::int32_t>(result);
    });
}

std::int32_t LuSVNNode::commitChangesToNodes(const std::vector<LocalPath>& nodePaths,
                                             const LuSVNCommitOptions& options, const Context& context)
{
    LUSVN_PARAMETER_ASSERT(context != nullptr, "context != nil");
    LUSVN_TRACE("LuSVNNode", "commitChangesToNodes:withOptions:withContext", {"nodePaths", LuSVNDescribePaths(nodePaths)},
                {"options", options.description()}, {"context", context->description()});
    LuSVNCheckDepth(options.depth());
    const bool newer = LuSVNHasDepthForms(*context);
    // Subversion asserts on an unknown commit depth; svn commits everything then.
    const LuSVNDepth depth = options.depth() == LuSVNDepthUnknown ? LuSVNDepthInfinity : options.depth();
    return LuSVNRunNotified(*context, LuSVNNotifyActionCommitStarted, LuSVNNotifyActionCommitSucceeded,
                            LuSVNNotifyActionCommitFailed, firstPath(nodePaths), [&] {
        LuSVNBackendFrame frame(context->bundle());
        apr_array_header_t* paths = LuSVNPathArray(nodePaths, frame.pool());
        svn_commit_info_t* info = nullptr;
        if (newer)
            context->throwIfError(LuSVNEntry<45>()(&info, paths, static_cast<svn_depth_t>(depth),
                                                   !options.releaseLocks(), false, nullptr, nullptr, context->ctx(),
                                                   frame.pool()));
        else
            context->throwIfError(LuSVNEntry<44>()(&info, paths, LuSVNRecursionForDepth(depth),
                                                   !options.releaseLocks(), context->ctx(), frame.pool()));
        // Nothing to commit, or no log message: Subversion commits nothing.
        return info && info->revision >= 0 ? static_cast<std::int32_t>(info->revision) : LuSVNInvalidRevision;
    });
}

void LuSVNNode::add(const LocalPath& path, const LuSVNAddOptions& options, const Context& context)
{
    LUSVN_PARAMETER_ASSERT(path != nullptr, "path != nil");
    LUSVN_PARAMETER_ASSERT(context != nullptr, "context != nil");
    LUSVN_TRACE("LuSVNNode", "add:withOptions:withContext", {"path", path->string()},
                {"options", options.description()}, {"context", context->description()});
    LuSVNCheckDepth(options.depth());
    if (options.depth() == LuSVNDepthExclude)
        throw LuSVNGenericException("Invalid depth");
    const LuSVNDepth depth = options.depth() != LuSVNDepthUnknown ? options.depth()
                             : options.recursive()                ? LuSVNDepthInfinity
                                                                  : LuSVNDepthEmpty;
    const bool newer = LuSVNHasDepthForms(*context);
    if (!newer && options.addParents())
        throw LuSVNInvalidArgumentException("Adding the parents needs a backend of 1.5 or later");
    if (!newer && depth != LuSVNDepthInfinity && depth != LuSVNDepthEmpty)
        throw LuSVNGenericException("Invalid depth");
    LuSVNBackendFrame frame(context->bundle());
    context->beginProgress();
    const char* target = LuSVNWorkingCopyTarget(*path, frame.pool());
    if (newer)
        context->throwIfError(LuSVNEntry<10>()(target, static_cast<svn_depth_t>(depth), options.force(),
                                               !options.matchIgnorePatterns(), options.addParents(), context->ctx(),
                                               frame.pool()));
    else
        context->throwIfError(LuSVNEntry<39>()(target, depth == LuSVNDepthInfinity, options.force(),
                                               !options.matchIgnorePatterns(), context->ctx(), frame.pool()));
}

void LuSVNNode::add(const LocalPath& path, const Context& context)
{
    add(path, LuSVNAddOptions::defaults(), context);
}

void LuSVNNode::revertNodes(const std::vector<LocalPath>& nodePaths, const LuSVNRevertOptions& options,
                            const Context& context)
{
    LUSVN_PARAMETER_ASSERT(context != nullptr, "context != nil");
    LUSVN_TRACE("LuSVNNode", "revertNodes:withOptions:withContext", {"nodePaths", LuSVNDescribePaths(nodePaths)},
                {"options", options.description()}, {"context", context->description()});
    LuSVNCheckDepth(options.depth());
    const bool newer = LuSVNHasDepthForms(*context);
    LuSVNBackendFrame frame(context->bundle());
    apr_array_header_t* paths = LuSVNPathArray(nodePaths, frame.pool());
    context->beginProgress();
    if (newer)
        context->throwIfError(LuSVNEntry<67>()(paths, static_cast<svn_depth_t>(options.depth()), nullptr,
                                               context->ctx(), frame.pool()));
    else
        context->throwIfError(LuSVNEntry<66>()(paths, LuSVNRecursionForDepth(options.depth()), context->ctx(),
                                               frame.pool()));
}

void LuSVNNode::resolveNodeAtPath(const LocalPath& path, const LuSVNResolveOptions& options, const Context& context)
{
    LUSVN_PARAMETER_ASSERT(path != nullptr, "path != nil");
    LUSVN_PARAMETER_ASSERT(context != nullptr, "context != nil");
    LUSVN_TRACE("LuSVNNode", "resolveNodeAtPath:withOptions:withContext", {"path", path->string()},
                {"options", options.description()}, {"context", context->description()});
    LuSVNBackendFrame frame(context->bundle());
    context->beginProgress();
    const char* target = LuSVNWorkingCopyTarget(*path, frame.pool());
    if (options.conflictChoice() == LuSVNConflictChoiceMerged)
        context->throwIfError(LuSVNEntry<65>()(target, options.recursive(), context->ctx(), frame.pool()));
    else
        context->throwIfError(LuSVNEntry<2>()(target, options.recursive() ? svn_depth_infinity : svn_depth_empty,
                                              static_cast<svn_wc_conflict_choice_t>(options.conflictChoice()),
                                              context->ctx(), frame.pool()));
}

void LuSVNNode::relocateNodeAtPath(const LocalPath& path, const std::string& fromPrefix, const std::string& toPrefix,
                                   bool recursive, const Context& context)
{
    LUSVN_PARAMETER_ASSERT(path != nullptr, "path != nil");
    LUSVN_PARAMETER_ASSERT(context != nullptr, "context != nil");
    LUSVN_TRACE("LuSVNNode", "relocateNodeAtPath:fromPrefix:toPrefix:recursive:withContext",
                {"path", path->string()}, {"fromPrefix", fromPrefix}, {"toPrefix", toPrefix},
                {"recursive", recursive ? "YES" : "NO"}, {"context", context->description()});
    LuSVNRunNotified(*context, LuSVNNotifyActionRelocateStarted, LuSVNNotifyActionRelocateSucceeded,
                     LuSVNNotifyActionRelocateFailed, path->string(), [&] {
        LuSVNBackendFrame frame(context->bundle());
        context->throwIfError(LuSVNEntry<125>()(LuSVNWorkingCopyTarget(*path, frame.pool()), fromPrefix.c_str(),
                                                toPrefix.c_str(), recursive, context->ctx(), frame.pool()));
    });
}

void LuSVNNode::addNodesToChangelist(const std::vector<LocalPath>& nodePaths, const std::string& changelist,
                                     LuSVNDepth depth, const Context& context)
{
    LUSVN_PARAMETER_ASSERT(context != nullptr, "context != nil");
    LUSVN_TRACE("LuSVNNode", "addNodesToChangelist:changelist:depth:withContext",
                {"nodePaths", LuSVNDescribePaths(nodePaths)}, {"changelist", changelist},
                {"depth", std::to_string(depth)}, {"context", context->description()});
    LuSVNCheckDepth(depth);
    LuSVNBackendFrame frame(context->bundle());
    apr_array_header_t* paths = LuSVNPathArray(nodePaths, frame.pool());
    context->beginProgress();
    context->throwIfError(LuSVNEntry<0>()(paths, changelist.c_str(), static_cast<svn_depth_t>(depth), nullptr,
                                          context->ctx(), frame.pool()));
}

void LuSVNNode::removeNodesFromChangelists(const std::vector<LocalPath>& nodePaths, LuSVNDepth depth,
                                           const Context& context)
{
    LUSVN_PARAMETER_ASSERT(context != nullptr, "context != nil");
    LUSVN_TRACE("LuSVNNode", "removeNodesFromChangelists:depth:withContext", {"nodePaths", LuSVNDescribePaths(nodePaths)},
                {"depth", std::to_string(depth)}, {"context", context->description()});
    LuSVNCheckDepth(depth);
    LuSVNBackendFrame frame(context->bundle());
    apr_array_header_t* paths = LuSVNPathArray(nodePaths, frame.pool());
    context->beginProgress();
    context->throwIfError(LuSVNEntry<1>()(paths, static_cast<svn_depth_t>(depth), nullptr, context->ctx(),
                                          frame.pool()));
}
