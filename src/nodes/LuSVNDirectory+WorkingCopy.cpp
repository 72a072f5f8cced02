#include <tessera/LuSVNBundleLoader.h>
#include <tessera/LuSVNContext.h>
#include <tessera/LuSVNDateConversion.h>
#include <tessera/LuSVNDefinitions.h>
#include <tessera/LuSVNDirectory.h>
#include <tessera/LuSVNExternalDefinition.h>

#include <algorithm>
#include <filesystem>

#include "LuSVNAssert.h"
#include "LuSVNBackendFrame.h"
#include "LuSVNNode+Properties.h"
#include "LuSVNStatusBaton.h"
#include "LuSVNTrace.h"
#include "LuSVNWorkingCopyOperation.h"

namespace {

// Adds the targets of the externals defined on the directory (and, with
// `recurse`, below it) to `externals`, inside the caller's frame.
void addExternalsTargets(LuSVNNode::PathSet& externals, const LuSVNNode::LocalPath& directory, bool recurse,
                         LuSVNContext& context, apr_pool_t* pool)
{
    const auto values = tessera_private::LuSVNPropertyValues(
        std::string(LuSVNPropertyExternals), *directory, directory->SVNRepresentationInPool(pool),
        *LuSVNRevisionSpec::WORKING(),
        recurse, context, pool);
    for (const auto& [definingPath, value] : values) {
        const std::optional<std::string> text = value ? LuSVNStringWithSVNString(value) : std::nullopt;
        if (!text)
            continue;
        const auto defining = LuSVNLocalPath::pathWithString(definingPath);
        for (const auto& definition : LuSVNExternalDefinition::externalDefinitionListValue(*text, pool))
            if (auto target = defining->pathByAddingRelativePathWithSymlinks(definition.targetDirectory().value_or("")))
                externals.insert(std::move(target));
    }
}

// The targets of the definitions on each directory above the path, for as
// long as it is a working copy.
void addExternalsTargetsAbove(LuSVNNode::PathSet& externals, const LuSVNNode::LocalPath& path,
                              const LuSVNNode::Context& context)
{
    LuSVNBackendFrame frame(context->bundle());
    for (auto parent = std::static_pointer_cast<const LuSVNLocalPath>(path->parent());
         parent && LuSVNNode::formatVersionForWorkingCopyAtPath(parent->string(), context->bundle()) != 0;
         parent = std::static_pointer_cast<const LuSVNLocalPath>(parent->parent()))
        addExternalsTargets(externals, parent, false, *context, frame.pool());
}

}  // namespace

LuSVNNode::PathSet LuSVNDirectory::externalsInDirectoryAtPath(const LocalPath& path, const Context& context)
{
    LUSVN_PARAMETER_ASSERT(path != nullptr, "path != nil");
    LUSVN_PARAMETER_ASSERT(context != nullptr, "context != nil");
    LUSVN_TRACE("LuSVNDirectory", "externalsInDirectoryAtPath:withContext", {"path", path->string()},
                {"context", context->description()});
    LuSVNBackendFrame frame(context->bundle());
    PathSet externals;
    addExternalsTargets(externals, path, true, *context, frame.pool());
    return externals;
}

LuSVNNode::PathSet LuSVNDirectory::externalsForPath(const LocalPath& path, const Context& context)
{
    LUSVN_PARAMETER_ASSERT(path != nullptr, "path != nil");
    LUSVN_PARAMETER_ASSERT(context != nullptr, "context != nil");
    LUSVN_TRACE("LuSVNDirectory", "externalsForPath:withContext", {"path", path->string()},
                {"context", context->description()});
    PathSet externals = externalsInDirectoryAtPath(path, context);
    addExternalsTargetsAbove(externals, path, context);
    return externals;
}

