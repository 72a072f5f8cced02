#include <tessera/LuSVNContext.h>
#include <tessera/LuSVNDateConversion.h>
#include <tessera/LuSVNLogMessageReceiver.h>
#include <tessera/LuSVNLogOptions.h>
#include <tessera/LuSVNNode.h>
#include <tessera/LuSVNPlatformExceptions.h>

#include <exception>
#include <vector>

#include "LuSVNAssert.h"
#include "LuSVNBackendFrame.h"
#include "LuSVNLogItemMaker.h"
#include "LuSVNTrace.h"

namespace {

/// Calls body(path, record) for each entry of a changed-paths hash, whose
/// values are Subversion's records of type Record.
template <class Record, class Body>
void forEachChangedPath(apr_hash_t* changedPaths, apr_pool_t* pool, Body&& body)
{
    for (apr_hash_index_t* index = LuSVNEntry<14>()(pool, changedPaths); index; index = LuSVNEntry<15>()(index)) {
        const void* key = nullptr;
        void* value = nullptr;
        LuSVNEntry<16>()(index, &key, nullptr, &value);
        body(static_cast<const char*>(key), *static_cast<const Record*>(value));
    }
}

std::optional<std::string> optionalText(const char* text)
{
    return text ? std::optional<std::string>(text) : std::nullopt;
}

template <class Record>
std::shared_ptr<LuSVNLogPathChange> makeChange(const char* path, const Record& changed)
{
    const bool copied = changed.copyfrom_path != nullptr;
    return std::make_shared<LuSVNLogPathChange>(path, LuSVNLogActionFromChar(changed.action),
                                                optionalText(changed.copyfrom_path),
                                                copied ? static_cast<std::int32_t>(changed.copyfrom_rev) : -1);
}

std::optional<bool> tristate(svn_tristate_t value)
{
    if (value == svn_tristate_unknown)
        return std::nullopt;
    return value == svn_tristate_true;
}

LuSVNNodeKind nodeKind(svn_node_kind_t kind)
{
    switch (kind) {
    case svn_node_none: return LuSVNNodeKindNone;
    case svn_node_file: return LuSVNNodeKindFile;
    case svn_node_dir: return LuSVNNodeKindDirectory;
    default: return LuSVNNodeKindUnknown;
    }
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
    if (changedPaths)
        forEachChangedPath<svn_log_changed_path_t>(changedPaths, pool, [&](const char* path, const auto& changed) {
            item->addChange(makeChange(path, changed));
        });
    return item;
}

const char* tessera_private::LuSVNLogRevisionProperty(apr_hash_t* properties, const char* name)
{
    const auto* value = properties ? static_cast<const svn_string_t*>(LuSVNEntry<17>()(properties, name, -1)) : nullptr;
    return value ? value->data : nullptr;
}

namespace {

struct LogBaton {
    LuSVNLogMessageReceiver& receiver;
    std::exception_ptr pending;
    // Whether the entries carry 1.7's fields: the modification flags of the
    // changed paths and the reverse-merge flag.
    bool modificationsKnown = false;
    // The items whose merged revisions are still arriving, outermost first.
    std::vector<std::shared_ptr<LuSVNLogItem>> open = {};
};

svn_error_t* cancelled()
{
    return LuSVNCreateError(LuSVNCallbackAbortStatus(), "Operation was cancelled", __FILE__, __LINE__);
}

svn_error_t* LuSVNLogMessageReceiverCallbackFunction(void* baton, apr_hash_t* changedPaths, svn_revnum_t revision,
                                                     const char* author, const char* date, const char* message,
                                                     apr_pool_t* pool)
{
    auto* logBaton = static_cast<LogBaton*>(baton);
    return LuSVNGuardCallback(logBaton->pending, [&]() -> svn_error_t* {
        if (!logBaton->receiver.receiveLogItem(
                tessera_private::LuSVNCreateLogItem(changedPaths, revision, author, date, message, pool)))
            return cancelled();
        return nullptr;
    });
}

std::shared_ptr<LuSVNLogItem> createEntryItem(const svn_log_entry_t& entry, bool modificationsKnown, apr_pool_t* pool)
{
    using tessera_private::LuSVNLogRevisionProperty;
    auto item = tessera_private::LuSVNCreateLogItem(nullptr, entry.revision,
                                                    LuSVNLogRevisionProperty(entry.revprops, "svn:author"),
                                                    LuSVNLogRevisionProperty(entry.revprops, "svn:date"),
                                                    LuSVNLogRevisionProperty(entry.revprops, "svn:log"), pool);
    if (entry.changed_paths2)
        forEachChangedPath<svn_log_changed_path2_t>(entry.changed_paths2, pool,
                                                    [&](const char* path, const auto& changed) {
            auto change = makeChange(path, changed);
            change->setNodeKind(nodeKind(changed.node_kind));
            if (modificationsKnown) {
                change->setTextModified(tristate(changed.text_modified));
                change->setPropertiesModified(tristate(changed.props_modified));
            }
            item->addChange(std::move(change));
        });
    if (modificationsKnown)
        item->setSubtractiveMerge(entry.subtractive_merge);
    return item;
}

// An entry with children is followed by the revisions it merged and then by
// an entry without revision that closes it. A top-level item goes to the
// receiver once it is complete.
svn_error_t* LuSVNLogEntryReceiverCallbackFunction(void* baton, svn_log_entry_t* entry, apr_pool_t* pool)
{
    auto* logBaton = static_cast<LogBaton*>(baton);
    return LuSVNGuardCallback(logBaton->pending, [&]() -> svn_error_t* {
        auto& open = logBaton->open;
        std::shared_ptr<LuSVNLogItem> complete;
        if (entry->revision == SVN_INVALID_REVNUM) {
            if (open.empty())
                return nullptr;
            complete = open.back();
            open.pop_back();
        } else {
            auto item = createEntryItem(*entry, logBaton->modificationsKnown, pool);
            if (!open.empty())
                open.back()->addChild(item);
            if (entry->has_children)
                open.push_back(item);
            else
                complete = item;
        }
        if (complete && open.empty() && !logBaton->receiver.receiveLogItem(complete))
            return cancelled();
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
    // svn_client_log5 (1.6) reports node kinds, modification flags (1.7) and
    // merged revisions; older backends have svn_client_log3 alone.
    const bool newerForm = tessera_private::LuSVNCurrentHasExtensionEntryPoint(0);
    if (options.includeMergedRevisions() && !newerForm)
        throw LuSVNInvalidArgumentException("Reading merged revisions requires 1.6 or newer");
    apr_array_header_t* targets = LuSVNEntry<11>()(frame.pool(), 1, sizeof(const char*));
    *static_cast<const char**>(LuSVNEntry<12>()(targets)) = path->SVNRepresentationInPool(frame.pool());
    const svn_opt_revision_t peg = options.pegRevision()->SVNRevision();
    svn_opt_revision_range_t range{options.fromRevision()->SVNRevision(), options.toRevision()->SVNRevision()};
    auto receiver = LuSVNLogMessageReceiver::receiverWithDelegate(delegate);
    const auto version = context->bundleVersion();
    LogBaton baton{*receiver, nullptr, version && version->isGreaterThanOrEqualTo(LuSVNVersion::version1_7())};
    svn_error_t* error = nullptr;
    if (newerForm) {
        apr_array_header_t* ranges = LuSVNEntry<11>()(frame.pool(), 1, sizeof(svn_opt_revision_range_t*));
        *static_cast<svn_opt_revision_range_t**>(LuSVNEntry<12>()(ranges)) = &range;
        // The revision properties the items hold; all of them otherwise.
        apr_array_header_t* properties = LuSVNEntry<11>()(frame.pool(), 3, sizeof(const char*));
        for (const char* name : {"svn:author", "svn:date", "svn:log"})
            *static_cast<const char**>(LuSVNEntry<12>()(properties)) = name;
        error = LuSVNExtensionEntry<0>()(targets, &peg, ranges, options.limit(), options.discoverChangedPaths(),
                                         !options.traverseCopyHistory(), options.includeMergedRevisions(),
                                         properties, LuSVNLogEntryReceiverCallbackFunction, &baton, context->ctx(),
                                         frame.pool());
    } else {
        error = LuSVNEntry<58>()(targets, &peg, &range.start, &range.end, options.limit(),
                                 options.discoverChangedPaths(), !options.traverseCopyHistory(),
                                 LuSVNLogMessageReceiverCallbackFunction, &baton, context->ctx(), frame.pool());
    }
    if (baton.pending)
        LuSVNRethrowPending(baton.pending, error);
    context->throwIfError(error);
    return receiver->logItems();
}
