#include <tessera/LuSVNContext.h>
#include <tessera/LuSVNDiff.h>
#include <tessera/LuSVNException.h>

#include <exception>

#include "LuSVNAssert.h"
#include "LuSVNBackendFrame.h"
#include "LuSVNTrace.h"

namespace {

struct SummaryBaton {
    const LuSVNDiff::SummaryReceiver& receiver;
    std::exception_ptr pending;
};

svn_error_t* LuTesseraDiffSummarized(const svn_client_diff_summarize_t* summary, void* baton, apr_pool_t*)
{
    auto& summaryBaton = *static_cast<SummaryBaton*>(baton);
    return LuSVNGuardCallback(summaryBaton.pending, [&]() -> svn_error_t* {
        summaryBaton.receiver(LuSVNDiffSummary::summaryWithSVNSummary(*summary));
        return nullptr;
    });
}

// Runs `call` (given Subversion's depth, ignore_ancestry, callback and baton)
// inside a frame of the context's backend; the summary calls came with 1.5.
template <class Call>
void summarize(const LuSVNDiffOptions& options, const LuSVNDiff::SummaryReceiver& receiver,
               const LuSVNDiff::Context& context, Call&& call)
{
    LuSVNBackendFrame frame(context->bundle());
    if (!tessera_private::LuSVNCurrentHasExtensionEntryPoint(2))
        throw LuSVNException("Diff summaries require 1.5 or greater");
    SummaryBaton baton{receiver, nullptr};
    svn_error_t* error = call(options.recursive() ? svn_depth_infinity : svn_depth_files, !options.noticeAncestry(),
                              LuTesseraDiffSummarized, &baton, frame.pool());
    if (baton.pending)
        LuSVNRethrowPending(baton.pending, error);
    context->throwIfError(error);
}

}  // namespace

void LuSVNDiff::summarizeOriginalAtPath(const Path& originalPath, const Revision& originalRevision,
                                        const Path& modifiedPath, const Revision& modifiedRevision,
                                        const LuSVNDiffOptions& options, const SummaryReceiver& receiver,
                                        const Context& context)
{
    LUSVN_PARAMETER_ASSERT(originalPath != nullptr, "originalPath != nil");
    LUSVN_PARAMETER_ASSERT(originalRevision != nullptr, "originalRevision != nil");
    LUSVN_PARAMETER_ASSERT(modifiedPath != nullptr, "modifiedPath != nil");
    LUSVN_PARAMETER_ASSERT(modifiedRevision != nullptr, "modifiedRevision != nil");
    LUSVN_PARAMETER_ASSERT(receiver != nullptr, "receiver != nil");
    LUSVN_PARAMETER_ASSERT(context != nullptr, "context != nil");
    LUSVN_TRACE("LuSVNDiff", "summarizeOriginalAtPath:revision:withModifiedAtPath:revision:options:receiver:context",
                {"originalPath", originalPath->string()}, {"originalRevision", originalRevision->description()},
                {"modifiedPath", modifiedPath->string()}, {"modifiedRevision", modifiedRevision->description()},
                {"context", context->description()});
    const svn_opt_revision_t revision1 = originalRevision->SVNRevision();
    const svn_opt_revision_t revision2 = modifiedRevision->SVNRevision();
    summarize(options, receiver, context,
              [&](svn_depth_t depth, bool ignoreAncestry, svn_client_diff_summarize_func_t callback, void* baton,
                  apr_pool_t* pool) {
                  return LuSVNExtensionEntry<2>()(originalPath->SVNRepresentationInPool(pool), &revision1,
                                                  modifiedPath->SVNRepresentationInPool(pool), &revision2, depth,
                                                  ignoreAncestry, nullptr, callback, baton, context->ctx(), pool);
              });
}

void LuSVNDiff::summarizePath(const Path& path, const Revision& pegRevision, const Revision& startRevision,
                              const Revision& endRevision, const LuSVNDiffOptions& options,
                              const SummaryReceiver& receiver, const Context& context)
{
    LUSVN_PARAMETER_ASSERT(path != nullptr, "path != nil");
    LUSVN_PARAMETER_ASSERT(pegRevision != nullptr, "pegRevision != nil");
    LUSVN_PARAMETER_ASSERT(startRevision != nullptr, "startRevision != nil");
    LUSVN_PARAMETER_ASSERT(endRevision != nullptr, "endRevision != nil");
    LUSVN_PARAMETER_ASSERT(receiver != nullptr, "receiver != nil");
    LUSVN_PARAMETER_ASSERT(context != nullptr, "context != nil");
    LUSVN_TRACE("LuSVNDiff", "summarizePath:pegRevision:startRevision:endRevision:options:receiver:context",
                {"path", path->string()}, {"pegRevision", pegRevision->description()},
                {"startRevision", startRevision->description()}, {"endRevision", endRevision->description()},
                {"context", context->description()});
    const svn_opt_revision_t peg = pegRevision->SVNRevision();
    const svn_opt_revision_t start = startRevision->SVNRevision();
    const svn_opt_revision_t end = endRevision->SVNRevision();
    summarize(options, receiver, context,
              [&](svn_depth_t depth, bool ignoreAncestry, svn_client_diff_summarize_func_t callback, void* baton,
                  apr_pool_t* pool) {
                  return LuSVNExtensionEntry<3>()(path->SVNRepresentationInPool(pool), &peg, &start, &end, depth,
                                                  ignoreAncestry, nullptr, callback, baton, context->ctx(), pool);
              });
}
