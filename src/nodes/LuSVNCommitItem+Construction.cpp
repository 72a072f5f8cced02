#include <tessera/LuSVNCommitItem.h>
#include <tessera/LuSVNNode.h>
#include <tessera/LuSVNStatus.h>

#include "LuSVNAssert.h"

std::optional<LuSVNCommitItem> LuSVNCommitItem::commitItemForStatus(const std::shared_ptr<const LuSVNStatus>& status)
{
    LUSVN_PARAMETER_ASSERT(status != nullptr, "status != nil");
    std::int32_t actions = LuSVNCommitActionNone;
    switch (status->textStatus()) {
    case LuSVNStatusAdded:
        actions = LuSVNCommitActionAdd | (status->copyFromURL() ? LuSVNCommitActionCopy : LuSVNCommitActionModification);
        if (status->hasProperties())
            actions |= LuSVNCommitActionPropertyModification;
        break;
    case LuSVNStatusDeleted:
        actions = LuSVNCommitActionDelete;
        break;
    case LuSVNStatusReplaced:
        actions = LuSVNCommitActionAdd | LuSVNCommitActionDelete | LuSVNCommitActionModification;
        break;
    case LuSVNStatusModified:
    case LuSVNStatusMerged:
        actions = LuSVNCommitActionModification;
        break;
    default:
        break;
    }
    switch (status->propertyStatus()) {
    case LuSVNStatusAdded:
    case LuSVNStatusDeleted:
    case LuSVNStatusReplaced:
    case LuSVNStatusModified:
    case LuSVNStatusMerged:
        actions |= LuSVNCommitActionPropertyModification;
        break;
    default:
        break;
    }
    if (actions == LuSVNCommitActionNone)
        return std::nullopt;
    LuSVNCommitItem item;
    item.setActions(actions);
    if (status->copyFromURL())
        item.setCopySource(LuSVNPathWithRevision::path(status->copyFromURL(),
                                                       LuSVNRevision::revisionWithNumber(status->copyFromRevision())));
    return item;
}

std::optional<LuSVNCommitItem> LuSVNCommitItem::commitItemForNode(const std::shared_ptr<const LuSVNNode>& node)
{
    LUSVN_PARAMETER_ASSERT(node != nullptr, "node != nil");
    auto item = commitItemForStatus(node->status() ? node->status() : LuSVNStatus::status());
    if (!item)
        return item;
    item->setNodeKind(node->isDirectory() ? 2 : 1);
    item->setIsLocked(node->lock() != nullptr);
    item->setPath(node->path());
    item->setRevision(node->revision());
    item->setURL(node->URL());
    return item;
}
