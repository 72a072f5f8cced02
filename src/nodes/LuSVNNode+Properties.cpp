#include <tessera/LuSVNContext.h>
#include <tessera/LuSVNNode.h>

#include "LuSVNAssert.h"
#include "LuSVNBackendFrame.h"
#include "LuSVNNode+Properties.h"
#include "LuSVNResolvedRevisions.h"
#include "LuSVNTrace.h"

std::vector<std::pair<std::string, const svn_string_t*>> tessera_private::LuSVNPropertyValues(
    const std::string& name, const LuSVNPath& path, const char* target, const LuSVNRevisionSpec& revision,
    bool recurse, LuSVNContext& context, apr_pool_t* pool)
{
    apr_hash_t* values = nullptr;
    const auto [peg, operative] = LuSVNResolvedRevisions(path, revision);
    context.throwIfError(
        LuSVNEntry<62>()(&values, name.c_str(), target, &peg, &operative, recurse, context.ctx(), pool));
    std::vector<std::pair<std::string, const svn_string_t*>> result;
    for (apr_hash_index_t* index = values ? LuSVNEntry<14>()(pool, values) : nullptr; index;
         index = LuSVNEntry<15>()(index)) {
        const void* key = nullptr;
        apr_ssize_t length = 0;
        void* value = nullptr;
        LuSVNEntry<16>()(index, &key, &length, &value);
        result.emplace_back(std::string(static_cast<const char*>(key), static_cast<std::size_t>(length)),
                            static_cast<const svn_string_t*>(value));
    }
    return result;
}

std::optional<LuSVNPropertyValue> LuSVNNode::propertyWithName(const std::string& name, const Path& path,
                                                              const Revision& revision, const Context& context)
{
    LUSVN_PARAMETER_ASSERT(path != nullptr, "path != nil");
    LUSVN_PARAMETER_ASSERT(revision != nullptr, "revision != nil");
    LUSVN_PARAMETER_ASSERT(context != nullptr, "context != nil");
    LUSVN_TRACE("LuSVNNode", "propertyWithName:forNodeAtPath:forRevision:withContext", {"name", name},
                {"path", path->string()}, {"revision", revision->description()}, {"context", context->description()});
    LuSVNBackendFrame frame(context->bundle());
    const char* target = path->SVNRepresentationInPool(frame.pool());
    for (const auto& [key, value] :
         tessera_private::LuSVNPropertyValues(name, *path, target, *revision, false, *context, frame.pool()))
        if (key == target && value)
            return LuSVNObjectFromSVNString(value);
    return std::nullopt;
}