namespace {

// A relative path is taken from the current directory, as svn takes it: the
// walk keys everything on the absolute paths that Subversion reports.
LuSVNNode::LocalPath absolutePath(const LuSVNNode::LocalPath& path)
{
    if (LuSVNLocalPath::isValidPath(path->string()))
        return path;
    std::error_code error;
    const std::filesystem::path absolute = std::filesystem::absolute(path->string(), error);
    if (error)
        throw LuSVNException("Cannot make '" + path->string() + "' absolute: " + error.message());
    return LuSVNLocalPath::pathWithString(absolute.lexically_normal().string());
}

// The externals defined above the path, by path text; the walk learns those
// below as it enters them.
LuSVNPathStrings externalsAbove(const LuSVNNode::LocalPath& path, const LuSVNNode::Context& context)
{
    LuSVNNode::PathSet externals;
    addExternalsTargetsAbove(externals, path, context);
    LuSVNPathStrings texts;
    for (const auto& external : externals)
        texts.insert(external->string());
    return texts;
}

}  // namespace

void LuSVNDirectory::reportStatusForNodesInDirectoryAtPath(const LocalPath& givenPath,
                                                           const LuSVNStatusOptions& options,
                                                           const NodeHandler& handler,
                                                           std::uint32_t* localChangeCount,
                                                           std::uint32_t* remoteChangeCount, const Context& context)
{
    LUSVN_PARAMETER_ASSERT(givenPath != nullptr, "path != nil");
    LUSVN_PARAMETER_ASSERT(handler != nullptr, "handler != nil");
    LUSVN_PARAMETER_ASSERT(context != nullptr, "context != nil");
    LUSVN_TRACE("LuSVNDirectory", "reportStatusForNodesInDirectoryAtPath:withOptions:handler:localChangeCount:"
                "remoteChangeCount:withContext",
                {"path", givenPath->string()}, {"options", options.description()},
                {"context", context->description()});
    const LocalPath path = absolutePath(givenPath);
    LuSVNStatusBaton baton(context, path, options, handler);
    // Only a directory can be an external or hold one; a file (of the many a
    // caller may walk one by one) needs no look at the definitions above it.
    std::error_code notADirectory;
    if (std::filesystem::is_directory(std::filesystem::symlink_status(path->string(), notADirectory)))
        baton.externals = externalsAbove(path, context);
    LuSVNBackendFrame frame(context->bundle());
    baton.pool = frame.pool();

    // Counts and aggregates need the whole tree; a caller who asked for less
    // still gets only the root's node.
    LuSVNStatusCall call = LuSVNStatusCall::withOptions(options);
    if (options.propagateStatusToAncestor() ||
        (options.compareAgainstRepository() && !options.recursive() && options.includeNormalFiles())) {
        call.recursive = true;
        baton.rootOnly = !options.recursive();
    }
    LuSVNReportStatus(*context, path, options, call, LuSVNStatusFunc, &baton, baton.pending, frame.pool(),
                      &baton.externals, &baton.moves);

    if (localChangeCount) {
        std::uint32_t extraFiles = 0;
        for (const std::string& file : baton.conflictFiles)
            extraFiles += baton.unversionedPaths.contains(file);
        *localChangeCount = baton.localChangeCount - extraFiles;
    }
    if (remoteChangeCount)
        *remoteChangeCount = baton.remoteChangeCount;
    if (options.propagateStatusToAncestor()) {
        Directories directories;
        directories.reserve(baton.directoriesByPath.size());
        for (const auto& [key, node] : baton.directoriesByPath)
            directories.push_back(node);
        aggregateStatii(baton.statii, baton.repositoryStatii, directories);
    }
}

namespace {

template <class Vector, class Element>
void eraseLast(Vector& vector, const Element& element)
{
    const auto found = std::find(vector.rbegin(), vector.rend(), element);
    if (found != vector.rend())
        vector.erase(std::next(found).base());
}

// The array form's result: a directory reported twice keeps its last node.
struct NodeCollector {
    const std::string& rootPath;
    LuSVNNode::Nodes nodes;
    std::unordered_map<std::string, std::shared_ptr<LuSVNDirectory>> directoriesByPath;
    std::shared_ptr<LuSVNDirectory> rootNode;
    LuSVNNode::Nodes conflictedNodes;

    void add(const std::shared_ptr<LuSVNNode>& node)
    {
        if (node->isDirectory()) {
            auto directory = std::static_pointer_cast<LuSVNDirectory>(node);
            const std::string& key = node->path()->string();
            auto& entry = directoriesByPath[key];
            if (entry)
                eraseLast(nodes, std::shared_ptr<LuSVNNode>(entry));
            entry = directory;
            if (key == rootPath)
                rootNode = directory;
        }
        const LuSVNStatus& status = *node->status();
        if (status.textStatus() == LuSVNStatusConflicted || status.propertyStatus() == LuSVNStatusConflicted)
            conflictedNodes.push_back(node);
        nodes.push_back(node);
    }
};

}  // namespace

