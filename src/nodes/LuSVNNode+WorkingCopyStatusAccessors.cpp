#include <tessera/LuSVNNode.h>

#include <filesystem>

#include "LuSVNNodeStatus.h"

using tessera_private::LuSVNStatusOfNode;

namespace {

bool isQuietRepositoryKind(LuSVNStatusKind kind)
{
    return kind == LuSVNStatusNone || kind == LuSVNStatusNormal;
}

}  // namespace

bool LuSVNNode::canBeAdded() const
{
    const LuSVNStatus& status = LuSVNStatusOfNode(*this);
    if (status.textStatus() == LuSVNStatusUnversioned || status.textStatus() == LuSVNStatusIgnored)
        return true;
    if (status.schedule() != LuSVNScheduleDelete || isDirectory() || !path())
        return false;
    std::error_code error;
    return std::filesystem::exists(std::filesystem::symlink_status(path()->string(), error));
}

bool LuSVNNode::hasNewerRevisionInRepository() const
{
    const LuSVNStatus& status = LuSVNStatusOfNode(*this);
    return !isQuietRepositoryKind(status.repositoryTextStatus()) ||
           !isQuietRepositoryKind(status.repositoryPropertyStatus());
}

LuSVNLockStatus LuSVNNode::lockStatus() const
{
    const LuSVNStatus& status = LuSVNStatusOfNode(*this);
    const bool repositoryAsked = status.repositoryTextStatus() != LuSVNStatusNone;
    if (const auto& repositoryLock = status.repositoryLock()) {
        if (!lock())
            return LuSVNLockStatusLockedElsewhere;
        return lock()->isEqualToLock(repositoryLock) ? LuSVNLockStatusLockedHere : LuSVNLockStatusStolen;
    }
    if (lock())
        return repositoryAsked ? LuSVNLockStatusBroken : LuSVNLockStatusLockedLocally;
    return repositoryAsked ? LuSVNLockStatusNotLocked : LuSVNLockStatusUnknown;
}
