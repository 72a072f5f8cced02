// The functions the client context hands to Subversion. Subversion calls
// them on the operation's thread, possibly from inside another backend's
// push, so each pushes the context's backend itself. No C++ exception may
// unwind through Subversion: what a handler or provider raises is kept in the
// context and raised by the operation (LuSVNContext::throwIfError).
#include <tessera/LuSVNCommitItem.h>
#include <tessera/LuSVNContext.h>

#include "LuSVNBackendFrame.h"
#include "LuSVNBundlePushed.h"
#include "LuSVNPoolCopies.h"
#include "LuSVNStatus+ClientStatus.h"

using namespace tessera_private;

namespace {

// The fields of the notify record; those added in 1.6 only from backends
// whose record has them.
LuSVNNotification notificationWithSVNNotify(const svn_wc_notify_t& notify,
                                            const std::optional<LuSVNVersion>& bundleVersion)
{
    LuSVNNotification notification(notify.action);
    notification.setContentState(notify.content_state);
    if (notify.err)
        notification.setError(LuSVNException::exceptionWithError(notify.err, false));  // Subversion owns the error
    if (notify.lock)
        notification.setLock(LuSVNLock::lockWithSVNLock(notify.lock));
    notification.setLockState(notify.lock_state);
    notification.setNodeKind(notify.kind);
    notification.setPath(LuSVNOptionalString(notify.path));
    notification.setPropertyState(notify.prop_state);
    notification.setRevision(static_cast<std::int32_t>(notify.revision));
    if (bundleVersion && *bundleVersion >= LuSVNVersion::version1_5() && notify.merge_range)
        notification.setMergeRange(LuSVNRevisionRange::from(LuSVNRevision::revisionWithNumber(
                                                                static_cast<std::int32_t>(notify.merge_range->start)),
                                                            LuSVNRevision::revisionWithNumber(
                                                                static_cast<std::int32_t>(notify.merge_range->end))));
    if (bundleVersion && *bundleVersion >= LuSVNVersion::version1_6()) {
        if (notify.url)
            notification.setURL(LuSVNURL::URLWithString(notify.url));
        notification.setPathPrefix(LuSVNOptionalString(notify.path_prefix));
        notification.setPropertyName(LuSVNOptionalString(notify.prop_name));
    }
    return notification;
}

// Whether the notification is about one item, not the start or end of a
// whole operation.
bool isItemNotification(svn_wc_notify_action_t action)
{
    switch (action) {
    case svn_wc_notify_update_completed:
    case svn_wc_notify_status_completed:
    case svn_wc_notify_update_started:
    case svn_wc_notify_merge_completed:
        return false;
    default:
        return true;
    }
}

// A cancellation error for Subversion; none when there is no backend to make
// one, the lesser harm than unwinding.
svn_error_t* cancellationError(const std::shared_ptr<LuSVNBundleProxy>& bundle, const char* message) noexcept
{
    try {
        LuSVNBundlePushed pushed(bundle);
        return LuSVNCreateError(LuSVNCancelledErrorStatus, message, __FILE__, __LINE__);
    } catch (...) {
        return nullptr;
    }
}

}  // namespace

struct LuSVNContext::Callbacks {
    // Backends from 1.5 on hand over svn_client_commit_item3_t records, older
    // ones svn_client_commit_item2_t.
    template <class SVNCommitItem>
    static svn_error_t* LuSVNGetCommitLogMessage(const char** logMessage, const char** temporaryFile,
                                                 const apr_array_header_t* commitItems, void* baton,
                                                 apr_pool_t* pool) noexcept
    {
        *logMessage = nullptr;
        *temporaryFile = nullptr;
        auto& context = *static_cast<LuSVNContext*>(baton);
        return LuSVNGuardCallback(context.pendingException_, [&]() -> svn_error_t* {
            LuSVNBundlePushed pushed(context.bundle());
            const auto provider = context.logMessageProvider();
            if (!provider) {
                *logMessage = LuSVNEntry<4>()(pool, "");
                return nullptr;
            }
            std::vector<LuSVNCommitItem> items;
            const auto* records = reinterpret_cast<SVNCommitItem* const*>(commitItems->elts);
            for (int index = 0; index < commitItems->nelts; ++index)
                items.push_back(LuSVNCommitItem::commitItemForSVNCommitItem(records[index]));
            std::optional<std::string> message;
            // No message leaves the log message null: Subversion abandons the commit.
            if (provider->contextPromptForLogMessage(context, message, items))
                *logMessage = LuSVNPoolCopyString(message, pool);
            return nullptr;
        });
    }

    static void LuSVNNotifyFunction(void* baton, const svn_wc_notify_t* notify, apr_pool_t*) noexcept
    {
        auto& context = *static_cast<LuSVNContext*>(baton);
        // After a failure the operation is being stopped; the handlers hear no more of it.
        if (context.pendingException_)
            return;
        try {
            if (context.notificationHandler()) {
                LuSVNBundlePushed pushed(context.bundle());
                context.notify(notificationWithSVNNotify(*notify, context.bundleVersion()));
            }
            if (isItemNotification(notify->action)) {
                ++context.progress_.items;
                reportProgress(context);
            }
        } catch (...) {
            context.pendingException_ = std::current_exception();
        }
    }

