#include <tessera/LuSVNStatus.h>

#include <algorithm>
#include <climits>
#include <cstdlib>

#include "LuSVNCodedDate.h"
#include "LuSVNPath+Internal.h"

using tessera_private::LuSVNDecodeDate;
using tessera_private::LuSVNEncodeDate;

static const LuSVNArchivableClassRegistrar<LuSVNStatus> registrar("LuSVNStatus");

std::shared_ptr<LuSVNStatus> LuSVNStatus::status()
{
    return std::make_shared<LuSVNStatus>();
}

std::shared_ptr<LuSVNStatus> LuSVNStatus::normal()
{
    auto result = status();
    result->textStatus_ = LuSVNStatusNormal;
    result->propertyStatus_ = LuSVNStatusNormal;
    return result;
}

std::shared_ptr<LuSVNStatus> LuSVNStatus::unversioned()
{
    auto result = status();
    result->textStatus_ = LuSVNStatusUnversioned;
    return result;
}

std::shared_ptr<LuSVNStatus> LuSVNStatus::ignored()
{
    auto result = status();
    result->textStatus_ = LuSVNStatusIgnored;
    return result;
}

bool LuSVNStatus::isVersioned() const
{
    return textStatus_ != LuSVNStatusUnversioned && textStatus_ != LuSVNStatusIgnored;
}

bool LuSVNStatus::isAbnormal() const
{
    return LuSVNStatusIsAbnormal(textStatus_) || LuSVNStatusIsAbnormal(propertyStatus_);
}

std::int32_t LuSVNStatus::revisionFromFilename(std::string_view filename)
{
    const std::string name = tessera_private::LuSVNLastPathComponent(filename);
    const std::size_t dot = name.rfind('.');
    if (dot == std::string::npos)
        return LuSVNInvalidRevision;
    const std::string extension = name.substr(dot + 1);
    if (extension.size() < 2 || extension[0] != 'r')
        return LuSVNInvalidRevision;
    // Leading digits only, as a conflict file never carries more; a rest
    // without any reads as 0, a number beyond 32 bits as the nearest bound.
    const long long number = std::strtoll(extension.c_str() + 1, nullptr, 10);
    return static_cast<std::int32_t>(std::clamp<long long>(number, INT_MIN, INT_MAX));
}

std::int32_t LuSVNStatus::conflictOldRevision() const
{
    return conflictOldVersion() ? revisionFromFilename(*conflictOldVersion()) : LuSVNInvalidRevision;
}

std::int32_t LuSVNStatus::conflictNewRevision() const
{
    return conflictNewVersion() ? revisionFromFilename(*conflictNewVersion()) : LuSVNInvalidRevision;
}

std::shared_ptr<LuSVNStatus> LuSVNStatus::copy() const
{
    return std::make_shared<LuSVNStatus>(*this);
}

std::string LuSVNStatus::archiveClassName() const
{
    return "LuSVNStatus";
}

void LuSVNStatus::encodeWithCoder(LuSVNCoder& coder) const
{
    LuSVNRequireKeyedArchiver(coder);
    coder.encodeInt64(textStatus_, "textStatus");
    coder.encodeInt64(propertyStatus_, "propertyStatus");
    coder.encodeInt64(repositoryTextStatus_, "repositoryTextStatus");
    coder.encodeInt64(repositoryPropertyStatus_, "repositoryPropertyStatus");
    coder.encodeInt64(pristineTextStatus_, "pristineTextStatus");
    coder.encodeInt64(pristinePropertyStatus_, "pristinePropertyStatus");
    coder.encodeInt64(workingRevision_, "workingRevision");
    coder.encodeInt64(lastChangedRevision_, "lastChangedRevision");
    LuSVNEncodeDate(coder, lastChangedDate_, "lastChangedDate");
    coder.encodeString(lastChangedAuthor_, "lastChangedAuthor");
    coder.encodeBool(isLocked(), "locked");
    coder.encodeBool(isCopied(), "copied");
    coder.encodeBool(isSwitched(), "switched");
    coder.encodeBool(isDeleted(), "deleted");
    coder.encodeBool(isAbsent(), "absent");
    coder.encodeBool(hasProperties(), "hasProperties");
    coder.encodeBool(hasPropertyModifications(), "hasPropertyModifications");
    coder.encodeBool(isFileExternal(), "fileExternal");
    coder.encodeInt64(outOfDateLastCommitRevision_, "outOfDateLastCommitRevision");
    LuSVNEncodeDate(coder, outOfDateLastCommitDate(), "outOfDateLastCommitDate");
    coder.encodeString(outOfDateLastCommitAuthor(), "outOfDateLastCommitAuthor");
    coder.encodeObject(repositoryRootURL(), "repositoryRootURL");
    coder.encodeString(repositoryUUID(), "repositoryUUID");
    coder.encodeInt64(schedule_, "schedule");
    coder.encodeObject(copyFromURL(), "copyFromURL");
    coder.encodeInt64(copyFromRevision(), "copyFromRevision");
    coder.encodeString(conflictOldVersion(), "conflictOldVersion");
    coder.encodeString(conflictNewVersion(), "conflictNewVersion");
    coder.encodeString(conflictWorkingVersion(), "conflictWorkingVersion");
    coder.encodeString(propertyRejectFilePath(), "propertyRejectFilePath");
    LuSVNEncodeDate(coder, upToDateTextDate(), "upToDateTextDate");
    LuSVNEncodeDate(coder, upToDatePropertyDate(), "upToDatePropertyDate");
    coder.encodeString(checksum(), "checksum");
    coder.encodeObject(repositoryLock(), "repositoryLock");
    coder.encodeString(changelist(), "changelist");
    coder.encodeObject(treeConflict(), "treeConflict");
    coder.encodeString(movedFromPath(), "movedFromPath");
    coder.encodeString(movedToPath(), "movedToPath");
}

