#include "LuSVNStatusBaton.h"

#include <tessera/LuSVNException.h>

#include <algorithm>
#include <optional>

#include "LuSVNAssert.h"
#include "LuSVNBackendFrame.h"
#include "LuSVNStatus+ClientStatus.h"
#include "LuSVNWorkingCopyOperation.h"

namespace {

bool abnormal(svn_wc_status_kind kind)
{
    return LuSVNStatusIsAbnormal(LuSVNStatus::statusKindFromSVNStatusKind(kind));
}

// Adds a conflict's extra file, named relative to the directory that holds
// it: the item's parent, or a directory item itself (its property reject
// file, dir_conflicts.prej, lies inside it).
void LuSVNStatusAddConflictFile(const std::string& itemPath, bool directory, const char* name,
                                LuSVNStatusBaton& baton)
{
    if (!name)
        return;
    std::string file(directory ? std::string_view(itemPath) : LuSVNParentPathString(itemPath));
    if (file.back() != '/')
        file += '/';
    baton.conflictFiles.insert(file + name);
}

// Placeholders for the parents of an external directory that the walk did not
// report, so that a browser can show the folders leading to it.
void LuSVNStatusAddMissingParentDirectoriesForNode(const LuSVNNode& node, LuSVNStatusBaton& baton)
{
    for (auto parent = std::static_pointer_cast<const LuSVNLocalPath>(node.path()->parent()); parent;
         parent = std::static_pointer_cast<const LuSVNLocalPath>(parent->parent())) {
        const std::string& key = parent->string();
        if (baton.reportedDirectories.contains(key) || !parent->isDescendentOfPath(baton.rootPath))
            return;
        auto placeholder = LuSVNDirectory::nodeWithPath(parent);
        auto status = LuSVNStatus::unversioned();
        status->setTextStatus(LuSVNStatusExternal);
        placeholder->setStatus(std::move(status));
        baton.reportedDirectories.insert(key);
        baton.placeholders.insert(key);
        if (baton.options->propagateStatusToAncestor())
            baton.directoriesByPath[key] = placeholder;
        (*baton.handler)(placeholder);
    }
}

// A directory reported twice (an external, once from its parent as external
// and once from inside) keeps the external mark of the real earlier report.
void enterDirectory(const std::shared_ptr<LuSVNDirectory>& directory, LuSVNStatusBaton& baton)
{
    const std::string& key = directory->path()->string();
    const bool placeholder = baton.placeholders.erase(key) != 0;
    if (!placeholder && baton.externalMarks.contains(key))
        directory->status()->setTextStatus(LuSVNStatusExternal);
    baton.reportedDirectories.insert(key);
    if (baton.options->propagateStatusToAncestor())
        baton.directoriesByPath[key] = directory;
    if (directory->status()->textStatus() == LuSVNStatusExternal) {
        baton.externalMarks.insert(key);
        LuSVNStatusAddMissingParentDirectoriesForNode(*directory, baton);
    }
}

}  // namespace

void LuSVNStatusMarkRepositoryAsked(svn_wc_status2_t& status)
{
    if (status.repos_text_status == svn_wc_status_none)
        status.repos_text_status = svn_wc_status_normal;
    if (status.repos_prop_status == svn_wc_status_none)
        status.repos_prop_status = svn_wc_status_normal;
}

