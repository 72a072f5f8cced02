#include <tessera/LuSVNContext.h>
#include <tessera/LuSVNLogMessageReceiver.h>
#include <tessera/LuSVNMergeOptions.h>
#include <tessera/LuSVNNode.h>
#include <tessera/LuSVNRevisionRange.h>

#include <exception>

#include "LuSVNAssert.h"
#include "LuSVNBackendFrame.h"
#include "LuSVNLogItemMaker.h"
#include "LuSVNMergeOptionsArray.h"
#include "LuSVNTrace.h"
#include "LuSVNWorkingCopyOperation.h"

using namespace tessera_private;

apr_array_header_t* tessera_private::LuSVNArrayForMergeOptions(const LuSVNMergeOptions& options, apr_pool_t* pool)
{
    LUSVN_PARAMETER_ASSERT(pool != nullptr, "pool != nil");
    apr_array_header_t* array = LuSVNEntry<11>()(pool, 4, sizeof(const char*));
    const auto push = [&](const char* option) { *static_cast<const char**>(LuSVNEntry<12>()(array)) = option; };
    if (options.whitespaceCompareBehavior() == 2)
        push("--ignore-all-space");
    else if (options.whitespaceCompareBehavior() == 1)
        push("--ignore-space-change");
    if (options.ignoreEOLStyle())
        push("--ignore-eol-style");
    return array;
}

namespace {

std::string describe(const LuSVNNode::Path& path)
{
    return path ? path->string() : "(null)";
}

std::string describe(const LuSVNNode::MergeRevision& revision)
{
    return revision ? revision->description() : "(null)";
}

std::string describe(const LuSVNNode::MergeRanges& ranges)
{
    std::string text = "(";
    for (const auto& range : ranges)
        text += (text.size() > 1 ? ", " : "") + (range ? range->description() : std::string("(null)"));
    return text + ")";
}

void refuseRecordOnlyBefore1_5(const LuSVNMergeOptions& options)
{
    if (options.recordOnly())
        throw LuSVNInvalidArgumentException("Record only option is not supported on 1.4");
}

// Runs a merge between Tessera's own Started and Succeeded/Failed
// notifications, inside the context's backend.
template <class Body>
void runMerge(const LuSVNNode::Context& context, const LuSVNNode::LocalPath& workingCopyPath, Body&& body)
{
    LuSVNRunNotified(*context, LuSVNNotifyActionMergeStarted, LuSVNNotifyActionMergeSucceeded,
                     LuSVNNotifyActionMergeFailed, workingCopyPath->string(), [&] {
        LuSVNBackendFrame frame(context->bundle());
        body(frame.pool(), LuSVNWorkingCopyTarget(*workingCopyPath, frame.pool()));
    });
}

struct MergeLogBaton {
    LuSVNLogMessageReceiver& receiver;
    std::exception_ptr pending;
};

svn_error_t* LuSVNMergeLogEntryReceiver(void* baton, svn_log_entry_t* entry, apr_pool_t* pool)
{
    auto* logBaton = static_cast<MergeLogBaton*>(baton);
    return LuSVNGuardCallback(logBaton->pending, [&]() -> svn_error_t* {
        const auto item = LuSVNCreateLogItem(entry->changed_paths, entry->revision,
                                             LuSVNLogRevisionProperty(entry->revprops, "svn:author"),
                                             LuSVNLogRevisionProperty(entry->revprops, "svn:date"),
                                             LuSVNLogRevisionProperty(entry->revprops, "svn:log"), pool);
        if (!logBaton->receiver.receiveLogItem(item))
            return LuSVNCreateError(LuSVNCallbackAbortStatus(), "Operation was cancelled", __FILE__, __LINE__);
        return nullptr;
    });
}

}  // namespace

