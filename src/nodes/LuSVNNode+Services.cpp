#include <tessera/LuSVNContext.h>
#include <tessera/LuSVNException.h>
#include <tessera/LuSVNNode.h>

#include <exception>

#include "LuSVNAssert.h"
#include "LuSVNBackendFrame.h"
#include "LuSVNResolvedRevisions.h"
#include "LuSVNTrace.h"

namespace {

struct InfoBaton {
    explicit InfoBaton(apr_pool_t* operationPool) : pool(operationPool) {}
    apr_pool_t* pool;  // outlives the receiver's
    bool answered = false;
    svn_node_kind_t kind = svn_node_unknown;
    const char* url = nullptr;
    std::exception_ptr pending;
};

// Keeps the kind and URL of the first record; svn_client_info reports one per
// path without recursion.
svn_error_t* LuSVNGetNodeInfoFunc(void* baton, const char*, const svn_info_t* info, apr_pool_t*)
{
    auto* infoBaton = static_cast<InfoBaton*>(baton);
    return LuSVNGuardCallback(infoBaton->pending, [&]() -> svn_error_t* {
        if (!infoBaton->answered) {
            infoBaton->answered = true;
            infoBaton->kind = info->kind;
            infoBaton->url = info->URL ? LuSVNEntry<4>()(infoBaton->pool, info->URL) : nullptr;
        }
        return nullptr;
    });
}

// svn_client_info of the path alone, inside the caller's frame.
void readInfo(InfoBaton& baton, const LuSVNNode::Path& path, const LuSVNRevisionSpec& revision,
              LuSVNContext& context, apr_pool_t* pool)
{
    const auto [peg, operative] = tessera_private::LuSVNResolvedRevisions(*path, revision);
    svn_error_t* error = LuSVNEntry<54>()(path->SVNRepresentationInPool(pool), &peg, &operative,
                                          LuSVNGetNodeInfoFunc, &baton, false, context.ctx(), pool);
    if (baton.pending)
        LuSVNRethrowPending(baton.pending, error);
    context.throwIfError(error);
}

}  // namespace

LuSVNNodeKind LuSVNNode::kindOfNodeAtPath(const Path& path, const Revision& revision, const Context& context)
{
    LUSVN_PARAMETER_ASSERT(path != nullptr, "path != nil");
    LUSVN_PARAMETER_ASSERT(revision != nullptr, "revision != nil");
    LUSVN_PARAMETER_ASSERT(context != nullptr, "context != nil");
    LUSVN_TRACE("LuSVNNode", "kindOfNodeAtPath:revision:withContext", {"path", path->string()},
                {"revision", revision->description()}, {"context", context->description()});
    LuSVNBackendFrame frame(context->bundle());
    InfoBaton baton(frame.pool());
    readInfo(baton, path, *revision, *context, frame.pool());
    if (!baton.answered)
        throw LuSVNException("Path does not exist");
    return static_cast<LuSVNNodeKind>(baton.kind);
}

bool LuSVNNode::isDirectoryAtPath(const Path& path, const Revision& revision, const Context& context)
{
    return kindOfNodeAtPath(path, revision, context) == LuSVNNodeKindDirectory;
}

LuSVNNode::URLPath LuSVNNode::URLForNodeAtPath(const Path& path, const Context& context)
{
    LUSVN_PARAMETER_ASSERT(path != nullptr, "path != nil");
    LUSVN_PARAMETER_ASSERT(context != nullptr, "context != nil");
    LUSVN_TRACE("LuSVNNode", "URLForNodeAtPath:withContext", {"path", path->string()},
                {"context", context->description()});
    LuSVNBackendFrame frame(context->bundle());
    InfoBaton baton(frame.pool());
    readInfo(baton, path, *LuSVNRevisionSpec::UNSPECIFIED(), *context, frame.pool());
    return baton.url ? LuSVNURL::URLWithString(baton.url) : nullptr;
}
