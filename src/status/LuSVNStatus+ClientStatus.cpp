#include <exception>
#include <initializer_list>
#include <string>

#include "LuSVNBackendFrame.h"
#include "LuSVNPath+Internal.h"
#include "LuSVNPoolCopies.h"
#include "LuSVNStatus+ClientStatus.h"

using tessera_private::LuSVNPoolAllocateZeroed;
using tessera_private::LuSVNPoolCopyString;

namespace {

bool isOneOf(int kind, std::initializer_list<int> kinds)
{
    for (int candidate : kinds)
        if (kind == candidate)
            return true;
    return false;
}

// The first conflict description of the kind, or null.
const svn_wc_conflict_description2_t* LuSVNClientStatusFindConflictOfKind(const apr_array_header_t* conflicts,
                                                                          svn_wc_conflict_kind_t kind)
{
    if (!conflicts)
        return nullptr;
    for (int i = 0; i < conflicts->nelts; ++i) {
        const auto* conflict = reinterpret_cast<const svn_wc_conflict_description2_t* const*>(conflicts->elts)[i];
        if (conflict && conflict->kind == kind)
            return conflict;
    }
    return nullptr;
}

struct ConflictInfoBaton {
    svn_wc_entry_t* entry;
    apr_pool_t* pool;  // the entry's
    svn_wc_conflict_description_t* treeConflict;
    std::exception_ptr pending;
};

const char* copyString(const char* text, apr_pool_t* pool)
{
    return text ? LuSVNEntry<4>()(pool, text) : nullptr;
}

svn_wc_conflict_version_t* copyConflictVersion(const svn_wc_conflict_version_t* version, apr_pool_t* pool)
{
    if (!version)
        return nullptr;
    auto* copy = LuSVNPoolAllocateZeroed<svn_wc_conflict_version_t>(pool);
    *copy = *version;
    copy->repos_url = copyString(version->repos_url, pool);
    copy->path_in_repos = copyString(version->path_in_repos, pool);
    copy->repos_uuid = copyString(version->repos_uuid, pool);
    return copy;
}

const char* lastComponent(const char* path, apr_pool_t* pool)
{
    return path ? LuSVNEntry<27>()(path, pool) : nullptr;
}

// Receives the info of a conflicted item: its conflict file names into the entry.
svn_error_t* LuSVNClientStatusConflictInfo(void* baton, const char*, const svn_client_info2_t* info, apr_pool_t*)
{
    auto* conflictBaton = static_cast<ConflictInfoBaton*>(baton);
    return LuSVNGuardCallback(conflictBaton->pending, [&]() -> svn_error_t* {
        if (!info->wc_info)
            return nullptr;
        svn_wc_entry_t* entry = conflictBaton->entry;
        apr_pool_t* pool = conflictBaton->pool;
        const apr_array_header_t* conflicts = info->wc_info->conflicts;
        if (const auto* text = LuSVNClientStatusFindConflictOfKind(conflicts, svn_wc_conflict_kind_text)) {
            entry->conflict_old = lastComponent(text->base_abspath, pool);
            entry->conflict_new = lastComponent(text->their_abspath, pool);
            entry->conflict_wrk = lastComponent(text->my_abspath, pool);
        }
        if (const auto* property = LuSVNClientStatusFindConflictOfKind(conflicts, svn_wc_conflict_kind_property))
            entry->prejfile = lastComponent(property->their_abspath, pool);
        if (const auto* tree = LuSVNClientStatusFindConflictOfKind(conflicts, svn_wc_conflict_kind_tree))
            conflictBaton->treeConflict = LuSVNOlderConflictDescription(*tree, pool);
        return nullptr;
    });
}

// Keeps what the older interface says of each item of a deleted or replaced
// tree, copied while its record lives.
struct OlderValuesBaton {
    LuSVNReplacedItems* items;
    std::exception_ptr pending;
};

void LuSVNOlderEntryStatusFunc(void* baton, const char* path, svn_wc_status2_t* status)
{
    auto* older = static_cast<OlderValuesBaton*>(baton);
    const svn_wc_entry_t* entry = status->entry;
    if (older->pending || !entry)
        return;
    try {
        older->items->byPath.insert_or_assign(
            path, LuSVNReplacedItems::Values{entry->revision, entry->cmt_rev, entry->cmt_date,
                                             tessera_private::LuSVNOptionalString(entry->cmt_author)});
    } catch (...) {
        older->pending = std::current_exception();
    }
}

struct TreeConflictBaton {
    const LuSVNWCStatusHandler* handler;
    std::exception_ptr pending;
};

// Hands the one record of a tree-conflict victim on while Subversion still owns it.
svn_error_t* LuTesseraTreeConflictStatusFunc(void* baton, const char* path, svn_wc_status2_t* status, apr_pool_t*)
{
    auto* treeBaton = static_cast<TreeConflictBaton*>(baton);
    return LuSVNGuardCallback(treeBaton->pending, [&]() -> svn_error_t* {
        if (status->text_status == svn_wc_status_none)
            status->text_status = svn_wc_status_missing;
        (*treeBaton->handler)(path, status);
        return nullptr;
    });
}

// A kept exception of an inner callback wins over the error that ended the call.
svn_error_t* rethrowPendingOrReturn(std::exception_ptr& pending, svn_error_t* error)
{
    if (pending) {
        if (error)
            LuSVNEntry<30>()(error);
        std::rethrow_exception(pending);
    }
    return error;
}

svn_wc_schedule_t scheduleForNodeStatus(svn_wc_status_kind status)
{
    switch (status) {
    case svn_wc_status_replaced:
        return svn_wc_schedule_replace;
    case svn_wc_status_deleted:
        return svn_wc_schedule_delete;
    case svn_wc_status_added:
        return svn_wc_schedule_add;
    default:
        return svn_wc_schedule_normal;
    }
}

svn_wc_entry_t* entryForClientStatus(const svn_client_status_t* status, apr_pool_t* pool)
{
    auto* entry = LuSVNPoolAllocateZeroed<svn_wc_entry_t>(pool);
    entry->revision = status->revision;
    const std::string relativePath = status->repos_relpath;
    entry->url = LuSVNPoolCopyString(
        relativePath.empty() ? std::string(status->repos_root_url)
                             : tessera_private::LuSVNAppendingPathComponent(
                                   status->repos_root_url, tessera_private::LuSVNAddPercentEscapes(relativePath)),
        pool);
    entry->repos = status->repos_root_url;
    entry->uuid = status->repos_uuid;
    if (status->kind != svn_node_unknown) {
        entry->kind = status->kind;
        entry->cmt_rev = status->changed_rev;
        entry->cmt_date = status->changed_date;
        entry->cmt_author = status->changed_author;
    } else if (status->ood_kind != svn_node_unknown) {
        entry->kind = status->ood_kind;
        entry->cmt_rev = status->ood_changed_rev;
        entry->cmt_date = status->ood_changed_date;
        entry->cmt_author = status->ood_changed_author;
    } else {
        entry->kind = svn_node_unknown;
        entry->cmt_rev = SVN_INVALID_REVNUM;
    }
    entry->schedule = scheduleForNodeStatus(status->node_status);
    entry->copied = status->copied;
    if (status->lock) {
        entry->lock_token = status->lock->token;
        entry->lock_owner = status->lock->owner;
        entry->lock_comment = status->lock->comment;
        entry->lock_creation_date = status->lock->creation_date;
    }
    entry->changelist = status->changelist;
    entry->working_size = status->filesize;
    entry->depth = status->depth;
    entry->copyfrom_rev = SVN_INVALID_REVNUM;
    entry->has_props = status->prop_status != svn_wc_status_none;
    entry->has_prop_mods = entry->has_props && status->prop_status != svn_wc_status_normal;
    return entry;
}

// A deleted or replaced item has no working revision here, and a deleted one
// no last change; the older interface still reads those of the item it
// deletes or replaces, as svn shows them (a copy shows no working revision).
// The first item of a deleted or replaced tree reads the whole tree at once.
// Inside a copy there is nothing below to read: svn shows no working
// revision and no last change there.
svn_error_t* addReplacedValues(svn_wc_entry_t& entry, const svn_client_status_t& clientStatus, const char* abspath,
                               svn_client_ctx_t* ctx, LuSVNReplacedItems& replaced, apr_pool_t* pool)
{
    if (clientStatus.copied)
        return nullptr;
    auto found = replaced.byPath.find(abspath);
    if (found == replaced.byPath.end()) {
        svn_opt_revision_t unspecified{};
        unspecified.kind = svn_opt_revision_unspecified;
        OlderValuesBaton baton{&replaced, nullptr};
        ++replaced.olderCalls;
        svn_error_t* error = LuSVNEntry<68>()(nullptr, abspath, &unspecified, LuSVNOlderEntryStatusFunc, &baton,
                                              replaced.recursive, true, false, false, true, ctx, pool);
        if (svn_error_t* failure = rethrowPendingOrReturn(baton.pending, error))
            return failure;
        found = replaced.byPath.find(abspath);
        if (found == replaced.byPath.end())
            return nullptr;
    }
    const LuSVNReplacedItems::Values values = std::move(found->second);
    replaced.byPath.erase(found);
    entry.revision = values.revision;
    if (clientStatus.node_status == svn_wc_status_deleted && !SVN_IS_VALID_REVNUM(entry.cmt_rev)) {
        entry.cmt_rev = values.changedRevision;
        entry.cmt_date = values.changedDate;
        entry.cmt_author = tessera_private::LuSVNPoolCopyString(values.changedAuthor, pool);
    }
    return nullptr;
}

}  // namespace