    // Subversion reports the bytes of each network session; the handler
    // sees the latest report. A handler's exception waits for the next
    // cancellation check, which stops the operation.
    static void LuSVNProgressFunction(apr_off_t progress, apr_off_t total, void* baton, apr_pool_t*) noexcept
    {
        auto& context = *static_cast<LuSVNContext*>(baton);
        if (context.pendingException_)
            return;
        context.progress_.bytes = progress;
        context.progress_.totalBytes = total;
        try {
            reportProgress(context);
        } catch (...) {
            context.pendingException_ = std::current_exception();
        }
    }

    static void reportProgress(LuSVNContext& context)
    {
        if (const auto handler = context.progressHandler())
            handler(context.progress_);
    }

    // Backends from 1.7 on describe a conflict in svn_wc_conflict_description2_t,
    // older ones in svn_wc_conflict_description_t; the resolver gets a copy
    // either way, and its answer is made in Subversion's result pool.
    static svn_error_t* LuSVNConflictResolverFunction2(svn_wc_conflict_result_t** result,
                                                       const svn_wc_conflict_description2_t* description,
                                                       void* baton, apr_pool_t* resultPool,
                                                       apr_pool_t* scratchPool) noexcept
    {
        *result = nullptr;
        auto& context = *static_cast<LuSVNContext*>(baton);
        return LuSVNGuardCallback(context.pendingException_, [&]() -> svn_error_t* {
            LuSVNBundlePushed pushed(context.bundle());
            const auto conflict =
                LuSVNConflict::conflictFromStruct(LuSVNOlderConflictDescription(*description, scratchPool));
            *result = resolve(context, *conflict, resultPool);
            return nullptr;
        });
    }

    static svn_error_t* LuSVNConflictResolverFunction(svn_wc_conflict_result_t** result,
                                                      const svn_wc_conflict_description_t* description, void* baton,
                                                      apr_pool_t* pool) noexcept
    {
        *result = nullptr;
        auto& context = *static_cast<LuSVNContext*>(baton);
        return LuSVNGuardCallback(context.pendingException_, [&]() -> svn_error_t* {
            LuSVNBundlePushed pushed(context.bundle());
            *result = resolve(context, *LuSVNConflict::conflictFromStruct(description), pool);
            return nullptr;
        });
    }

    static svn_wc_conflict_result_t* resolve(LuSVNContext& context, const LuSVNConflict& conflict, apr_pool_t* pool)
    {
        // The resolver may have been taken away since the callback was set.
        const auto resolver = context.conflictResolver();
        const LuSVNConflictResolution resolution = resolver ? resolver(conflict) : LuSVNConflictResolution::postpone();
        auto* result = LuSVNPoolAllocateZeroed<svn_wc_conflict_result_t>(pool);
        result->choice = static_cast<svn_wc_conflict_choice_t>(resolution.choice);
        if (resolution.choice == LuSVNConflictChoiceMerged)
            result->merged_file = LuSVNPoolCopyString(resolution.mergedFilePath, pool);
        return result;
    }

    static svn_error_t* LuSVNCancelFunction(void* baton) noexcept
    {
        auto& context = *static_cast<LuSVNContext*>(baton);
        // A handler failed: stop here, the operation raises its exception.
        if (context.pendingException_)
            return cancellationError(context.bundle(), "Operation was cancelled");
        bool shouldContinue = true;
        try {
            if (const auto delegate = context.delegate())
                delegate->contextQueryContinue(context, shouldContinue);
        } catch (...) {
            return nullptr;  // a failing delegate does not cancel
        }
        return shouldContinue ? nullptr : cancellationError(context.bundle(), "Operation was canceled by the user");
    }
};

void LuSVNContext::setupLogCallback()
{
    if (bundleVersion_ && *bundleVersion_ >= LuSVNVersion::version1_5()) {
        ctx_->log_msg_func3 = &Callbacks::LuSVNGetCommitLogMessage<svn_client_commit_item3_t>;
        ctx_->log_msg_baton3 = this;
    } else {
        ctx_->log_msg_func2 = &Callbacks::LuSVNGetCommitLogMessage<svn_client_commit_item2_t>;
        ctx_->log_msg_baton2 = this;
    }
}

void LuSVNContext::setupNotificationCallback()
{
    ctx_->notify_func2 = &Callbacks::LuSVNNotifyFunction;
    ctx_->notify_baton2 = this;
}

void LuSVNContext::setupCancellationCallback()
{
    ctx_->cancel_func = &Callbacks::LuSVNCancelFunction;
    ctx_->cancel_baton = this;
}

void LuSVNContext::setupProgressCallback()
{
    ctx_->progress_func = &Callbacks::LuSVNProgressFunction;
    ctx_->progress_baton = this;
}

// Left null without resolver, so that Subversion postpones every conflict.
// 1.4 has no conflict callback.
void LuSVNContext::setupConflictCallback()
{
    if (!bundleVersion_ || *bundleVersion_ < LuSVNVersion::version1_5())
        return;
    const bool set = static_cast<bool>(conflictResolver_);
    if (*bundleVersion_ >= LuSVNVersion::version1_7()) {
        ctx_->conflict_func2 = set ? &Callbacks::LuSVNConflictResolverFunction2 : nullptr;
        ctx_->conflict_baton2 = set ? this : nullptr;
    } else {
        ctx_->conflict_func = set ? &Callbacks::LuSVNConflictResolverFunction : nullptr;
        ctx_->conflict_baton = set ? this : nullptr;
    }
}