void LuSVNNode::mergeNodeAtPath(const Path& path1, const MergeRevision& revision1, const Path& path2,
                                const MergeRevision& revision2, const LocalPath& workingCopyPath,
                                const LuSVNMergeOptions& options, const Context& context)
{
    LUSVN_PARAMETER_ASSERT(path1 != nullptr, "path1 != nil");
    LUSVN_PARAMETER_ASSERT(revision1 != nullptr, "revision1 != nil");
    LUSVN_PARAMETER_ASSERT(path2 != nullptr, "path2 != nil");
    LUSVN_PARAMETER_ASSERT(revision2 != nullptr, "revision2 != nil");
    LUSVN_PARAMETER_ASSERT(workingCopyPath != nullptr, "workingCopyPath != nil");
    LUSVN_PARAMETER_ASSERT(context != nullptr, "context != nil");
    LUSVN_TRACE("LuSVNNode", "mergeNodeAtPath:revision:withNodeAtPath:revision:intoWorkingCopyAtPath:withOptions:withContext",
                {"path1", describe(path1)}, {"revision1", describe(revision1)}, {"path2", describe(path2)},
                {"revision2", describe(revision2)}, {"workingCopyPath", workingCopyPath->string()},
                {"options", options.description()}, {"context", context->description()});
    LuSVNCheckDepth(options.depth());
    const bool newer = LuSVNHasDepthForms(*context);
    if (!newer) {
        refuseRecordOnlyBefore1_5(options);
        LuSVNRecursionForDepth(options.depth());
    }
    runMerge(context, workingCopyPath, [&](apr_pool_t* pool, const char* target) {
        const svn_opt_revision_t first = revision1->SVNRevision();
        const svn_opt_revision_t second = revision2->SVNRevision();
        const char* source1 = path1->SVNRepresentationInPool(pool);
        const char* source2 = path2->SVNRepresentationInPool(pool);
        apr_array_header_t* mergeOptions = LuSVNArrayForMergeOptions(options, pool);
        if (newer)
            context->throwIfError(LuSVNEntry<114>()(source1, &first, source2, &second, target,
                                                    static_cast<svn_depth_t>(options.depth()),
                                                    options.ignoreAncestry(), options.force(), options.recordOnly(),
                                                    options.dryRun(), mergeOptions, context->ctx(), pool));
        else
            context->throwIfError(LuSVNEntry<113>()(source1, &first, source2, &second, target,
                                                    LuSVNRecursionForDepth(options.depth()),
                                                    options.ignoreAncestry(), options.force(), options.dryRun(),
                                                    mergeOptions, context->ctx(), pool));
    });
}

void LuSVNNode::mergeNodeAtPath(const Path& path, const MergeRanges& revisionRanges, const MergeRevision& pegRevision,
                                const LocalPath& workingCopyPath, const LuSVNMergeOptions& options,
                                const Context& context)
{
    LUSVN_PARAMETER_ASSERT(path != nullptr, "path != nil");
    for (const auto& range : revisionRanges)
        LUSVN_PARAMETER_ASSERT(range != nullptr, "revisionRanges != nil");
    LUSVN_PARAMETER_ASSERT(pegRevision != nullptr, "pegRevision != nil");
    LUSVN_PARAMETER_ASSERT(workingCopyPath != nullptr, "workingCopyPath != nil");
    LUSVN_PARAMETER_ASSERT(context != nullptr, "context != nil");
    LUSVN_TRACE("LuSVNNode", "mergeNodeAtPath:revisionRanges:pegRevision:intoWorkingCopyAtPath:withOptions:withContext",
                {"path", path->string()}, {"revisionRanges", describe(revisionRanges)},
                {"pegRevision", pegRevision->description()}, {"workingCopyPath", workingCopyPath->string()},
                {"options", options.description()}, {"context", context->description()});
    LuSVNCheckDepth(options.depth());
    const bool newer = LuSVNHasDepthForms(*context);
    if (!newer) {
        if (revisionRanges.size() > 1)
            throw LuSVNInvalidArgumentException("1.4 only supports a single revision range");
        LUSVN_PARAMETER_ASSERT(revisionRanges.size() == 1, "[revisionRanges count] == 1");
        refuseRecordOnlyBefore1_5(options);
        LuSVNRecursionForDepth(options.depth());
    }
    runMerge(context, workingCopyPath, [&](apr_pool_t* pool, const char* target) {
        const char* source = path->SVNRepresentationInPool(pool);
        const svn_opt_revision_t peg = pegRevision->SVNRevision();
        apr_array_header_t* mergeOptions = LuSVNArrayForMergeOptions(options, pool);
        if (newer) {
            apr_array_header_t* ranges =
                LuSVNEntry<11>()(pool, static_cast<int>(revisionRanges.size()), sizeof(svn_opt_revision_range_t*));
            for (const auto& range : revisionRanges)
                *static_cast<svn_opt_revision_range_t**>(LuSVNEntry<12>()(ranges)) = range->SVNRevisionRangeInPool(pool);
            context->throwIfError(LuSVNEntry<117>()(source, ranges, &peg, target,
                                                    static_cast<svn_depth_t>(options.depth()),
                                                    options.ignoreAncestry(), options.force(), options.recordOnly(),
                                                    options.dryRun(), mergeOptions, context->ctx(), pool));
        } else {
            const svn_opt_revision_t first = revisionRanges.front()->first()->SVNRevision();
            const svn_opt_revision_t last = revisionRanges.front()->last()->SVNRevision();
            context->throwIfError(LuSVNEntry<116>()(source, &first, &last, &peg, target,
                                                    LuSVNRecursionForDepth(options.depth()),
                                                    options.ignoreAncestry(), options.force(), options.dryRun(),
                                                    mergeOptions, context->ctx(), pool));
        }
    });
}

