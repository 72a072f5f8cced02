#include <tessera/LuSVNContext.h>
#include <tessera/LuSVNDefinitions.h>
#include <tessera/LuSVNException.h>
#include <tessera/LuSVNNode.h>

#include <filesystem>
#include <unordered_set>

#include <gio/gio.h>

#include "LuSVNAssert.h"
#include "LuSVNBackendFrame.h"
#include "LuSVNSharedInstance.h"
#include "LuSVNTrace.h"

namespace {

// A string GIO allocated, as text; null gives "".
std::string takeString(gchar* text)
{
    std::string result = text ? text : "";
    g_free(text);
    return result;
}

// The canonical types of the shared-mime-info database, read once.
const std::unordered_set<std::string>& registeredTypes()
{
    return tessera_private::LuSVNSharedInstance([] {
        std::unordered_set<std::string> types;
        GList* list = g_content_types_get_registered();
        for (GList* item = list; item; item = item->next)
            types.insert(takeString(static_cast<gchar*>(item->data)));
        g_list_free(list);
        return types;
    });
}

bool isDirectoryOnDisk(const std::string& path)
{
    std::error_code error;
    return std::filesystem::is_directory(path, error);
}

}  // namespace

const std::string& LuSVNNode::directoryType()
{
    static const std::string type = "inode/directory";
    return type;
}

const std::string& LuSVNNode::textType()
{
    static const std::string type = "text/plain";
    return type;
}

const std::string& LuSVNNode::dataType()
{
    static const std::string type = "application/octet-stream";
    return type;
}

const std::string& LuSVNNode::itemType()
{
    // Every type of the database descends from it.
    return dataType();
}

bool LuSVNNode::isDynamicUTI(const std::string& type)
{
    return type.starts_with("dyn");
}

bool LuSVNNode::isTextMIMEType(const std::string& mimeType)
{
    return mimeType.starts_with("text/");
}

std::string LuSVNNode::preferredTypeForFilenameExtension(const std::string& extension)
{
    const std::string name = "file." + extension;
    gboolean uncertain = FALSE;
    const std::string type = takeString(g_content_type_guess(name.c_str(), nullptr, 0, &uncertain));
    if (type.empty() || g_content_type_is_unknown(type.c_str()))
        return "dyn.extension:" + extension;
    return type;
}

std::string LuSVNNode::preferredTypeForMIMEType(const std::string& mimeType)
{
    const std::string type = takeString(g_content_type_from_mime_type(mimeType.c_str()));
    if (type.empty() || !registeredTypes().contains(type))
        return "dyn.mime-type:" + mimeType;
    return type;
}

std::string LuSVNNode::UTIForNodeAtPath(const Path& path, const Revision& revision, const LocalPath& localFile,
                                        std::int32_t nodeKind, const Context& context)
{
    LUSVN_PARAMETER_ASSERT(path != nullptr, "path != nil");
    LUSVN_PARAMETER_ASSERT(revision != nullptr, "revision != nil");
    LUSVN_PARAMETER_ASSERT(context != nullptr, "context != nil");
    if (nodeKind == LuSVNNodeKindDirectory)
        return directoryType();

    if (const auto extension = path->extension(); extension && !extension->empty()) {
        const std::string type = preferredTypeForFilenameExtension(*extension);
        if (type != itemType() && !isDynamicUTI(type))
            return type;
    }

    const auto workingCopyPath = std::dynamic_pointer_cast<const LuSVNLocalPath>(path);
    if (nodeKind == LuSVNNodeKindUnknown) {
        const bool directory = !workingCopyPath && !localFile
                                   ? isDirectoryAtPath(path, revision, context)
                                   : isDirectoryOnDisk(localFile ? localFile->string() : path->string());
        if (directory)
            return directoryType();
    }

    std::optional<std::string> mimeType;
    if (!workingCopyPath) {
        if (!localFile)
            return textType();
        mimeType = MIMETypeForNodeAtPath(localFile, context);
    } else {
        try {
            const auto value = propertyWithName(std::string(LuSVNPropertyMIMEType), path, revision, context);
            if (value && std::holds_alternative<std::string>(*value))
                mimeType = std::get<std::string>(*value);
        } catch (const LuSVNNotWorkingCopyException&) {
        } catch (const LuSVNNoSuchEntryException&) {
        } catch (const LuSVNUnversionedResourceException&) {
            // Unversioned items have no properties; the file itself decides.
        }
        if (!mimeType)
            mimeType = MIMETypeForNodeAtPath(workingCopyPath, context);
    }
    if (!mimeType)
        return textType();

    const std::string type = preferredTypeForMIMEType(*mimeType);
    if (!isDynamicUTI(type))
        return type;
    if (isTextMIMEType(*mimeType))
        return textType();
    if (*mimeType == "application/octet-stream")
        return dataType();
    return type;
}

std::string LuSVNNode::UTIForNodeAtPath(const Path& path, const Revision& revision, const Context& context)
{
    return UTIForNodeAtPath(path, revision, nullptr, LuSVNNodeKindUnknown, context);
}

std::optional<std::string> LuSVNNode::MIMETypeForNodeAtPath(const LocalPath& path, const Context& context)
{
    LUSVN_PARAMETER_ASSERT(path != nullptr, "path != nil");
    LUSVN_PARAMETER_ASSERT(context != nullptr, "context != nil");
    LUSVN_TRACE("LuSVNNode", "MIMETypeForNodeAtPath:withContext", {"path", path->string()},
                {"context", context->description()});
    std::error_code error;
    const LocalPath file = std::filesystem::exists(path->string(), error) ? path : BASEPathForNodeAtPath(path, context);
    LuSVNBackendFrame frame(context->bundle());
    const char* mimeType = nullptr;
    context->throwIfError(LuSVNEntry<104>()(&mimeType, file->SVNRepresentationInPool(frame.pool()), frame.pool()));
    return mimeType ? std::optional<std::string>(mimeType) : std::nullopt;
}