std::shared_ptr<LuSVNStatus> LuSVNStatus::initWithCoder(LuSVNCoder& coder)
{
    LuSVNRequireKeyedUnarchiver(coder);
    const auto kind = [&coder](std::string_view key) {
        return static_cast<LuSVNStatusKind>(coder.decodeInt64ForKey(key));
    };
    // Revisions written by every archive; an absent one reads as invalid.
    const auto revision = [&coder](std::string_view key) {
        return coder.containsValueForKey(key) ? static_cast<std::int32_t>(coder.decodeInt64ForKey(key))
                                              : LuSVNInvalidRevision;
    };
    auto result = status();
    result->textStatus_ = kind("textStatus");
    result->propertyStatus_ = kind("propertyStatus");
    result->repositoryTextStatus_ = kind("repositoryTextStatus");
    result->repositoryPropertyStatus_ = kind("repositoryPropertyStatus");
    result->pristineTextStatus_ = kind("pristineTextStatus");
    result->pristinePropertyStatus_ = kind("pristinePropertyStatus");
    result->workingRevision_ = revision("workingRevision");
    result->lastChangedRevision_ = revision("lastChangedRevision");
    result->lastChangedDate_ = LuSVNDecodeDate(coder, "lastChangedDate");
    result->lastChangedAuthor_ = coder.decodeStringForKey("lastChangedAuthor");
    result->setLocked(coder.decodeBoolForKey("locked"));
    result->setCopied(coder.decodeBoolForKey("copied"));
    result->setSwitched(coder.decodeBoolForKey("switched"));
    result->setDeleted(coder.decodeBoolForKey("deleted"));
    result->setAbsent(coder.decodeBoolForKey("absent"));
    result->setHasProperties(coder.decodeBoolForKey("hasProperties"));
    result->setHasPropertyModifications(coder.decodeBoolForKey("hasPropertyModifications"));
    result->setFileExternal(coder.decodeBoolForKey("fileExternal"));
    result->outOfDateLastCommitRevision_ = revision("outOfDateLastCommitRevision");
    result->setOutOfDateLastCommitDate(LuSVNDecodeDate(coder, "outOfDateLastCommitDate"));
    result->setOutOfDateLastCommitAuthor(coder.decodeStringForKey("outOfDateLastCommitAuthor"));
    result->setRepositoryRootURL(coder.decodeObjectOfClassForKey<LuSVNURL>("repositoryRootURL"));
    result->setRepositoryUUID(coder.decodeStringForKey("repositoryUUID"));
    result->schedule_ = static_cast<LuSVNSchedule>(coder.decodeInt64ForKey("schedule"));
    result->setCopyFromURL(coder.decodeObjectOfClassForKey<LuSVNURL>("copyFromURL"));
    result->setCopyFromRevision(revision("copyFromRevision"));
    result->setConflictOldVersion(coder.decodeStringForKey("conflictOldVersion"));
    result->setConflictNewVersion(coder.decodeStringForKey("conflictNewVersion"));
    result->setConflictWorkingVersion(coder.decodeStringForKey("conflictWorkingVersion"));
    result->setPropertyRejectFilePath(coder.decodeStringForKey("propertyRejectFilePath"));
    result->setUpToDateTextDate(LuSVNDecodeDate(coder, "upToDateTextDate"));
    result->setUpToDatePropertyDate(LuSVNDecodeDate(coder, "upToDatePropertyDate"));
    result->setChecksum(coder.decodeStringForKey("checksum"));
    result->setRepositoryLock(coder.decodeObjectOfClassForKey<LuSVNLock>("repositoryLock"));
    result->setChangelist(coder.decodeStringForKey("changelist"));
    result->setTreeConflict(coder.decodeObjectOfClassForKey<LuSVNConflict>("treeConflict"));
    result->setMovedFromPath(coder.decodeStringForKey("movedFromPath"));
    result->setMovedToPath(coder.decodeStringForKey("movedToPath"));
    return result;
}

const LuSVNStatus::Rare& LuSVNStatus::emptyRare()
{
    static const Rare empty;
    return empty;
}