LuSVNNode::Nodes LuSVNDirectory::statusForNodesInDirectoryAtPath(const LocalPath& path,
                                                                  const LuSVNStatusOptions& options,
                                                                  std::shared_ptr<LuSVNDirectory>* directory,
                                                                  std::uint32_t* localChangeCount,
                                                                  std::uint32_t* remoteChangeCount,
                                                                  const Context& context)
{
    LUSVN_PARAMETER_ASSERT(path != nullptr, "path != nil");
    LUSVN_PARAMETER_ASSERT(context != nullptr, "context != nil");
    LUSVN_TRACE("LuSVNDirectory", "statusForNodesInDirectoryAtPath:withOptions:directory:localChangeCount:"
                "remoteChangeCount:withContext",
                {"path", path->string()}, {"options", options.description()}, {"context", context->description()});
    const LocalPath root = absolutePath(path);
    NodeCollector collector{root->string(), {}, {}, nullptr, {}};
    // Working copies of many thousand items are walked.
    collector.nodes.reserve(5000);
    collector.directoriesByPath.reserve(500);
    reportStatusForNodesInDirectoryAtPath(
        root, options, [&collector](const std::shared_ptr<LuSVNNode>& node) { collector.add(node); },
        localChangeCount, remoteChangeCount, context);
    if (directory)
        *directory = collector.rootNode;
    // Extra files reported before their conflicted item.
    if (!options.includeConflictVersionFiles())
        removeVersionConflictFilesFromArray(collector.nodes, collector.conflictedNodes);
    return std::move(collector.nodes);
}

LuSVNNode::Nodes LuSVNDirectory::statusForNodesInDirectoryAtPath(const LocalPath& path,
                                                                  const LuSVNStatusOptions& options,
                                                                  const Context& context)
{
    return statusForNodesInDirectoryAtPath(path, options, nullptr, nullptr, nullptr, context);
}

void LuSVNDirectory::aggregateStatii(const StatiiByPath& statii, const StatiiByPath& reposStatii,
                                     const Directories& directories)
{
    const auto word = [](const StatiiByPath& words, const std::string& key) {
        const auto found = words.find(key);
        return found == words.end() ? 0u : found->second;
    };
    for (const auto& directory : directories) {
        const std::string& key = directory->path()->string();
        directory->setAggregateChildStatus(word(statii, key));
        directory->setAggregateRepositoryChildStatus(word(reposStatii, key));
    }
}

void LuSVNDirectory::removeVersionConflictFilesFromArray(Nodes& nodes, const Nodes& conflictedNodes)
{
    LuSVNPathStrings extraFiles;
    for (const auto& node : conflictedNodes) {
        const LuSVNStatus& status = *node->status();
        // A directory's property reject file lies inside it.
        const auto& holder = node->isDirectory() ? node->path() : node->location();
        const auto add = [&](const std::optional<std::string>& name) {
            if (name && holder)
                extraFiles.insert(holder->pathByAddingComponent(*name)->string());
        };
        if (status.textStatus() == LuSVNStatusConflicted) {
            add(status.conflictOldVersion());
            add(status.conflictNewVersion());
            add(status.conflictWorkingVersion());
        }
        if (status.propertyStatus() == LuSVNStatusConflicted)
            add(status.propertyRejectFilePath());
    }
    if (extraFiles.empty())
        return;
    std::erase_if(nodes, [&](const std::shared_ptr<LuSVNNode>& node) {
        return node->path() && extraFiles.contains(node->path()->string());
    });
}

