#include <tessera/LuSVNCommitItem.h>
#include <tessera/LuSVNLocalPath.h>
#include <tessera/LuSVNPlatformExceptions.h>

#include <array>
#include <utility>

#include "LuSVNAssert.h"
#include "LuSVNObjectDescription.h"
#include "LuSVNSubversion.h"

namespace {

constexpr std::array<std::pair<std::int32_t, const char*>, 5> actionNames = {{
    {LuSVNCommitActionAdd, "LuSVNCommitActionAdd"},
    {LuSVNCommitActionDelete, "LuSVNCommitActionDelete"},
    {LuSVNCommitActionCopy, "LuSVNCommitActionCopy"},
    {LuSVNCommitActionModification, "LuSVNCommitActionModification"},
    {LuSVNCommitActionPropertyModification, "LuSVNCommitActionPropertyModification"},
}};

// Subversion hands over escaped URLs; a text that still does not parse is
// taken as unescaped.
LuSVNURL::URLPath URLFromSubversion(const char* text)
{
    try {
        return LuSVNURL::URLWithString(text);
    } catch (const LuSVNInvalidArgumentException&) {
        return LuSVNURL::URLEncodeString(text);
    }
}

// The two records share these fields.
template <class SVNCommitItem>
LuSVNCommitItem commitItemForRecord(const SVNCommitItem* record)
{
    LUSVN_PARAMETER_ASSERT(record != nullptr, "item != NULL");
    LuSVNCommitItem item;
    if (record->path)
        item.setPath(LuSVNLocalPath::pathWithString(record->path));
    if (record->url)
        item.setURL(URLFromSubversion(record->url));
    item.setRevision(static_cast<std::int32_t>(record->revision));
    if (record->copyfrom_url) {
        // A copy source without a valid revision has no revision.
        item.setCopySource(LuSVNPathWithRevision::path(
            URLFromSubversion(record->copyfrom_url),
            record->copyfrom_rev >= 0 ? LuSVNRevision::revisionWithNumber(static_cast<std::int32_t>(record->copyfrom_rev))
                                      : nullptr));
    }
    item.setNodeKind(record->kind);
    const apr_byte_t flags = record->state_flags;
    std::int32_t actions = LuSVNCommitActionNone;
    if (flags & SVN_CLIENT_COMMIT_ITEM_ADD)
        actions |= LuSVNCommitActionAdd;
    if (flags & SVN_CLIENT_COMMIT_ITEM_DELETE)
        actions |= LuSVNCommitActionDelete;
    if (flags & SVN_CLIENT_COMMIT_ITEM_TEXT_MODS)
        actions |= LuSVNCommitActionModification;
    if (flags & SVN_CLIENT_COMMIT_ITEM_IS_COPY)
        actions |= LuSVNCommitActionCopy;
    if (flags & SVN_CLIENT_COMMIT_ITEM_PROP_MODS)
        actions |= LuSVNCommitActionPropertyModification;
    item.setActions(actions);
    item.setIsLocked((flags & SVN_CLIENT_COMMIT_ITEM_LOCK_TOKEN) != 0);
    return item;
}

template <class T>
std::string describe(const std::shared_ptr<T>& object)
{
    return object ? object->description() : "(null)";
}

}  // namespace

std::string LuSVNStringForCommitActions(std::int32_t actions)
{
    std::string names;
    for (const auto& [bit, name] : actionNames) {
        if (actions & bit)
            names += (names.empty() ? "" : "|") + std::string(name);
    }
    return names.empty() ? "LuSVNCommitActionNone" : names;
}

LuSVNCommitItem LuSVNCommitItem::commitItemForSVNCommitItem(const svn_client_commit_item3_t* item)
{
    return commitItemForRecord(item);
}

LuSVNCommitItem LuSVNCommitItem::commitItemForSVNCommitItem(const svn_client_commit_item2_t* item)
{
    return commitItemForRecord(item);
}

std::string LuSVNCommitItem::description() const
{
    return "{ " + tessera_private::LuSVNGenericDescription("LuSVNCommitItem", this) + " path: " + describe(path_) +
           ", url: " + describe(url_) + ", revision: " + std::to_string(revision_) +
           ", actions: " + LuSVNStringForCommitActions(actions_) + ", nodeKind: " + std::to_string(nodeKind_) +
           ", locked: " + (isLocked_ ? "YES" : "NO") + ", copySource: " + describe(copySource_) + " }";
}