svn_wc_conflict_description_t* LuSVNOlderConflictDescription(const svn_wc_conflict_description2_t& conflict,
                                                             apr_pool_t* pool)
{
    auto* older = LuSVNPoolAllocateZeroed<svn_wc_conflict_description_t>(pool);
    older->path = copyString(conflict.local_abspath, pool);
    older->node_kind = conflict.node_kind;
    older->kind = conflict.kind;
    older->property_name = copyString(conflict.property_name, pool);
    older->is_binary = conflict.is_binary;
    older->mime_type = copyString(conflict.mime_type, pool);
    older->action = conflict.action;
    older->reason = conflict.reason;
    older->base_file = copyString(conflict.base_abspath, pool);
    older->their_file = copyString(conflict.their_abspath, pool);
    older->my_file = copyString(conflict.my_abspath, pool);
    older->merged_file = copyString(conflict.merged_file, pool);
    older->operation = conflict.operation;
    older->src_left_version = copyConflictVersion(conflict.src_left_version, pool);
    older->src_right_version = copyConflictVersion(conflict.src_right_version, pool);
    return older;
}

void LuSVNClientStatusConvertFields(const svn_client_status_t* clientStatus, svn_wc_status2_t* wcStatus)
{
    wcStatus->text_status = clientStatus->node_status;
    wcStatus->prop_status = clientStatus->prop_status;
    wcStatus->repos_text_status = clientStatus->repos_node_status;
    wcStatus->repos_prop_status = clientStatus->repos_prop_status;
    if (isOneOf(clientStatus->node_status, {svn_wc_status_modified, svn_wc_status_conflicted}))
        wcStatus->text_status = clientStatus->text_status;
    if (isOneOf(clientStatus->repos_node_status, {svn_wc_status_modified, svn_wc_status_conflicted}))
        wcStatus->repos_text_status = clientStatus->repos_text_status;
    if (clientStatus->node_status == svn_wc_status_added)
        wcStatus->prop_status = svn_wc_status_none;
    const std::initializer_list<int> plain = {svn_wc_status_none, svn_wc_status_normal, svn_wc_status_modified};
    wcStatus->pristine_text_status = isOneOf(clientStatus->text_status, plain) ? clientStatus->text_status
                                                                              : svn_wc_status_none;
    const bool scheduled = isOneOf(clientStatus->node_status,
                                   {svn_wc_status_added, svn_wc_status_deleted, svn_wc_status_replaced});
    wcStatus->pristine_prop_status = isOneOf(clientStatus->prop_status, plain) && !scheduled
                                         ? clientStatus->prop_status
                                         : svn_wc_status_none;
}

