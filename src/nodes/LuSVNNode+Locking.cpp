#include <tessera/LuSVNContext.h>
#include <tessera/LuSVNException.h>
#include <tessera/LuSVNLockOptions.h>
#include <tessera/LuSVNNode.h>
#include <tessera/LuSVNPlatformExceptions.h>
#include <tessera/LuSVNUnlockOptions.h>

#include <exception>

#include "LuSVNAssert.h"
#include "LuSVNBackendFrame.h"
#include "LuSVNTrace.h"
#include "LuSVNWorkingCopyOperation.h"

using namespace tessera_private;

namespace {

// Subversion reports a target it cannot lock or unlock only as a
// notification, and the call itself succeeds: the outcome of each target is
// read on the notifications' way to the context's own callback.
struct LockOutcome {
    explicit LockOutcome(svn_wc_notify_action_t failed) : failedAction(failed) {}

    svn_wc_notify_action_t failedAction;
    svn_wc_notify_func2_t contextFunction = nullptr;
    void* contextBaton = nullptr;
    std::vector<std::shared_ptr<const LuSVNLock>> locks;
    std::size_t failures = 0;
    std::vector<LuSVNErrorDictionary> errors;
    std::exception_ptr pending;
};

void LuSVNLockNotifyFunction(void* baton, const svn_wc_notify_t* notify, apr_pool_t* pool) noexcept
{
    auto& outcome = *static_cast<LockOutcome*>(baton);
    try {
        if (notify->action == svn_wc_notify_locked && notify->lock)
            outcome.locks.push_back(LuSVNLock::lockWithSVNLock(notify->lock));
        if (notify->action == outcome.failedAction) {
            ++outcome.failures;
            if (notify->err)
                outcome.errors.push_back(LuSVNException::dictionaryForError(notify->err));
        }
    } catch (...) {
        if (!outcome.pending)
            outcome.pending = std::current_exception();
    }
    if (outcome.contextFunction)
        outcome.contextFunction(outcome.contextBaton, notify, pool);
}

// Puts the outcome's callback before the context's for one call, and the
// context's back on every exit.
class OutcomeWatch {
public:
    OutcomeWatch(svn_client_ctx_t* ctx, LockOutcome& outcome) : ctx_(ctx), outcome_(outcome)
    {
        outcome.contextFunction = ctx->notify_func2;
        outcome.contextBaton = ctx->notify_baton2;
        ctx->notify_func2 = LuSVNLockNotifyFunction;
        ctx->notify_baton2 = &outcome;
    }
    ~OutcomeWatch()
    {
        ctx_->notify_func2 = outcome_.contextFunction;
        ctx_->notify_baton2 = outcome_.contextBaton;
    }
    OutcomeWatch(const OutcomeWatch&) = delete;
    OutcomeWatch& operator=(const OutcomeWatch&) = delete;

private:
    svn_client_ctx_t* ctx_;
    LockOutcome& outcome_;
};

// The errors of the failed targets as one chain, each error with its own
// causes, in the order they came.
std::shared_ptr<const LuSVNErrorDictionary> chainOfErrors(const std::vector<LuSVNErrorDictionary>& errors)
{
    std::shared_ptr<const LuSVNErrorDictionary> next;
    for (auto error = errors.rbegin(); error != errors.rend(); ++error) {
        std::vector<const LuSVNErrorDictionary*> links;
        for (const LuSVNErrorDictionary* link = &*error; link; link = link->cause.get())
            links.push_back(link);
        for (auto link = links.rbegin(); link != links.rend(); ++link) {
            auto copy = std::make_shared<LuSVNErrorDictionary>(**link);
            copy->cause = std::move(next);
            next = std::move(copy);
        }
    }
    return next;
}

// After the call: a callback's exception, then the failed targets.
void raiseFailures(LockOutcome& outcome, const std::string& reason)
{
    if (outcome.pending)
        std::rethrow_exception(outcome.pending);
    if (outcome.failures == 0)
        return;
    constexpr int illegalTarget = 200009;
    LuSVNErrorDictionary info;
    info.message = reason;
    info.status = illegalTarget;
    info.cause = chainOfErrors(outcome.errors);
    throw LuSVNException(reason, info);
}

// The targets as Subversion takes them: URLs as they are, working-copy paths
// guarded as for every working-copy call.
apr_array_header_t* targetArray(const std::vector<LuSVNNode::Path>& paths, apr_pool_t* pool)
{
    apr_array_header_t* array = LuSVNEntry<11>()(pool, static_cast<int>(paths.size()), sizeof(const char*));
    for (const auto& path : paths) {
        LUSVN_PARAMETER_ASSERT(path != nullptr, "path != nil");
        const auto local = std::dynamic_pointer_cast<const LuSVNLocalPath>(path);
        *static_cast<const char**>(LuSVNEntry<12>()(array)) =
            local ? LuSVNWorkingCopyTarget(*local, pool) : path->SVNRepresentationInPool(pool);
    }
    return array;
}

std::string describeTargets(const std::vector<LuSVNNode::Path>& paths)
{
    std::string text;
    for (const auto& path : paths)
        text += (text.empty() ? "" : ", ") + (path ? path->string() : std::string("(null)"));
    return "(" + text + ")";
}

}  // namespace

