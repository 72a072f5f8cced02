#include <tessera/LuSVNContext.h>
#include <tessera/LuSVNDefinitions.h>
#include <tessera/LuSVNNode.h>
#include <tessera/LuSVNPropertyConversion.h>

#include <algorithm>

#include "LuSVNAssert.h"
#include "LuSVNBackendFrame.h"
#include "LuSVNNode+Properties.h"
#include "LuSVNResolvedRevisions.h"
#include "LuSVNTrace.h"
#include "LuSVNWorkingCopyOperation.h"

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

namespace {

const std::string ignoreName(LuSVNPropertyIgnore);
const std::string externalsName(LuSVNPropertyExternals);

// The value of a property as bytes; the variant's text and data both are.
std::string bytesOf(const LuSVNPropertyValue& value)
{
    if (const auto* text = std::get_if<std::string>(&value))
        return *text;
    const auto& data = std::get<LuSVNData>(value);
    return std::string(reinterpret_cast<const char*>(data.data()), data.size());
}

LuSVNPropertyValue valueOfBytes(const std::string& bytes)
{
    if (LuSVNIsValidUTF8(bytes))
        return bytes;
    return LuSVNData(bytes.data(), bytes.size());
}

// Subversion's order of paths (svn_path_compare_paths): "/" before every
// other character, a path before the paths below it.
std::vector<unsigned> pathOrderKey(const std::string& path)
{
    std::vector<unsigned> key;
    for (const char c : path)
        key.push_back(c == '/' ? 1u : static_cast<unsigned char>(c) + 2u);
    return key;
}

// The working value of a property on a working-copy item, "" without it.
std::string workingBytes(const std::string& name, const LuSVNNode::LocalPath& path,
                         const LuSVNNode::Context& context)
{
    const auto value = LuSVNNode::propertyWithName(
        name, path, LuSVNRevisionSpec::revisionWithRevision(LuSVNRevision::UNSPECIFIED()), context);
    return value ? bytesOf(*value) : std::string();
}

// The lines of a value, each with its "\n" (Subversion keeps the svn:
// properties' lines so), the last one possibly without.
std::vector<std::string> linesWithEnds(const std::string& value)
{
    std::vector<std::string> lines;
    for (std::size_t start = 0; start < value.size();) {
        const std::size_t end = std::min(value.find('\n', start), value.size() - 1) + 1;
        lines.push_back(value.substr(start, end - start));
        start = end;
    }
    return lines;
}

// Appends a line to a value, after a line end for its last line if needed.
std::string withLineAppended(const std::string& value, const std::string& line)
{
    return value + (value.empty() || value.back() == '\n' ? "" : "\n") + line + "\n";
}

// Sets the value, or deletes the property when nothing but blanks is left.
void setOrDelete(const std::string& name, const std::string& value, const LuSVNNode::LocalPath& path,
                 const LuSVNNode::Context& context)
{
    const bool blank = value.find_first_not_of(" \t\r\n\v\f") == std::string::npos;
    LuSVNNode::setProperty(name, blank ? std::nullopt : std::optional(valueOfBytes(value)), path, context);
}

}  // namespace

std::vector<std::pair<std::string, LuSVNPropertyValue>> LuSVNNode::propertiesWithName(
    const std::string& name, const Path& path, const Revision& revision, bool recursive, const Context& context)
{
    LUSVN_PARAMETER_ASSERT(path != nullptr, "path != nil");
    LUSVN_PARAMETER_ASSERT(revision != nullptr, "revision != nil");
    LUSVN_PARAMETER_ASSERT(context != nullptr, "context != nil");
    LUSVN_TRACE("LuSVNNode", "propertiesWithName:forNodeAtPath:forRevision:recursive:withContext", {"name", name},
                {"path", path->string()}, {"revision", revision->description()},
                {"recursive", recursive ? "1" : "0"}, {"context", context->description()});
    LuSVNBackendFrame frame(context->bundle());
    const char* target = path->SVNRepresentationInPool(frame.pool());
    std::vector<std::pair<std::string, LuSVNPropertyValue>> values;
    for (const auto& [key, value] :
         tessera_private::LuSVNPropertyValues(name, *path, target, *revision, recursive, *context, frame.pool()))
        if (value)
            values.emplace_back(key, LuSVNObjectFromSVNString(value));
    std::sort(values.begin(), values.end(),
              [](const auto& a, const auto& b) { return pathOrderKey(a.first) < pathOrderKey(b.first); });
    return values;
}

