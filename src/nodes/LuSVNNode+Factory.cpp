#include <tessera/LuSVNContext.h>
#include <tessera/LuSVNDateConversion.h>
#include <tessera/LuSVNDirectory.h>
#include <tessera/LuSVNFile.h>

#include <filesystem>

#include "LuSVNAssert.h"
#include "LuSVNSubversion.h"

namespace {

// C0 and C1 controls and DEL, which would garble a name on screen.
const std::string& controlCharacters()
{
    static const std::string characters = [] {
        std::string text;
        for (char32_t c = 0; c < 0xA0; ++c) {
            if (c >= 0x20 && c < 0x7F)
                continue;
            if (c < 0x80) {
                text += static_cast<char>(c);
            } else {
                text += static_cast<char>(0xC0 | (c >> 6));
                text += static_cast<char>(0x80 | (c & 0x3F));
            }
        }
        return text;
    }();
    return characters;
}

bool isDirectoryRecord(const LuSVNNode::LocalPath& path, const svn_wc_status2_t* status)
{
    if (status->entry)
        return status->entry->kind == svn_node_dir;
    if (status->ood_kind == svn_node_dir)
        return true;
    std::error_code error;
    return std::filesystem::is_directory(std::filesystem::symlink_status(path->string(), error));
}

std::int64_t sizeOnDisk(const LuSVNNode::LocalPath& path)
{
    std::error_code error;
    const auto size = std::filesystem::file_size(path->string(), error);
    return error ? 0 : static_cast<std::int64_t>(size);
}

}  // namespace

std::shared_ptr<LuSVNNode> LuSVNNode::nodeAtPath(const LocalPath& path, const svn_wc_status2_t* status,
                                                 const Context& context)
{
    LUSVN_PARAMETER_ASSERT(path != nullptr, "path != nil");
    LUSVN_PARAMETER_ASSERT(status != nullptr, "status != NULL");
    LUSVN_PARAMETER_ASSERT(context != nullptr, "context != nil");
    const std::optional<LuSVNVersion> version = context->bundleVersion();
    LUSVN_PARAMETER_ASSERT(version.has_value(), "[context bundleVersion] != nil");

    const bool directory = isDirectoryRecord(path, status);
    std::shared_ptr<LuSVNNode> node;
    if (directory)
        node = LuSVNDirectory::nodeWithPath(path);
    else
        node = LuSVNFile::nodeWithPath(path);
    node->name_ = LuSVNStringByReplacingCharactersInSet(path->lastComponent(), controlCharacters(), "\uFFFD");
    node->status_ = LuSVNStatus::statusWithSVNStatus(status, *version);

    std::int64_t size = SVN_WC_ENTRY_WORKING_SIZE_UNKNOWN;
    if (const svn_wc_entry_t* entry = status->entry) {
        if (entry->url)
            node->url_ = LuSVNURL::URLWithString(entry->url);
        node->revision_ = static_cast<std::int32_t>(entry->cmt_rev);
        node->date_ = LuSVNDateConversion::dateWithAPRTime(entry->cmt_date);
        if (entry->cmt_author)
            node->author_ = entry->cmt_author;
        node->hasProperties_ = entry->has_props != 0;
        if (entry->lock_token && entry->lock_creation_date != 0)
            node->lock_ = LuSVNLock::lockWithPath(
                path, entry->lock_token, entry->lock_owner ? entry->lock_owner : "",
                entry->lock_comment ? std::optional<std::string>(entry->lock_comment) : std::nullopt,
                LuSVNDateConversion::initWithAPRTime(entry->lock_creation_date), std::nullopt);
        size = entry->working_size;
    }
    if (!directory)
        node->size_ = size != SVN_WC_ENTRY_WORKING_SIZE_UNKNOWN ? size : sizeOnDisk(path);
    return node;
}