namespace {

// A directory's own record, and the OR of the kinds of everything else the
// call reports.
struct DirectoryStatusBaton {
    std::shared_ptr<LuSVNContext> context;
    LuSVNVersion version;
    std::string target;
    bool compared;
    LuSVNPathStrings externals;
    std::shared_ptr<LuSVNDirectory> directory;
    std::uint32_t statii = 0;
    std::uint32_t repositoryStatii = 0;
    std::exception_ptr pending;
};

void LuSVNDirectoryStatusFunc(void* baton, const char* path, svn_wc_status2_t* status)
{
    auto* collector = static_cast<DirectoryStatusBaton*>(baton);
    if (collector->pending)
        return;
    try {
        const auto itemPath = LuSVNLocalPath::pathWithString(path);
        if ((!status->entry || status->entry->kind == svn_node_dir) &&
            collector->externals.contains(itemPath->string()))
            status->text_status = svn_wc_status_external;
        if (collector->compared)
            LuSVNStatusMarkRepositoryAsked(*status);
        if (!collector->directory && itemPath->string() == collector->target) {
            auto directory = LuSVNDirectory::nodeWithPath(itemPath);
            directory->setStatus(LuSVNStatus::statusWithSVNStatus(status, collector->version));
            if (const svn_wc_entry_t* entry = status->entry) {
                directory->setRevision(static_cast<std::int32_t>(entry->cmt_rev));
                directory->setDate(LuSVNDateConversion::dateWithAPRTime(entry->cmt_date));
                if (entry->cmt_author)
                    directory->setAuthor(std::string(entry->cmt_author));
                directory->setHasProperties(entry->has_props != 0);
                if (entry->url)
                    directory->setURL(LuSVNURL::URLWithString(entry->url));
                if (entry->lock_token)
                    directory->setLock(LuSVNLock::lockWithPath(
                        itemPath, entry->lock_token, entry->lock_owner ? entry->lock_owner : "",
                        entry->lock_comment ? std::optional<std::string>(entry->lock_comment) : std::nullopt,
                        LuSVNDateConversion::initWithAPRTime(entry->lock_creation_date), std::nullopt));
            }
            collector->directory = std::move(directory);
            return;
        }
        LuSVNStatusAggregate(LuSVNStatus::statusKindFromSVNStatusKind(status->text_status),
                             LuSVNStatus::statusKindFromSVNStatusKind(status->prop_status), &collector->statii);
        LuSVNStatusAggregate(LuSVNStatus::statusKindFromSVNStatusKind(status->repos_text_status),
                             LuSVNStatus::statusKindFromSVNStatusKind(status->repos_prop_status),
                             &collector->repositoryStatii);
    } catch (...) {
        collector->pending = std::current_exception();
    }
}

// Keeps the node of the target's record alone.
struct NodeStatusBaton {
    std::shared_ptr<LuSVNContext> context;
    std::string target;
    bool compared;
    LuSVNPathStrings externals;
    std::shared_ptr<LuSVNNode> node;
    LuSVNStatusMoves moves;
    std::exception_ptr pending;
};

void LuTesseraNodeStatusFunc(void* baton, const char* path, svn_wc_status2_t* status)
{
    auto* collector = static_cast<NodeStatusBaton*>(baton);
    if (collector->pending || collector->node)
        return;
    try {
        const auto itemPath = LuSVNLocalPath::pathWithString(path);
        if (itemPath->string() != collector->target)
            return;
        if ((!status->entry || status->entry->kind == svn_node_dir) && collector->externals.contains(collector->target))
            status->text_status = svn_wc_status_external;
        if (collector->compared)
            LuSVNStatusMarkRepositoryAsked(*status);
        collector->node = LuSVNNode::nodeAtPath(itemPath, status, collector->context);
        LuSVNStatusSetMoves(*collector->node->status(), collector->moves);
    } catch (...) {
        collector->pending = std::current_exception();
    }
}

}  // namespace