void LuSVNNode::setProperty(const std::string& name, const std::optional<LuSVNPropertyValue>& value,
                            const LocalPath& path, const Context& context)
{
    setProperty(name, value, path, false, false, context);
}

void LuSVNNode::setProperty(const std::string& name, const std::optional<LuSVNPropertyValue>& value,
                            const LocalPath& path, bool recursive, bool force, const Context& context)
{
    LUSVN_PARAMETER_ASSERT(path != nullptr, "path != nil");
    LUSVN_PARAMETER_ASSERT(context != nullptr, "context != nil");
    LUSVN_TRACE("LuSVNNode", "setProperty:value:forNodeAtPath:recursive:force:withContext", {"name", name},
                {"value", value ? (std::holds_alternative<std::string>(*value) ? std::get<std::string>(*value)
                                                                               : std::string("<binary>"))
                                : std::string("(null)")},
                {"path", path->string()}, {"recursive", recursive ? "1" : "0"}, {"force", force ? "1" : "0"},
                {"context", context->description()});
    LuSVNBackendFrame frame(context->bundle());
    const char* target = tessera_private::LuSVNWorkingCopyTarget(*path, frame.pool());
    const svn_string_t* svnValue = value ? LuSVNStringFromObject(*value, frame.pool()) : nullptr;
    context->beginProgress();
    context->throwIfError(
        LuSVNEntry<64>()(name.c_str(), svnValue, target, recursive, force, context->ctx(), frame.pool()));
}

LuSVNPropertyMap LuSVNNode::propertiesForNodeAtPath(const Path& path, const Revision& revision,
                                                    const Context& context)
{
    LUSVN_PARAMETER_ASSERT(path != nullptr, "path != nil");
    auto items = propertiesForNodesAtPath(path, revision, false, context);
    return items.empty() ? LuSVNPropertyMap() : std::move(items.front().second);
}

std::vector<std::pair<std::string, LuSVNPropertyMap>> LuSVNNode::propertiesForNodesAtPath(
    const Path& path, const Revision& revision, bool recursive, const Context& context)
{
    LUSVN_PARAMETER_ASSERT(path != nullptr, "path != nil");
    LUSVN_PARAMETER_ASSERT(revision != nullptr, "revision != nil");
    LUSVN_PARAMETER_ASSERT(context != nullptr, "context != nil");
    LUSVN_TRACE("LuSVNNode", "propertiesForNodeAtPath:forRevision:recursive:withContext", {"path", path->string()},
                {"revision", revision->description()}, {"recursive", recursive ? "1" : "0"},
                {"context", context->description()});
    LuSVNBackendFrame frame(context->bundle());
    const char* target = path->SVNRepresentationInPool(frame.pool());
    const auto [peg, operative] = tessera_private::LuSVNResolvedRevisions(*path, *revision);
    apr_array_header_t* items = nullptr;
    context->throwIfError(
        LuSVNEntry<63>()(&items, target, &peg, &operative, recursive, context->ctx(), frame.pool()));
    if (!items)
        throw LuSVNException("svn_client_proplist2 returned null array");
    std::vector<std::pair<std::string, LuSVNPropertyMap>> result;
    for (int i = 0; i < items->nelts; ++i) {
        const auto* item = reinterpret_cast<svn_client_proplist_item_t* const*>(items->elts)[i];
        if (!item)
            throw LuSVNException("svn_client_proplist2 returned array with null item");
        LuSVNPropertyMap& properties =
            result.emplace_back(item->node_name ? std::string(item->node_name->data, item->node_name->len)
                                                : std::string(),
                                LuSVNPropertyMap())
                .second;
        for (apr_hash_index_t* index = item->prop_hash ? LuSVNEntry<14>()(frame.pool(), item->prop_hash) : nullptr;
             index; index = LuSVNEntry<15>()(index)) {
            const void* key = nullptr;
            apr_ssize_t length = 0;
            void* value = nullptr;
            LuSVNEntry<16>()(index, &key, &length, &value);
            properties.emplace(std::string(static_cast<const char*>(key), static_cast<std::size_t>(length)),
                               LuSVNObjectFromSVNString(static_cast<const svn_string_t*>(value)));
        }
    }
    return result;
}

