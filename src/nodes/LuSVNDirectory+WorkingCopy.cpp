#include <tessera/LuSVNContext.h>
#include <tessera/LuSVNDefinitions.h>
#include <tessera/LuSVNDirectory.h>
#include <tessera/LuSVNExternalDefinition.h>

#include "LuSVNAssert.h"
#include "LuSVNBackendFrame.h"
#include "LuSVNNode+Properties.h"
#include "LuSVNTrace.h"

namespace {

// Adds the targets of the externals defined on the directory (and, with
// `recurse`, below it) to `externals`, inside the caller's frame.
void addExternalsTargets(LuSVNNode::PathSet& externals, const LuSVNNode::LocalPath& directory, bool recurse,
                         LuSVNContext& context, apr_pool_t* pool)
{
    const auto values = tessera_private::LuSVNPropertyValues(
        std::string(LuSVNPropertyExternals), *directory, directory->SVNRepresentationInPool(pool),
        *LuSVNRevisionSpec::WORKING(),
        recurse, context, pool);
    for (const auto& [definingPath, value] : values) {
        const std::optional<std::string> text = value ? LuSVNStringWithSVNString(value) : std::nullopt;
        if (!text)
            continue;
        const auto defining = LuSVNLocalPath::pathWithString(definingPath);
        for (const auto& definition : LuSVNExternalDefinition::externalDefinitionListValue(*text, pool))
            if (auto target = defining->pathByAddingRelativePathWithSymlinks(definition.targetDirectory().value_or("")))
                externals.insert(std::move(target));
    }
}

}  // namespace

LuSVNNode::PathSet LuSVNDirectory::externalsInDirectoryAtPath(const LocalPath& path, const Context& context)
{
    LUSVN_PARAMETER_ASSERT(path != nullptr, "path != nil");
    LUSVN_PARAMETER_ASSERT(context != nullptr, "context != nil");
    LUSVN_TRACE("LuSVNDirectory", "externalsInDirectoryAtPath:withContext", {"path", path->string()},
                {"context", context->description()});
    LuSVNBackendFrame frame(context->bundle());
    PathSet externals;
    addExternalsTargets(externals, path, true, *context, frame.pool());
    return externals;
}

LuSVNNode::PathSet LuSVNDirectory::externalsForPath(const LocalPath& path, const Context& context)
{
    LUSVN_PARAMETER_ASSERT(path != nullptr, "path != nil");
    LUSVN_PARAMETER_ASSERT(context != nullptr, "context != nil");
    LUSVN_TRACE("LuSVNDirectory", "externalsForPath:withContext", {"path", path->string()},
                {"context", context->description()});
    PathSet externals = externalsInDirectoryAtPath(path, context);
    LuSVNBackendFrame frame(context->bundle());
    // Only the directories above can define externals below the path besides
    // those already read.
    for (auto parent = std::static_pointer_cast<const LuSVNLocalPath>(path->parent());
         parent && formatVersionForWorkingCopyAtPath(parent->string(), context->bundle()) != 0;
         parent = std::static_pointer_cast<const LuSVNLocalPath>(parent->parent()))
        addExternalsTargets(externals, parent, false, *context, frame.pool());
    return externals;
}