std::shared_ptr<LuSVNDirectory> LuSVNDirectory::statusForDirectoryAtPath(const LocalPath& givenPath,
                                                                         const LuSVNStatusOptions& options,
                                                                         const Context& context)
{
    LUSVN_PARAMETER_ASSERT(givenPath != nullptr, "path != nil");
    LUSVN_PARAMETER_ASSERT(context != nullptr, "context != nil");
    LUSVN_TRACE("LuSVNDirectory", "statusForDirectoryAtPath:withOptions:withContext", {"path", givenPath->string()},
                {"options", options.description()}, {"context", context->description()});
    const LocalPath path = absolutePath(givenPath);
    DirectoryStatusBaton baton{context, *context->bundleVersion(), path->string(), options.compareAgainstRepository(),
                               externalsAbove(path, context),
                               nullptr, 0, 0, nullptr};
    LuSVNBackendFrame frame(context->bundle());
    LuSVNReportStatus(*context, path, options, LuSVNStatusCall::withOptions(options), LuSVNDirectoryStatusFunc,
                      &baton, baton.pending, frame.pool(), &baton.externals);
    if (!baton.directory) {
        // Unchanged, so not reported: its record alone, as it stands.
        LuSVNStatusCall itself = LuSVNStatusCall::withOptions(options);
        itself.itemOnly = true;
        itself.getAll = true;
        const std::uint32_t statii = baton.statii, repositoryStatii = baton.repositoryStatii;
        LuSVNReportStatus(*context, path, options, itself, LuSVNDirectoryStatusFunc, &baton, baton.pending,
                          frame.pool());
        baton.statii = statii;
        baton.repositoryStatii = repositoryStatii;
    }
    if (!baton.directory)
        return nullptr;
    baton.directory->setAggregateChildStatus(baton.statii);
    baton.directory->setAggregateRepositoryChildStatus(baton.repositoryStatii);
    return baton.directory;
}

std::shared_ptr<LuSVNNode> LuSVNNode::nodeWithStatusAtPath(const LocalPath& givenPath, const LuSVNStatusOptions& options,
                                                           const Context& context)
{
    LUSVN_PARAMETER_ASSERT(givenPath != nullptr, "path != nil");
    LUSVN_PARAMETER_ASSERT(context != nullptr, "context != nil");
    LUSVN_TRACE("LuSVNNode", "nodeWithStatusAtPath:withOptions:withContext", {"path", givenPath->string()},
                {"options", options.description()}, {"context", context->description()});
    const LocalPath path = absolutePath(givenPath);
    NodeStatusBaton baton{context, path->string(), options.compareAgainstRepository(), externalsAbove(path, context),
                          nullptr, {}, nullptr};
    LuSVNStatusCall call = LuSVNStatusCall::withOptions(options);
    call.itemOnly = true;
    call.getAll = true;
    LuSVNBackendFrame frame(context->bundle());
    LuSVNReportStatus(*context, path, options, call, LuTesseraNodeStatusFunc, &baton, baton.pending, frame.pool(),
                      nullptr, &baton.moves);
    return baton.node;
}

bool LuSVNDirectory::hasNodesWithStatus(std::uint32_t kinds) const
{
    return (aggregateChildStatus() & kinds) != 0;
}

bool LuSVNDirectory::hasUnversionedNodes() const
{
    return hasNodesWithStatus(LuSVNStatusUnversioned);
}

bool LuSVNDirectory::hasModifiedNodes() const
{
    return hasNodesWithStatus(LuSVNStatusModified);
}

bool LuSVNDirectory::hasAddedNodes() const
{
    return hasNodesWithStatus(LuSVNStatusAdded);
}

bool LuSVNDirectory::hasDeletedNodes() const
{
    return hasNodesWithStatus(LuSVNStatusDeleted);
}

bool LuSVNDirectory::hasReplacedNodes() const
{
    return hasNodesWithStatus(LuSVNStatusReplaced);
}

bool LuSVNDirectory::hasMissingNodes() const
{
    return hasNodesWithStatus(LuSVNStatusMissing);
}

bool LuSVNDirectory::hasConflictedNodes() const
{
    return hasNodesWithStatus(LuSVNStatusConflicted);
}

bool LuSVNDirectory::hasNodesChangedInRepository() const
{
    return LuSVNStatusIsAbnormal(aggregateRepositoryChildStatus());
}

