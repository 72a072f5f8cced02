#include <tessera/LuSVNContext.h>
#include <tessera/LuSVNMergingSummary.h>
#include <tessera/LuSVNNode.h>
#include <tessera/LuSVNPlatformExceptions.h>

#include "LuSVNAssert.h"
#include "LuSVNBackendFrame.h"
#include "LuSVNTrace.h"

using namespace tessera_private;

LuSVNMergingSummary LuSVNNode::mergingSummaryForNodeAtPath(const Path& sourcePath, const MergeRevision& sourceRevision,
                                                           const Path& targetPath, const MergeRevision& targetRevision,
                                                           const Context& context)
{
    LUSVN_PARAMETER_ASSERT(sourcePath != nullptr, "sourcePath != nil");
    LUSVN_PARAMETER_ASSERT(sourceRevision != nullptr, "sourceRevision != nil");
    LUSVN_PARAMETER_ASSERT(targetPath != nullptr, "targetPath != nil");
    LUSVN_PARAMETER_ASSERT(targetRevision != nullptr, "targetRevision != nil");
    LUSVN_PARAMETER_ASSERT(context != nullptr, "context != nil");
    LUSVN_TRACE("LuSVNNode", "mergingSummaryForNodeAtPath:revision:targetPath:revision:withContext",
                {"sourcePath", sourcePath->string()}, {"sourceRevision", sourceRevision->description()},
                {"targetPath", targetPath->string()}, {"targetRevision", targetRevision->description()},
                {"context", context->description()});
    LuSVNBackendFrame frame(context->bundle());
    if (!LuSVNCurrentHasExtensionEntryPoint(6))
        throw LuSVNInvalidArgumentException("Merging summary requires 1.8 or newer");
    const svn_opt_revision_t source = sourceRevision->SVNRevision();
    const svn_opt_revision_t target = targetRevision->SVNRevision();
    svn_boolean_t needsReintegration = 0;
    const char* urls[5] = {};
    svn_revnum_t revisions[4] = {};
    context->throwIfError(LuSVNExtensionEntry<6>()(
        &needsReintegration, &urls[0], &revisions[0], &urls[1], &revisions[1], &urls[2], &revisions[2], &urls[3],
        &revisions[3], &urls[4], sourcePath->SVNRepresentationInPool(frame.pool()), &source,
        targetPath->SVNRepresentationInPool(frame.pool()), &target, context->ctx(), frame.pool(), frame.pool()));
    // Copied now: the strings live in the frame's pool.
    const auto location = [&](int index) {
        return LuSVNMergingSummary::Location{LuSVNURL::URLWithString(urls[index]),
                                             static_cast<std::int32_t>(revisions[index])};
    };
    return LuSVNMergingSummary(needsReintegration != 0, location(0), location(1), location(2), location(3),
                               LuSVNURL::URLWithString(urls[4]));
}