void LuSVNNode::reintegrateMergeNodeAtPath(const Path& path, const MergeRevision& revision,
                                           const LocalPath& workingCopyPath, const LuSVNMergeOptions& options,
                                           const Context& context)
{
    LUSVN_PARAMETER_ASSERT(path != nullptr, "path != nil");
    LUSVN_PARAMETER_ASSERT(revision != nullptr, "revision != nil");
    LUSVN_PARAMETER_ASSERT(workingCopyPath != nullptr, "workingCopyPath != nil");
    LUSVN_PARAMETER_ASSERT(context != nullptr, "context != nil");
    LUSVN_TRACE("LuSVNNode", "reintegrateMergeNodeAtPath:revision:intoWorkingCopyAtPath:withOptions:withContext",
                {"path", path->string()}, {"revision", revision->description()},
                {"workingCopyPath", workingCopyPath->string()}, {"options", options.description()},
                {"context", context->description()});
    if (!LuSVNHasDepthForms(*context))
        throw LuSVNInvalidArgumentException("Reintegration merge requires 1.5 or newer");
    if (options.force())
        throw LuSVNInvalidArgumentException("Invalid force option: Reintegration merges can't be forced");
    if (options.recordOnly())
        throw LuSVNInvalidArgumentException("Invalid recordOnly option: Reintegration merges can't record-only");
    if (options.depth() != LuSVNDepthInfinity && options.depth() != LuSVNDepthUnknown)
        throw LuSVNInvalidArgumentException("Invalid depth: must be LuSVNDepthInfinity or LuSVNDepthUnknown");
    runMerge(context, workingCopyPath, [&](apr_pool_t* pool, const char* target) {
        const svn_opt_revision_t peg = revision->SVNRevision();
        context->throwIfError(LuSVNEntry<115>()(path->SVNRepresentationInPool(pool), &peg, target, options.dryRun(),
                                                LuSVNArrayForMergeOptions(options, pool), context->ctx(), pool));
    });
}