std::vector<std::shared_ptr<const LuSVNLock>> LuSVNNode::lockNodes(const std::vector<Path>& nodePaths,
                                                                   const std::optional<std::string>& comment,
                                                                   const LuSVNLockOptions& options,
                                                                   const Context& context)
{
    LUSVN_PARAMETER_ASSERT(context != nullptr, "context != nil");
    LUSVN_TRACE("LuSVNNode", "lockNodes:withComment:withOptions:withContext", {"nodePaths", describeTargets(nodePaths)},
                {"comment", comment.value_or("(null)")}, {"options", options.description()},
                {"context", context->description()});
    // Subversion takes the comment as a C string, which would end at the zero.
    if (comment && comment->find('\0') != std::string::npos)
        throw LuSVNInvalidArgumentException("Lock comment contains a zero byte");
    LuSVNBackendFrame frame(context->bundle());
    apr_array_header_t* targets = targetArray(nodePaths, frame.pool());
    context->beginProgress();
    LockOutcome outcome(svn_wc_notify_failed_lock);
    {
        OutcomeWatch watch(context->ctx(), outcome);
        context->throwIfError(LuSVNEntry<57>()(targets, comment ? comment->c_str() : nullptr, options.stealLocks(),
                                               context->ctx(), frame.pool()));
    }
    raiseFailures(outcome, "One or more locks could not be obtained");
    return std::move(outcome.locks);
}

void LuSVNNode::unlockNodes(const std::vector<Path>& nodePaths, const LuSVNUnlockOptions& options,
                            const Context& context)
{
    LUSVN_PARAMETER_ASSERT(context != nullptr, "context != nil");
    LUSVN_TRACE("LuSVNNode", "unlockNodes:withOptions:withContext", {"nodePaths", describeTargets(nodePaths)},
                {"options", options.description()}, {"context", context->description()});
    LuSVNBackendFrame frame(context->bundle());
    apr_array_header_t* targets = targetArray(nodePaths, frame.pool());
    context->beginProgress();
    LockOutcome outcome(svn_wc_notify_failed_unlock);
    {
        OutcomeWatch watch(context->ctx(), outcome);
        context->throwIfError(
            LuSVNEntry<71>()(targets, options.breakLocks(), context->ctx(), frame.pool()));
    }
    raiseFailures(outcome, "One or more locks could not be released");
}

std::shared_ptr<const LuSVNLock> LuSVNNode::controllingLock() const
{
    if (!status())
        return lock();
    switch (lockStatus()) {
    case LuSVNLockStatusLockedHere:
    case LuSVNLockStatusBroken:
    case LuSVNLockStatusLockedLocally:
        return lock();
    case LuSVNLockStatusLockedElsewhere:
    case LuSVNLockStatusStolen:
        return status()->repositoryLock();
    default:
        return nullptr;
    }
}
