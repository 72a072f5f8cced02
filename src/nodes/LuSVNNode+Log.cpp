#include <tessera/LuSVNContext.h>
#include <tessera/LuSVNDateConversion.h>
#include <tessera/LuSVNLogMessageReceiver.h>
#include <tessera/LuSVNLogOptions.h>
#include <tessera/LuSVNNode.h>

#include <exception>

#include "LuSVNAssert.h"
#include "LuSVNBackendFrame.h"
#include "LuSVNLogItemMaker.h"
#include "LuSVNTrace.h"

namespace {

struct LogBaton {
    LuSVNLogMessageReceiver& receiver;
    std::exception_ptr pending;
};

std::optional<std::string> optionalText(const char* text)
{
    return text ? std::optional<std::string>(text) : std::nullopt;
}

}  // namespace

std::shared_ptr<LuSVNLogItem> tessera_private::LuSVNCreateLogItem(apr_hash_t* changedPaths, svn_revnum_t revision,
                                                                  const char* author, const char* date,
                                                                  const char* message, apr_pool_t* pool)
{
    auto item = std::make_shared<LuSVNLogItem>(optionalText(message), static_cast<std::int32_t>(revision),
                                               date ? LuSVNDateConversion::dateWithISO8601CString(date, pool)
                                                    : std::nullopt,
                                               optionalText(author));
    if (!changedPaths)
        return item;
    for (apr_hash_index_t* index = LuSVNEntry<14>()(pool, changedPaths); index; index = LuSVNEntry<15>()(index)) {
        const void* key = nullptr;
        void* value = nullptr;
        LuSVNEntry<16>()(index, &key, nullptr, &value);
        const auto* changed = static_cast<const svn_log_changed_path_t*>(value);
        const bool copied = changed->copyfrom_path != nullptr;
        item->addChange(std::make_shared<LuSVNLogPathChange>(
            static_cast<const char*>(key), LuSVNLogActionFromChar(changed->action), optionalText(changed->copyfrom_path),
            copied ? static_cast<std::int32_t>(changed->copyfrom_rev) : -1));
    }
    return item;
}

namespace {

svn_error_t* LuSVNLogMessageReceiverCallbackFunction(void* baton, apr_hash_t* changedPaths, svn_revnum_t revision,
                                                     const char* author, const char* date, const char* message,
                                                     apr_pool_t* pool)
{
    auto* logBaton = static_cast<LogBaton*>(baton);
    return LuSVNGuardCallback(logBaton->pending, [&]() -> svn_error_t* {
        if (!logBaton->receiver.receiveLogItem(
                tessera_private::LuSVNCreateLogItem(changedPaths, revision, author, date, message, pool)))
            return LuSVNCreateError(LuSVNCallbackAbortStatus(), "Operation was cancelled", __FILE__, __LINE__);
        return nullptr;
    });
}

}  // namespace

std::vector<std::shared_ptr<LuSVNLogItem>> LuSVNNode::readLogForNodeAtPath(
    const Path& path, const std::shared_ptr<LuSVNLogMessageReceiverDelegate>& delegate, const LuSVNLogOptions& options,
    const Context& context)
{
    LUSVN_PARAMETER_ASSERT(path != nullptr, "path != nil");
    LUSVN_PARAMETER_ASSERT(context != nullptr, "context != nil");
    LUSVN_TRACE("LuSVNNode", "readLogForNodeAtPath:delegate:options:withContext", {"path", path->string()},
                {"options", options.description()}, {"context", context->description()});
    LuSVNBackendFrame frame(context->bundle());
    apr_array_header_t* targets = LuSVNEntry<11>()(frame.pool(), 1, sizeof(const char*));
    *static_cast<const char**>(LuSVNEntry<12>()(targets)) = path->SVNRepresentationInPool(frame.pool());
    const svn_opt_revision_t peg = options.pegRevision()->SVNRevision();
    const svn_opt_revision_t start = options.fromRevision()->SVNRevision();
    const svn_opt_revision_t end = options.toRevision()->SVNRevision();
    auto receiver = LuSVNLogMessageReceiver::receiverWithDelegate(delegate);
    LogBaton baton{*receiver, nullptr};
    svn_error_t* error = LuSVNEntry<58>()(targets, &peg, &start, &end, options.limit(), options.discoverChangedPaths(),
                                          !options.traverseCopyHistory(), LuSVNLogMessageReceiverCallbackFunction,
                                          &baton, context->ctx(), frame.pool());
    if (baton.pending)
        LuSVNRethrowPending(baton.pending, error);
    context->throwIfError(error);
    return receiver->logItems();
}
