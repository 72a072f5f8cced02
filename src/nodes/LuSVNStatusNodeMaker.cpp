#include <tessera/LuSVNContext.h>
#include <tessera/LuSVNDateConversion.h>
#include <tessera/LuSVNDirectory.h>
#include <tessera/LuSVNFile.h>

#include <algorithm>
#include <filesystem>

#include "LuSVNAssert.h"
#include "LuSVNStatusBaton.h"
#include "LuSVNStatusNodeMaker.h"

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

// Nearly every name holds no control character; those skip the decoding
// replacement, which would cost more than the rest of the node.
std::string displayName(std::string name)
{
    for (std::size_t i = 0; i < name.size(); ++i) {
        const auto byte = static_cast<unsigned char>(name[i]);
        const bool c1 = byte == 0xC2 && i + 1 < name.size() && static_cast<unsigned char>(name[i + 1]) < 0xA0;
        if (byte < 0x20 || byte == 0x7F || c1)
            return LuSVNStringByReplacingCharactersInSet(name, controlCharacters(), "\uFFFD");
    }
    return name;
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

LuSVNStatusNodeMaker::LuSVNStatusNodeMaker(const LuSVNContext& context) : version_(*context.bundleVersion())
{
}

std::shared_ptr<const LuSVNURL> LuSVNStatusNodeMaker::URLOfEntry(const svn_wc_entry_t& entry)
{
    const std::string_view url = entry.url;
    const std::string_view root = entry.repos ? std::string_view(entry.repos) : std::string_view();
    if (root.empty() || !url.starts_with(root) || (url.size() > root.size() && url[root.size()] != '/'))
        return LuSVNURL::URLWithString(entry.url);
    if (!repositoryRoot_ || repositoryRoot_->string() != root)
        repositoryRoot_ = LuSVNURL::URLWithString(std::string(root));
    return repositoryRoot_->URLByAppendingEscapedRelativePath(url.substr(std::min(url.size(), root.size() + 1)));
}

std::shared_ptr<LuSVNNode> LuSVNStatusNodeMaker::nodeAtPath(const LuSVNNode::LocalPath& path,
                                                           const svn_wc_status2_t* status)
{
    const bool directory = isDirectoryRecord(path, status);
    std::shared_ptr<LuSVNNode> node;
    if (directory)
        node = LuSVNDirectory::directory();
    else
        node = LuSVNFile::file();
    node->setPath(path);
    // Siblings come one after another; they share their parent's path.
    const std::string_view parent = LuSVNParentPathString(path->string());
    if (!location_ || location_->string() != parent)
        location_ = path->parent();
    node->setLocation(location_);
    node->setName(displayName(path->lastComponent()));
    node->setStatus(LuSVNStatus::statusWithSVNStatus(status, version_));

    std::int64_t size = SVN_WC_ENTRY_WORKING_SIZE_UNKNOWN;
    if (const svn_wc_entry_t* entry = status->entry) {
        if (entry->url)
            node->setURL(URLOfEntry(*entry));
        node->setRevision(static_cast<std::int32_t>(entry->cmt_rev));
        node->setDate(LuSVNDateConversion::dateWithAPRTime(entry->cmt_date));
        if (entry->cmt_author)
            node->setAuthor(std::string(entry->cmt_author));
        node->setHasProperties(entry->has_props != 0);
        if (entry->lock_token && entry->lock_creation_date != 0)
            node->setLock(LuSVNLock::lockWithPath(
                path, entry->lock_token, entry->lock_owner ? entry->lock_owner : "",
                entry->lock_comment ? std::optional<std::string>(entry->lock_comment) : std::nullopt,
                LuSVNDateConversion::initWithAPRTime(entry->lock_creation_date), std::nullopt));
        size = entry->working_size;
    }
    if (!directory)
        node->setSize(size != SVN_WC_ENTRY_WORKING_SIZE_UNKNOWN ? size : sizeOnDisk(path));
    return node;
}

std::shared_ptr<LuSVNNode> LuSVNNode::nodeAtPath(const LocalPath& path, const svn_wc_status2_t* status,
                                                 const Context& context)
{
    LUSVN_PARAMETER_ASSERT(path != nullptr, "path != nil");
    LUSVN_PARAMETER_ASSERT(status != nullptr, "status != NULL");
    LUSVN_PARAMETER_ASSERT(context != nullptr, "context != nil");
    LUSVN_PARAMETER_ASSERT(context->bundleVersion().has_value(), "[context bundleVersion] != nil");
    return LuSVNStatusNodeMaker(*context).nodeAtPath(path, status);
}