std::vector<std::string> LuSVNNode::ignoredFilenamesForNodeAtPath(const Path& path, const Revision& revision,
                                                                  const Context& context)
{
    const auto value = propertyWithName(ignoreName, path, revision, context);
    return value ? LuSVNPropertyConversion::ignoreListValue(bytesOf(*value)) : std::vector<std::string>();
}

void LuSVNNode::setIgnoredFilenames(const std::vector<std::string>& filenames, const LocalPath& path,
                                    const Context& context)
{
    setProperty(ignoreName, LuSVNPropertyConversion::stringFromIgnoreList(filenames), path, context);
}

void LuSVNNode::addIgnoredFilename(const std::string& pattern, const LocalPath& path, const Context& context)
{
    const std::string value = workingBytes(ignoreName, path, context);
    for (const std::string& known : LuSVNPropertyConversion::ignoreListValue(value))
        if (known == pattern)
            return;
    setOrDelete(ignoreName, withLineAppended(value, pattern), path, context);
}

void LuSVNNode::removeIgnoredFilename(const std::string& pattern, const LocalPath& path, const Context& context)
{
    std::string kept;
    for (const std::string& line : linesWithEnds(workingBytes(ignoreName, path, context))) {
        const auto patterns = LuSVNPropertyConversion::ignoreListValue(line);
        if (patterns.size() != 1 || patterns.front() != pattern)
            kept += line;
    }
    setOrDelete(ignoreName, kept, path, context);
}

std::vector<LuSVNExternalDefinition> LuSVNNode::externalDefinitionsForNodeAtPath(const Path& path,
                                                                                const Revision& revision,
                                                                                const Context& context)
{
    LUSVN_PARAMETER_ASSERT(context != nullptr, "context != nil");
    const auto value = propertyWithName(externalsName, path, revision, context);
    if (!value)
        return {};
    LuSVNBackendFrame frame(context->bundle());
    return LuSVNExternalDefinition::externalDefinitionListValue(bytesOf(*value), frame.pool());
}

void LuSVNNode::addExternalDefinition(const LuSVNExternalDefinition& definition, const LocalPath& path,
                                      const Context& context)
{
    const std::string value = workingBytes(externalsName, path, context);
    setOrDelete(externalsName, withLineAppended(value, definition.stringValue()), path, context);
}

void LuSVNNode::removeExternalDefinition(const std::string& targetDirectory, const LocalPath& path,
                                         const Context& context)
{
    LUSVN_PARAMETER_ASSERT(context != nullptr, "context != nil");
    std::string kept;
    bool anyLeft = false;
    {
        LuSVNBackendFrame frame(context->bundle());
        // Each line alone: a definition never spans lines, and comments
        // and blank lines parse to nothing and stay.
        for (const std::string& line : linesWithEnds(workingBytes(externalsName, path, context))) {
            const auto definitions = LuSVNExternalDefinition::externalDefinitionListValue(line, frame.pool());
            if (definitions.size() != 1 || definitions.front().targetDirectory() != targetDirectory) {
                kept += line;
                anyLeft = anyLeft || !definitions.empty();
            }
        }
    }
    setOrDelete(externalsName, anyLeft ? kept : std::string(), path, context);
}