std::int32_t LuSVNDirectory::checkoutDirectoryAtURL(const URLPath& url, const LocalPath& path,
                                                   const LuSVNCheckOutOptions& options, const Context& context)
{
    LUSVN_PARAMETER_ASSERT(url != nullptr, "url != nil");
    LUSVN_PARAMETER_ASSERT(path != nullptr, "path != nil");
    LUSVN_PARAMETER_ASSERT(context != nullptr, "context != nil");
    LUSVN_PARAMETER_ASSERT(options.depth() != LuSVNDepthUnknown, "[options depth] != LuSVNDepthUnknown");
    LUSVN_PARAMETER_ASSERT(options.depth() != LuSVNDepthExclude, "[options depth] != LuSVNDepthExclude");
    LUSVN_TRACE("LuSVNDirectory", "checkoutDirectoryAtURL:intoDirectoryAtPath:withOptions:withContext",
                {"url", url->string()}, {"path", path->string()}, {"options", options.description()},
                {"context", context->description()});
    tessera_private::LuSVNCheckDepth(options.depth());
    const bool newer = tessera_private::LuSVNHasDepthForms(*context);
    if (!newer && options.depth() != LuSVNDepthInfinity && options.depth() != LuSVNDepthFiles)
        throw LuSVNInvalidArgumentException(
            "Incompatible depth argument for 1.4 (LuSVNDepthInfinity and LuSVNDepthFiles supported)");
    return tessera_private::LuSVNRunNotified(
        *context, LuSVNNotifyActionCheckOutStarted, LuSVNNotifyActionCheckOutSucceeded,
        LuSVNNotifyActionCheckOutFailed, path->string(), [&] {
            LuSVNBackendFrame frame(context->bundle());
            const svn_opt_revision_t peg = options.revision()->pegRevision()->SVNRevision();
            const svn_opt_revision_t operative = options.revision()->keyRevision()->SVNRevision();
            svn_revnum_t result = -1;
            if (newer)
                context->throwIfError(LuSVNEntry<42>()(&result, url->SVNRepresentationInPool(frame.pool()),
                                                       tessera_private::LuSVNWorkingCopyTarget(*path, frame.pool()), &peg, &operative,
                                                       static_cast<svn_depth_t>(options.depth()),
                                                       !options.processExternals(),
                                                       options.allowUnversionedObstructions(), context->ctx(),
                                                       frame.pool()));
            else
                context->throwIfError(LuSVNEntry<41>()(&result, url->SVNRepresentationInPool(frame.pool()),
                                                       tessera_private::LuSVNWorkingCopyTarget(*path, frame.pool()), &peg, &operative,
                                                       options.depth() == LuSVNDepthInfinity,
                                                       !options.processExternals(), context->ctx(), frame.pool()));
            if (result < 0)
                throw LuSVNException("Invalid revision");
            return static_cast<std::int32_t>(result);
        });
}

void LuSVNDirectory::cleanUpWorkingCopyAtPath(const LocalPath& path, const Context& context)
{
    LUSVN_PARAMETER_ASSERT(path != nullptr, "path != nil");
    LUSVN_PARAMETER_ASSERT(context != nullptr, "context != nil");
    LUSVN_TRACE("LuSVNDirectory", "cleanUpWorkingCopyAtPath:withContext", {"path", path->string()},
                {"context", context->description()});
    LuSVNBackendFrame frame(context->bundle());
    context->beginProgress();
    context->throwIfError(LuSVNEntry<43>()(tessera_private::LuSVNWorkingCopyTarget(*path, frame.pool()), context->ctx(), frame.pool()));
}

void LuSVNDirectory::upgradeWorkingCopyAtPath(const LocalPath& path, const LuSVNVersion& version, bool force)
{
    LUSVN_PARAMETER_ASSERT(path != nullptr, "path != nil");
    LUSVN_TRACE("LuSVNDirectory", "upgradeWorkingCopyAtPath:toVersion:force", {"path", path->string()},
                {"version", version.versionString()}, {"force", force ? "YES" : "NO"});
    const LuSVNVersion target = version.versionWithMajorAndMinorComponents();
    if (!target.isGreaterThanOrEqualTo(LuSVNVersion::version1_7()))
        throw LuSVNException("Cannot upgrade '" + path->string() + "' to the format of " + target.versionString() +
                             ": only formats of 1.7 and later are written in place");
    const auto bundle = LuSVNBundleLoader::sharedInstance()->bundleForVersion(target);
    if (!bundle)
        throw LuSVNException("No backend of version " + target.versionString() + " is loaded to upgrade '" +
                             path->string() + "'");
    const auto context = LuSVNContext::contextWithBundle(bundle);
    LuSVNBackendFrame frame(bundle);
    context->throwIfError(LuSVNEntry<126>()(tessera_private::LuSVNWorkingCopyTarget(*path, frame.pool()), context->ctx(),
                                            frame.pool()));
}