svn_error_t* LuSVNClientStatusToWCStatus(svn_client_ctx_t* ctx, const char* path,
                                         const svn_client_status_t* clientStatus, apr_pool_t* pool,
                                         LuSVNReplacedItems& replaced, const LuSVNWCStatusHandler& handler)
{
    auto* wcStatus = LuSVNPoolAllocateZeroed<svn_wc_status2_t>(pool);
    svn_wc_entry_t* entry = nullptr;
    if (clientStatus->repos_root_url && clientStatus->repos_relpath) {
        entry = entryForClientStatus(clientStatus, pool);
        if (!SVN_IS_VALID_REVNUM(entry->revision) &&
            isOneOf(clientStatus->node_status, {svn_wc_status_deleted, svn_wc_status_replaced}))
            if (svn_error_t* error = addReplacedValues(*entry, *clientStatus,
                                                       clientStatus->local_abspath ? clientStatus->local_abspath : path,
                                                       ctx, replaced, pool))
                return error;
        // Text and property conflicts name their files, tree conflicts
        // describe themselves, only in the item's info.
        if (clientStatus->conflicted) {
            svn_opt_revision_t unspecified{};
            unspecified.kind = svn_opt_revision_unspecified;
            ConflictInfoBaton baton{entry, pool, nullptr, nullptr};
            const char* abspath = clientStatus->local_abspath ? clientStatus->local_abspath : path;
            svn_error_t* error = LuSVNEntry<55>()(abspath, &unspecified, &unspecified, svn_depth_empty, false,
                                                  false, nullptr, LuSVNClientStatusConflictInfo, &baton, ctx, pool);
            if (svn_error_t* failure = rethrowPendingOrReturn(baton.pending, error))
                return failure;
            wcStatus->tree_conflict = baton.treeConflict;
        }
    } else if (clientStatus->node_status == svn_wc_status_conflicted &&
               clientStatus->text_status == svn_wc_status_none) {
        svn_opt_revision_t unspecified{};
        unspecified.kind = svn_opt_revision_unspecified;
        TreeConflictBaton baton{&handler, nullptr};
        svn_error_t* error = LuSVNEntry<69>()(nullptr, path, &unspecified, LuTesseraTreeConflictStatusFunc, &baton,
                                              svn_depth_empty, false, false, false, true, nullptr, ctx, pool);
        return rethrowPendingOrReturn(baton.pending, error);
    }
    wcStatus->entry = entry;
    LuSVNClientStatusConvertFields(clientStatus, wcStatus);
    wcStatus->switched = clientStatus->switched;
    wcStatus->copied = clientStatus->copied;
    wcStatus->locked = clientStatus->wc_is_locked;
    wcStatus->repos_lock = const_cast<svn_lock_t*>(clientStatus->repos_lock);
    wcStatus->url = entry ? entry->url : nullptr;
    wcStatus->ood_last_cmt_rev = clientStatus->ood_changed_rev;
    wcStatus->ood_last_cmt_date = clientStatus->ood_changed_date;
    wcStatus->ood_kind = clientStatus->ood_kind;
    wcStatus->ood_last_cmt_author = clientStatus->ood_changed_author;
    wcStatus->file_external = clientStatus->file_external;
    handler(path, wcStatus);
    return nullptr;
}
