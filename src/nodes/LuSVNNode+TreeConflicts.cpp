// Tree conflicts through Subversion 1.10's conflict objects (extension slots
// 7 to 15): the options Subversion offers, and resolving by one of them.
#include <tessera/LuSVNContext.h>
#include <tessera/LuSVNNode.h>
#include <tessera/LuSVNPlatformExceptions.h>

#include "LuSVNAssert.h"
#include "LuSVNBackendFrame.h"
#include "LuSVNTrace.h"
#include "LuSVNWorkingCopyOperation.h"

using namespace tessera_private;

namespace {

constexpr int unsupportedFeatureStatus = 200007;

// The conflict of the path with the details Subversion finds in the
// repository, which the move options need; raises on backends before 1.10
// and for a path without tree conflict.
svn_client_conflict_t* treeConflict(const LuSVNNode::LocalPath& path, LuSVNContext& context, apr_pool_t* pool)
{
    if (!LuSVNCurrentHasExtensionEntryPoint(15))
        LuSVNException::exceptionWithReason("Tree conflict options need a backend of 1.10 or newer",
                                            unsupportedFeatureStatus)
            ->raise();
    const char* target = LuSVNWorkingCopyTarget(*path, pool);
    svn_client_conflict_t* conflict = nullptr;
    context.throwIfError(LuSVNExtensionEntry<7>()(&conflict, target, context.ctx(), pool, pool));
    svn_boolean_t treeConflicted = FALSE;
    context.throwIfError(LuSVNExtensionEntry<8>()(nullptr, nullptr, &treeConflicted, conflict, pool, pool));
    if (!treeConflicted)
        throw LuSVNInvalidArgumentException("'" + path->string() + "' has no tree conflict");
    context.throwIfError(LuSVNExtensionEntry<9>()(conflict, context.ctx(), pool));
    return conflict;
}

std::string text(const char* value)
{
    return value ? value : "";
}

}  // namespace

LuSVNTreeConflictOptions LuSVNNode::treeConflictOptionsForNodeAtPath(const LocalPath& path, const Context& context)
{
    LUSVN_PARAMETER_ASSERT(path != nullptr, "path != nil");
    LUSVN_PARAMETER_ASSERT(context != nullptr, "context != nil");
    LUSVN_TRACE("LuSVNNode", "treeConflictOptionsForNodeAtPath:withContext", {"path", path->string()},
                {"context", context->description()});
    LuSVNBackendFrame frame(context->bundle());
    apr_pool_t* pool = frame.pool();
    svn_client_conflict_t* conflict = treeConflict(path, *context, pool);
    LuSVNTreeConflictOptions result;
    const char* incoming = nullptr;
    const char* local = nullptr;
    context->throwIfError(LuSVNExtensionEntry<10>()(&incoming, &local, conflict, context->ctx(), pool, pool));
    result.incomingChange = text(incoming);
    result.localChange = text(local);
    apr_array_header_t* options = nullptr;
    context->throwIfError(LuSVNExtensionEntry<11>()(&options, conflict, context->ctx(), pool, pool));
    const auto* offered = reinterpret_cast<svn_client_conflict_option_t* const*>(options->elts);
    for (int index = 0; index < options->nelts; ++index)
        result.options.push_back({static_cast<std::int32_t>(LuSVNExtensionEntry<12>()(offered[index])),
                                  text(LuSVNExtensionEntry<13>()(offered[index], pool)),
                                  text(LuSVNExtensionEntry<14>()(offered[index], pool))});
    return result;
}

void LuSVNNode::resolveTreeConflictAtPath(const LocalPath& path, std::int32_t optionId, const Context& context)
{
    LUSVN_PARAMETER_ASSERT(path != nullptr, "path != nil");
    LUSVN_PARAMETER_ASSERT(context != nullptr, "context != nil");
    LUSVN_TRACE("LuSVNNode", "resolveTreeConflictAtPath:optionId:withContext", {"path", path->string()},
                {"optionId", std::to_string(optionId)}, {"context", context->description()});
    LuSVNBackendFrame frame(context->bundle());
    context->beginProgress();
    svn_client_conflict_t* conflict = treeConflict(path, *context, frame.pool());
    context->throwIfError(LuSVNExtensionEntry<15>()(
        conflict, static_cast<svn_client_conflict_option_id_t>(optionId), context->ctx(), frame.pool()));
}
