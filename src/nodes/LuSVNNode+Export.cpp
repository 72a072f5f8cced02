#include <tessera/LuSVNContext.h>
#include <tessera/LuSVNExportOptions.h>
#include <tessera/LuSVNNode.h>

#include "LuSVNAssert.h"
#include "LuSVNBackendFrame.h"
#include "LuSVNResolvedRevisions.h"
#include "LuSVNTrace.h"
#include "LuSVNWorkingCopyOperation.h"

using namespace tessera_private;

std::int32_t LuSVNNode::exportNodeAtPath(const Path& path, const LocalPath& toPath, const LuSVNExportOptions& options,
                                         const Context& context)
{
    LUSVN_PARAMETER_ASSERT(path != nullptr, "path != nil");
    LUSVN_PARAMETER_ASSERT(toPath != nullptr, "toPath != nil");
    LUSVN_PARAMETER_ASSERT(context != nullptr, "context != nil");
    LUSVN_TRACE("LuSVNNode", "exportNodeAtPath:toPath:withOptions:withContext", {"path", path->string()},
                {"toPath", toPath->string()}, {"options", options.description()}, {"context", context->description()});
    LuSVNCheckDepth(options.depth());
    LuSVNBackendFrame frame(context->bundle());
    const auto [peg, operative] = LuSVNResolvedRevisions(*path, *options.revision());
    const char* from = path->SVNRepresentationInPool(frame.pool());
    const char* to = toPath->SVNRepresentationInPool(frame.pool());
    const char* nativeEOL = options.EOLMarkers().empty() ? nullptr : options.EOLMarkers().c_str();
    svn_revnum_t result = LuSVNInvalidRevision;
    if (LuSVNHasDepthForms(*context))
        context->throwIfError(LuSVNEntry<52>()(&result, from, to, &peg, &operative, options.overwriteExisting(),
                                               !options.processExternals(), static_cast<svn_depth_t>(options.depth()),
                                               nativeEOL, context->ctx(), frame.pool()));
    else
        context->throwIfError(LuSVNEntry<51>()(&result, from, to, &peg, &operative, options.overwriteExisting(),
                                               !options.processExternals(), LuSVNRecursionForDepth(options.depth()),
                                               nativeEOL, context->ctx(), frame.pool()));
    return static_cast<std::int32_t>(result);
}