namespace {

void walkItem(LuSVNStatusBaton& baton, const char* itemPath, svn_wc_status2_t* status)
{
    const auto path = LuSVNLocalPath::pathWithString(itemPath);
    const std::string& key = path->string();
    const LuSVNStatusOptions& options = *baton.options;

    if ((!status->entry || status->entry->kind == svn_node_dir) && baton.externals.contains(key))
        status->text_status = svn_wc_status_external;
    if (options.compareAgainstRepository())
        LuSVNStatusMarkRepositoryAsked(*status);

    if (abnormal(status->text_status) || abnormal(status->prop_status)) {
        // Left out of the walk, a conflict's extra files do not count either.
        if (status->entry && !options.includeConflictVersionFiles()) {
            const bool directory = status->entry->kind == svn_node_dir;
            if (status->text_status == svn_wc_status_conflicted) {
                LuSVNStatusAddConflictFile(key, directory, status->entry->conflict_old, baton);
                LuSVNStatusAddConflictFile(key, directory, status->entry->conflict_new, baton);
                LuSVNStatusAddConflictFile(key, directory, status->entry->conflict_wrk, baton);
            }
            if (status->prop_status == svn_wc_status_conflicted)
                LuSVNStatusAddConflictFile(key, directory, status->entry->prejfile, baton);
        }
        if (status->text_status == svn_wc_status_unversioned)
            baton.unversionedPaths.insert(key);
        ++baton.localChangeCount;
    }
    if (abnormal(status->repos_text_status) || abnormal(status->repos_prop_status))
        ++baton.remoteChangeCount;

    if (key != baton.rootPath->string()) {
        if (options.propagateStatusToAncestor()) {
            const std::string& root = baton.rootPath->string();
            LuSVNStatusPropagateStatiiToAncestors(key, root, LuSVNStatus::statusKindFromSVNStatusKind(status->text_status),
                                                  LuSVNStatus::statusKindFromSVNStatusKind(status->prop_status),
                                                  baton.statii);
            LuSVNStatusPropagateStatiiToAncestors(
                key, root, LuSVNStatus::statusKindFromSVNStatusKind(status->repos_text_status),
                LuSVNStatus::statusKindFromSVNStatusKind(status->repos_prop_status), baton.repositoryStatii);
        }
        if (baton.rootOnly)
            return;
    }

    // A conflict's extra file follows its conflicted item in path order.
    if (!options.includeConflictVersionFiles() && baton.conflictFiles.contains(key))
        return;
    const auto node = baton.maker.nodeAtPath(path, status);
    LuSVNStatusSetMoves(*node->status(), baton.moves);
    if (node->isDirectory())
        enterDirectory(std::static_pointer_cast<LuSVNDirectory>(node), baton);
    (*baton.handler)(node);
}

// What the 1.7 callback needs to hand a record on in the older form.
struct ClientStatusForward {
    svn_wc_status_func2_t func;
    void* baton;
    svn_client_ctx_t* ctx;
    std::exception_ptr* pending;
    LuSVNReplacedItems replaced;
    LuSVNStatusMoves* moves;
};

svn_error_t* LuSVNClientStatusFunc(void* baton, const char* path, const svn_client_status_t* status,
                                   apr_pool_t* pool)
{
    auto* forward = static_cast<ClientStatusForward*>(baton);
    return LuSVNGuardCallback(*forward->pending, [&]() -> svn_error_t* {
        LUSVN_PARAMETER_ASSERT(path != nullptr, "path != NULL");
        LUSVN_PARAMETER_ASSERT(status != nullptr, "stat != NULL");
        LUSVN_PARAMETER_ASSERT(pool != nullptr, "pool != NULL");
        if (svn_error_t* error = LuSVNClientStatusToWCStatus(
                forward->ctx, path, status, pool, forward->replaced,
                [forward, status](const char* itemPath, svn_wc_status2_t* record) {
                    if (forward->moves)
                        *forward->moves = {status->moved_from_abspath, status->moved_to_abspath};
                    forward->func(forward->baton, itemPath, record);
                    if (forward->moves)
                        *forward->moves = {};
                }))
            return error;
        // The handler keeps its exceptions; stop the walk at the first.
        if (*forward->pending)
            return LuSVNCreateError(LuSVNCallbackAbortStatus(), "Operation was cancelled", __FILE__, __LINE__);
        return nullptr;
    });
}

// Notes the externals that Subversion enters, then notifies as before.
struct ExternalsListener {
    svn_client_ctx_t* ctx;
    svn_wc_notify_func2_t notify;
    void* notifyBaton;
    LuSVNPathStrings* externals;
    std::exception_ptr* pending;

    ExternalsListener(svn_client_ctx_t* clientContext, LuSVNPathStrings* found, std::exception_ptr* kept)
        : ctx(clientContext), notify(clientContext->notify_func2), notifyBaton(clientContext->notify_baton2),
          externals(found), pending(kept)
    {
        ctx->notify_func2 = LuSVNExternalsNotifyFunc;
        ctx->notify_baton2 = this;
    }
    ~ExternalsListener()
    {
        ctx->notify_func2 = notify;
        ctx->notify_baton2 = notifyBaton;
    }
    ExternalsListener(const ExternalsListener&) = delete;
    ExternalsListener& operator=(const ExternalsListener&) = delete;

    static void LuSVNExternalsNotifyFunc(void* baton, const svn_wc_notify_t* notification, apr_pool_t* pool)
    {
        auto* listener = static_cast<ExternalsListener*>(baton);
        if (notification->action == svn_wc_notify_status_external && notification->path && !*listener->pending) {
            try {
                listener->externals->insert(LuSVNLocalPath::pathWithString(notification->path)->string());
            } catch (...) {
                *listener->pending = std::current_exception();
            }
        }
        if (listener->notify)
            listener->notify(listener->notifyBaton, notification, pool);
    }
};

}  // namespace

LuSVNStatusBaton::LuSVNStatusBaton(std::shared_ptr<LuSVNContext> walkContext, LuSVNNode::LocalPath root,
                                   const LuSVNStatusOptions& walkOptions,
                                   const LuSVNDirectory::NodeHandler& nodeHandler)
    : context(std::move(walkContext)), maker(*context), handler(&nodeHandler), rootPath(std::move(root)),
      options(&walkOptions)
{
    // Working copies of many thousand items are walked.
    reportedDirectories.reserve(500);
    statii.reserve(500);
    repositoryStatii.reserve(500);
}