std::vector<LuSVNNode::URLPath> LuSVNNode::suggestMergeSourcesForNodeAtPath(const Path& path,
                                                                           const MergeRevision& pegRevision,
                                                                           const Context& context)
{
    LUSVN_PARAMETER_ASSERT(path != nullptr, "path != nil");
    LUSVN_PARAMETER_ASSERT(pegRevision != nullptr, "pegRevision != nil");
    LUSVN_PARAMETER_ASSERT(context != nullptr, "context != nil");
    LUSVN_TRACE("LuSVNNode", "suggestMergeSourcesForNodeAtPath:pegRevision:withContext", {"path", path->string()},
                {"pegRevision", pegRevision->description()}, {"context", context->description()});
    if (!LuSVNHasDepthForms(*context))
        return {};
    LuSVNBackendFrame frame(context->bundle());
    const svn_opt_revision_t peg = pegRevision->SVNRevision();
    apr_array_header_t* suggestions = nullptr;
    context->throwIfError(LuSVNEntry<118>()(&suggestions, path->SVNRepresentationInPool(frame.pool()), &peg,
                                            context->ctx(), frame.pool()));
    std::vector<URLPath> urls;
    for (int index = 0; suggestions && index < suggestions->nelts; ++index)
        urls.push_back(LuSVNURL::URLWithString(reinterpret_cast<const char* const*>(suggestions->elts)[index]));
    return urls;
}

std::vector<std::shared_ptr<LuSVNLogItem>> LuSVNNode::readLogForNodeAtPath(
    const Path& path, const MergeRevision& pegRevision, const Path& mergeSourcePath,
    const MergeRevision& mergeSourcePegRevision, bool includingRevisions,
    const std::shared_ptr<LuSVNLogMessageReceiverDelegate>& delegate, bool discoverChangedPaths,
    const Context& context)
{
    LUSVN_PARAMETER_ASSERT(path != nullptr, "path != nil");
    LUSVN_PARAMETER_ASSERT(pegRevision != nullptr, "pegRevision != nil");
    LUSVN_PARAMETER_ASSERT(mergeSourcePath != nullptr, "mergeSourcePath != nil");
    LUSVN_PARAMETER_ASSERT(mergeSourcePegRevision != nullptr, "mergeSourcePegRevision != nil");
    LUSVN_PARAMETER_ASSERT(context != nullptr, "context != nil");
    LUSVN_TRACE("LuSVNNode",
                "readLogForNodeAtPath:pegRevision:forMergeWithNodeAtPath:pegRevision:includingRevisions:delegate:"
                "discoverChangedPaths:withContext",
                {"path", path->string()}, {"pegRevision", pegRevision->description()},
                {"mergeSourcePath", mergeSourcePath->string()},
                {"mergeSourcePegRevision", mergeSourcePegRevision->description()},
                {"includingRevisions", includingRevisions ? "1" : "0"},
                {"discoverChangedPaths", discoverChangedPaths ? "YES" : "NO"}, {"context", context->description()});
    if (!LuSVNHasDepthForms(*context))
        throw LuSVNInvalidArgumentException("Reading log for merge requires 1.5 or newer");
    auto receiver = LuSVNLogMessageReceiver::receiverWithDelegate(delegate);
    LuSVNBackendFrame frame(context->bundle());
    const svn_opt_revision_t peg = pegRevision->SVNRevision();
    const svn_opt_revision_t sourcePeg = mergeSourcePegRevision->SVNRevision();
    const char* target = path->SVNRepresentationInPool(frame.pool());
    const char* source = mergeSourcePath->SVNRepresentationInPool(frame.pool());
    MergeLogBaton baton{*receiver, nullptr};
    // The revision properties the receiver reads; all of them otherwise.
    apr_array_header_t* properties = LuSVNEntry<11>()(frame.pool(), 3, sizeof(const char*));
    for (const char* name : {"svn:author", "svn:date", "svn:log"})
        *static_cast<const char**>(LuSVNEntry<12>()(properties)) = name;
    svn_error_t* error =
        includingRevisions
            ? LuSVNEntry<120>()(target, &peg, source, &sourcePeg, LuSVNMergeLogEntryReceiver, &baton,
                                discoverChangedPaths, properties, context->ctx(), frame.pool())
            : LuSVNEntry<119>()(target, &peg, source, &sourcePeg, LuSVNMergeLogEntryReceiver, &baton,
                                discoverChangedPaths, properties, context->ctx(), frame.pool());
    if (baton.pending)
        LuSVNRethrowPending(baton.pending, error);
    context->throwIfError(error);
    return receiver->logItems();
}
