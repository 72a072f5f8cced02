#include <tessera/LuSVNDateConversion.h>
#include <tessera/LuSVNStatus.h>

#include "LuSVNAssert.h"
#include "LuSVNPoolCopies.h"
#include "LuSVNSubversion.h"

using tessera_private::LuSVNOptionalString;

LuSVNStatusKind LuSVNStatus::statusKindFromSVNStatusKind(int kind)
{
    if (kind < svn_wc_status_none || kind > svn_wc_status_incomplete)
        return LuSVNStatusUnknown;
    // svn_wc_status_none (1) is LuSVNStatusNone (0); each later kind the next bit.
    return kind == svn_wc_status_none ? LuSVNStatusNone
                                      : static_cast<LuSVNStatusKind>(1u << (kind - svn_wc_status_unversioned));
}

LuSVNSchedule LuSVNStatus::scheduleFromSVNSchedule(int schedule)
{
    return schedule >= LuSVNScheduleNormal && schedule <= LuSVNScheduleReplace ? static_cast<LuSVNSchedule>(schedule)
                                                                               : LuSVNScheduleInvalid;
}

std::shared_ptr<LuSVNStatus> LuSVNStatus::statusWithSVNStatus(const svn_wc_status2_t* status,
                                                              const LuSVNVersion& version)
{
    LUSVN_PARAMETER_ASSERT(status != nullptr, "status != NULL");
    auto result = LuSVNStatus::status();
    result->textStatus_ = statusKindFromSVNStatusKind(status->text_status);
    result->propertyStatus_ = statusKindFromSVNStatusKind(status->prop_status);
    result->repositoryTextStatus_ = statusKindFromSVNStatusKind(status->repos_text_status);
    result->repositoryPropertyStatus_ = statusKindFromSVNStatusKind(status->repos_prop_status);

    result->setLocked(status->locked != 0);
    result->setCopied(status->copied != 0);
    result->setSwitched(status->switched != 0);

    result->outOfDateLastCommitRevision_ = static_cast<std::int32_t>(status->ood_last_cmt_rev);
    result->setOutOfDateLastCommitDate(LuSVNDateConversion::dateWithAPRTime(status->ood_last_cmt_date));
    result->setOutOfDateLastCommitAuthor(LuSVNOptionalString(status->ood_last_cmt_author));

    if (const svn_wc_entry_t* entry = status->entry) {
        result->workingRevision_ = static_cast<std::int32_t>(entry->revision);
        result->lastChangedRevision_ = static_cast<std::int32_t>(entry->cmt_rev);
        result->lastChangedDate_ = LuSVNDateConversion::dateWithAPRTime(entry->cmt_date);
        result->lastChangedAuthor_ = LuSVNOptionalString(entry->cmt_author);
        result->setDeleted(entry->deleted != 0);
        result->setAbsent(entry->absent != 0);
        result->setHasProperties(entry->has_props != 0);
        result->setHasPropertyModifications(entry->has_prop_mods != 0);
        result->schedule_ = scheduleFromSVNSchedule(entry->schedule);
        if (entry->copyfrom_url)
            result->setCopyFromURL(LuSVNURL::URLWithString(entry->copyfrom_url));
        result->setCopyFromRevision(static_cast<std::int32_t>(entry->copyfrom_rev));
        result->setConflictOldVersion(LuSVNOptionalString(entry->conflict_old));
        result->setConflictNewVersion(LuSVNOptionalString(entry->conflict_new));
        result->setConflictWorkingVersion(LuSVNOptionalString(entry->conflict_wrk));
        result->setPropertyRejectFilePath(LuSVNOptionalString(entry->prejfile));
        result->setUpToDateTextDate(LuSVNDateConversion::dateWithAPRTime(entry->text_time));
        result->setUpToDatePropertyDate(LuSVNDateConversion::dateWithAPRTime(entry->prop_time));
        result->setChecksum(LuSVNOptionalString(entry->checksum));
        // The entries of 1.4 end before the depth.
        if (version.isGreaterThanOrEqualTo(LuSVNVersion::version1_5())) {
            result->depth_ = entry->depth;
            result->setChangelist(LuSVNOptionalString(entry->changelist));
        }
    }

    if (status->repos_lock)
        result->setRepositoryLock(LuSVNLock::lockWithSVNLock(status->repos_lock));

    // The records of 1.4 and 1.5 end before these fields.
    if (version.isGreaterThanOrEqualTo(LuSVNVersion::version1_6())) {
        result->pristineTextStatus_ = statusKindFromSVNStatusKind(status->pristine_text_status);
        result->pristinePropertyStatus_ = statusKindFromSVNStatusKind(status->pristine_prop_status);
        result->setFileExternal(status->file_external != 0);
        if (status->tree_conflict)
            result->setTreeConflict(LuSVNConflict::conflictFromStruct(status->tree_conflict));
    }
    return result;
}