void LuSVNStatusFunc(void* baton, const char* path, svn_wc_status2_t* status)
{
    auto* walk = static_cast<LuSVNStatusBaton*>(baton);
    if (walk->pending)
        return;
    try {
        LUSVN_PARAMETER_ASSERT(baton != nullptr, "baton != NULL");
        LUSVN_PARAMETER_ASSERT(path != nullptr, "path != NULL");
        LUSVN_PARAMETER_ASSERT(status != nullptr, "status != NULL");
        walkItem(*walk, path, status);
    } catch (...) {
        walk->pending = std::current_exception();
    }
}

void LuSVNStatusSetMoves(LuSVNStatus& status, const LuSVNStatusMoves& moves)
{
    if (moves.movedFrom)
        status.setMovedFromPath(std::string(moves.movedFrom));
    if (moves.movedTo)
        status.setMovedToPath(std::string(moves.movedTo));
}

bool LuSVNStatusAggregate(std::uint32_t a, std::uint32_t b, std::uint32_t* aggregate)
{
    LUSVN_PARAMETER_ASSERT(aggregate != nullptr, "aggregate != NULL");
    const std::uint32_t before = *aggregate;
    *aggregate |= a | b;
    return *aggregate != before;
}

std::string_view LuSVNParentPathString(std::string_view path)
{
    const auto slash = path.rfind('/');
    if (slash == std::string_view::npos || path.size() == 1)
        return {};
    return slash == 0 ? path.substr(0, 1) : path.substr(0, slash);
}

void LuSVNStatusPropagateStatiiToAncestors(std::string_view childPath, std::string_view rootPath,
                                           std::uint32_t kindA, std::uint32_t kindB,
                                           LuSVNDirectory::StatiiByPath& statii)
{
    if (!LuSVNStatusIsAbnormal(kindA) && !LuSVNStatusIsAbnormal(kindB))
        return;
    // Only ancestors within the root, the root included.
    const bool below = childPath.size() > rootPath.size() && childPath.starts_with(rootPath) &&
                       (rootPath.back() == '/' || childPath[rootPath.size()] == '/');
    if (!below)
        return;
    for (std::string_view current = childPath; current.size() > rootPath.size();) {
        current = LuSVNParentPathString(current);
        if (!LuSVNStatusAggregate(kindA, kindB, &statii[std::string(current)]))
            return;
    }
}

LuSVNStatusCall LuSVNStatusCall::withOptions(const LuSVNStatusOptions& options)
{
    LuSVNStatusCall call;
    call.recursive = options.recursive();
    call.getAll = options.includeNormalFiles();
    call.update = options.compareAgainstRepository();
    call.noIgnore = !options.respectIgnoreProperties();
    call.ignoreExternals = !options.processExternals();
    call.depthAsSticky = options.depthIsSticky();
    return call;
}

void LuSVNReportStatus(LuSVNContext& context, const LuSVNNode::LocalPath& path, const LuSVNStatusOptions& options,
                       const LuSVNStatusCall& call, svn_wc_status_func2_t func, void* baton,
                       std::exception_ptr& pending, apr_pool_t* pool, LuSVNPathStrings* externals,
                       LuSVNStatusMoves* moves)
{
    std::optional<ExternalsListener> listener;
    if (externals)
        listener.emplace(context.ctx(), externals, &pending);
    const svn_opt_revision_t revision = options.revision()->SVNRevision();
    const char* target = tessera_private::LuSVNWorkingCopyTarget(*path, pool);
    svn_error_t* error;
    if (context.bundleVersion()->isGreaterThanOrEqualTo(LuSVNVersion::version1_7())) {
        const svn_depth_t depth =
            call.itemOnly ? svn_depth_empty : call.recursive ? svn_depth_infinity : svn_depth_immediates;
        ClientStatusForward forward{func, baton, context.ctx(), &pending, {}, moves};
        forward.replaced.recursive = depth == svn_depth_infinity;
        error = LuSVNEntry<70>()(nullptr, context.ctx(), target, &revision, depth, call.getAll, call.update,
                                 call.noIgnore, call.ignoreExternals, call.depthAsSticky, nullptr,
                                 LuSVNClientStatusFunc, &forward, pool);
    } else {
        error = LuSVNEntry<68>()(nullptr, target, &revision, func, baton, call.recursive && !call.itemOnly,
                                 call.getAll, call.update, call.noIgnore, call.ignoreExternals, context.ctx(), pool);
    }
    if (pending)
        LuSVNRethrowPending(pending, error);
    context.throwIfError(error);
}
