// The status of one working-copy item, the same whatever the Subversion
// release of the backend that reported it.
//
//   auto status = LuSVNStatus::statusWithSVNStatus(record, backendVersion);
//   if (status->isAbnormal()) ...                      // something to show
//   status->textStatus() == LuSVNStatusModified;
//   std::uint32_t seen = status->textStatus() | status->propertyStatus();
//
// Status kinds are bits, so that the kinds of many items can be OR-ed into one
// word (the aggregates of LuSVNDirectory). The quiet kinds are normal,
// ignored and external; every other bit is abnormal, unversioned included:
// unversioned items are changes the user should see.
//
// A record is mutable and shared as std::shared_ptr; copy() makes an
// independent one that shares the objects it holds. Archived with the keyed
// coders under the key named beside each field below; the depth is not
// archived. A record without a date writes no key for it.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include <tessera/LuSVNCoder.h>
#include <tessera/LuSVNConflict.h>
#include <tessera/LuSVNExport.h>
#include <tessera/LuSVNLock.h>
#include <tessera/LuSVNOptions.h>
#include <tessera/LuSVNRevision.h>
#include <tessera/LuSVNURL.h>
#include <tessera/LuSVNVersion.h>

struct svn_wc_status2_t;

/// The kinds of an item's status, one bit each. Subversion's
/// svn_wc_status_kind 1 to 14 map to None ... Incomplete in this order; any
/// other value to LuSVNStatusUnknown.
enum LuSVNStatusKind : std::uint32_t {
    LuSVNStatusNone = 0,
    LuSVNStatusUnversioned = 1,
    LuSVNStatusNormal = 2,
    LuSVNStatusAdded = 4,
    LuSVNStatusMissing = 8,
    LuSVNStatusDeleted = 16,
    LuSVNStatusReplaced = 32,
    LuSVNStatusModified = 64,
    LuSVNStatusMerged = 128,
    LuSVNStatusConflicted = 256,
    LuSVNStatusIgnored = 512,
    LuSVNStatusObstructed = 1024,
    LuSVNStatusExternal = 2048,
    LuSVNStatusIncomplete = 4096,
    LuSVNStatusUnknown = 0x10000000,
};

/// The quiet kinds: normal, ignored, external.
inline constexpr std::uint32_t LuSVNStatusQuietMask = 0xA02;

/// Whether a kind, or an OR of kinds, has a bit outside the quiet mask.
constexpr bool LuSVNStatusIsAbnormal(std::uint32_t kinds)
{
    return (kinds & ~LuSVNStatusQuietMask) != 0;
}

/// A stored kind word as a kind: none stands for LuSVNStatusNone.
constexpr LuSVNStatusKind LuSVNStatusFromNumber(std::optional<std::uint32_t> number)
{
    return static_cast<LuSVNStatusKind>(number.value_or(LuSVNStatusNone));
}

/// The operation an item is scheduled for. A Subversion schedule of 4 or
/// more reads as LuSVNScheduleInvalid.
enum LuSVNSchedule : std::int32_t {
    LuSVNScheduleInvalid = -1,
    LuSVNScheduleNormal = 0,
    LuSVNScheduleAdd = 1,
    LuSVNScheduleDelete = 2,
    LuSVNScheduleReplace = 3,
};

class TESSERA_EXPORT LuSVNStatus final : public LuSVNCoding {
public:
    using Date = std::chrono::system_clock::time_point;

    /// Every kind LuSVNStatusNone, schedule normal, revisions
    /// LuSVNInvalidRevision, flags false, depth unknown (-2), no objects.
    LuSVNStatus() = default;

    /// A new record as the default constructor makes it.
    static std::shared_ptr<LuSVNStatus> status();
    /// Text and property status normal.
    static std::shared_ptr<LuSVNStatus> normal();
    /// Text status unversioned, property status none.
    static std::shared_ptr<LuSVNStatus> unversioned();
    /// Text status ignored, property status none.
    static std::shared_ptr<LuSVNStatus> ignored();

    // --- Conversion from Subversion ---------------------------------------------

    /// The record for Subversion's svn_wc_status2_t as the backend of
    /// `version` delivers it (svn_client_status2 and svn_client_status4; the
    /// status walk puts the records of svn_client_status5 into this form
    /// first). The version decides which fields exist:
    ///  - every release: the four kinds, the locked, copied and switched
    ///    flags, the out-of-date revision, date and author, the repository
    ///    lock, and from the entry (when there is one) the last change,
    ///    the deleted, absent, has-properties and property-modification
    ///    flags, the schedule, the copy source, the conflict file names, the
    ///    property reject file, the text and property times, the checksum
    ///    and the working revision;
    ///  - 1.5 and later: the depth and the change list, from the entry;
    ///  - 1.6 and later: the pristine kinds, the file-external flag and the
    ///    tree conflict.
    /// Raises "Invalid parameter not satisfying: status != NULL" for null.
    static std::shared_ptr<LuSVNStatus> statusWithSVNStatus(const svn_wc_status2_t* status,
                                                            const LuSVNVersion& version);

    /// The kind for Subversion's svn_wc_status_kind (1 to 14);
    /// LuSVNStatusUnknown for any other value.
    static LuSVNStatusKind statusKindFromSVNStatusKind(int kind);

    /// The schedule for Subversion's svn_wc_schedule_t (0 to 3);
    /// LuSVNScheduleInvalid for any other value.
    static LuSVNSchedule scheduleFromSVNSchedule(int schedule);

    // --- Derived ----------------------------------------------------------------

    /// False when the text status is unversioned or ignored.
    bool isVersioned() const;
    /// Whether the text or the property status is abnormal.
    bool isAbnormal() const;
    /// The revision a conflict file's extension carries: "r1234" gives 1234;
    /// an extension of at least two characters beginning with "r" whose rest
    /// is not a number gives 0; anything else (".mine", a bare "r", no
    /// extension) LuSVNInvalidRevision.
    static std::int32_t revisionFromFilename(std::string_view filename);
    /// revisionFromFilename of the conflict's older and newer file names;
    /// LuSVNInvalidRevision without one.
    std::int32_t conflictOldRevision() const;
    std::int32_t conflictNewRevision() const;

    // --- Fields -----------------------------------------------------------------

    /// The local text status ("textStatus").
    LuSVNStatusKind textStatus() const { return textStatus_; }
    void setTextStatus(LuSVNStatusKind kind) { textStatus_ = kind; }
    /// The local property status ("propertyStatus").
    LuSVNStatusKind propertyStatus() const { return propertyStatus_; }
    void setPropertyStatus(LuSVNStatusKind kind) { propertyStatus_ = kind; }
    /// The text status in the repository, LuSVNStatusNone when the
    /// repository was not asked ("repositoryTextStatus").
    LuSVNStatusKind repositoryTextStatus() const { return repositoryTextStatus_; }
    void setRepositoryTextStatus(LuSVNStatusKind kind) { repositoryTextStatus_ = kind; }
    /// ("repositoryPropertyStatus")
    LuSVNStatusKind repositoryPropertyStatus() const { return repositoryPropertyStatus_; }
    void setRepositoryPropertyStatus(LuSVNStatusKind kind) { repositoryPropertyStatus_ = kind; }
    /// The text status against the pristine copy; backends 1.6 and later
    /// ("pristineTextStatus").
    LuSVNStatusKind pristineTextStatus() const { return pristineTextStatus_; }
    void setPristineTextStatus(LuSVNStatusKind kind) { pristineTextStatus_ = kind; }
    /// ("pristinePropertyStatus")
    LuSVNStatusKind pristinePropertyStatus() const { return pristinePropertyStatus_; }
    void setPristinePropertyStatus(LuSVNStatusKind kind) { pristinePropertyStatus_ = kind; }

    /// The revision the working copy holds of the item ("workingRevision").
    std::int32_t workingRevision() const { return workingRevision_; }
    void setWorkingRevision(std::int32_t revision) { workingRevision_ = revision; }
    /// The last commit that changed the item ("lastChangedRevision",
    /// "lastChangedDate", "lastChangedAuthor").
    std::int32_t lastChangedRevision() const { return lastChangedRevision_; }
    void setLastChangedRevision(std::int32_t revision) { lastChangedRevision_ = revision; }
    const std::optional<Date>& lastChangedDate() const { return lastChangedDate_; }
    void setLastChangedDate(std::optional<Date> date) { lastChangedDate_ = date; }
    const std::optional<std::string>& lastChangedAuthor() const { return lastChangedAuthor_; }
    void setLastChangedAuthor(std::optional<std::string> author) { lastChangedAuthor_ = std::move(author); }

    /// The working-copy directory is locked ("locked").
    bool isLocked() const { return flag(LockedFlag); }
    void setLocked(bool value) { setFlag(LockedFlag, value); }
    /// Scheduled with history ("copied").
    bool isCopied() const { return flag(CopiedFlag); }
    void setCopied(bool value) { setFlag(CopiedFlag, value); }
    /// Switched relative to its parent ("switched").
    bool isSwitched() const { return flag(SwitchedFlag); }
    void setSwitched(bool value) { setFlag(SwitchedFlag, value); }
    /// The entry is marked deleted ("deleted").
    bool isDeleted() const { return flag(DeletedFlag); }
    void setDeleted(bool value) { setFlag(DeletedFlag, value); }
    /// The entry is marked absent ("absent").
    bool isAbsent() const { return flag(AbsentFlag); }
    void setAbsent(bool value) { setFlag(AbsentFlag, value); }
    /// The item has properties ("hasProperties").
    bool hasProperties() const { return flag(HasPropertiesFlag); }
    void setHasProperties(bool value) { setFlag(HasPropertiesFlag, value); }
    /// The item has local property changes ("hasPropertyModifications").
    bool hasPropertyModifications() const { return flag(HasPropertyModificationsFlag); }
    void setHasPropertyModifications(bool value) { setFlag(HasPropertyModificationsFlag, value); }
    /// The item is a file external ("fileExternal").
    bool isFileExternal() const { return flag(FileExternalFlag); }
    void setFileExternal(bool value) { setFlag(FileExternalFlag, value); }

    /// The newest commit of the item in the repository, when the repository
    /// was asked ("outOfDateLastCommitRevision", "...Date", "...Author").
    std::int32_t outOfDateLastCommitRevision() const { return outOfDateLastCommitRevision_; }
    void setOutOfDateLastCommitRevision(std::int32_t revision) { outOfDateLastCommitRevision_ = revision; }
    const std::optional<Date>& outOfDateLastCommitDate() const { return rare_.get().outOfDateLastCommitDate; }
    void setOutOfDateLastCommitDate(std::optional<Date> date) { setRare(&Rare::outOfDateLastCommitDate, std::move(date)); }
    const std::optional<std::string>& outOfDateLastCommitAuthor() const { return rare_.get().outOfDateLastCommitAuthor; }
    void setOutOfDateLastCommitAuthor(std::optional<std::string> author)
    {
        setRare(&Rare::outOfDateLastCommitAuthor, std::move(author));
    }

    /// Kept, copied and archived; no conversion fills them
    /// ("repositoryRootURL", "repositoryUUID").
    const std::shared_ptr<const LuSVNURL>& repositoryRootURL() const { return rare_.get().repositoryRootURL; }
    void setRepositoryRootURL(std::shared_ptr<const LuSVNURL> url) { setRare(&Rare::repositoryRootURL, std::move(url)); }
    const std::optional<std::string>& repositoryUUID() const { return rare_.get().repositoryUUID; }
    void setRepositoryUUID(std::optional<std::string> uuid) { setRare(&Rare::repositoryUUID, std::move(uuid)); }

    /// ("schedule")
    LuSVNSchedule schedule() const { return schedule_; }
    void setSchedule(LuSVNSchedule schedule) { schedule_ = schedule; }
    /// The copy source ("copyFromURL", "copyFromRevision").
    const std::shared_ptr<const LuSVNURL>& copyFromURL() const { return rare_.get().copyFromURL; }
    void setCopyFromURL(std::shared_ptr<const LuSVNURL> url) { setRare(&Rare::copyFromURL, std::move(url)); }
    std::int32_t copyFromRevision() const { return rare_.get().copyFromRevision; }
    void setCopyFromRevision(std::int32_t revision) { setRare(&Rare::copyFromRevision, std::move(revision)); }

    /// File names (in the item's directory) of a text conflict's older base,
    /// newer and working files ("conflictOldVersion", "conflictNewVersion",
    /// "conflictWorkingVersion").
    const std::optional<std::string>& conflictOldVersion() const { return rare_.get().conflictOldVersion; }
    void setConflictOldVersion(std::optional<std::string> name) { setRare(&Rare::conflictOldVersion, std::move(name)); }
    const std::optional<std::string>& conflictNewVersion() const { return rare_.get().conflictNewVersion; }
    void setConflictNewVersion(std::optional<std::string> name) { setRare(&Rare::conflictNewVersion, std::move(name)); }
    const std::optional<std::string>& conflictWorkingVersion() const { return rare_.get().conflictWorkingVersion; }
    void setConflictWorkingVersion(std::optional<std::string> name) { setRare(&Rare::conflictWorkingVersion, std::move(name)); }
    /// File name of the property reject file ("propertyRejectFilePath").
    const std::optional<std::string>& propertyRejectFilePath() const { return rare_.get().propertyRejectFilePath; }
    void setPropertyRejectFilePath(std::optional<std::string> name) { setRare(&Rare::propertyRejectFilePath, std::move(name)); }

    /// The last times text and properties were known up to date
    /// ("upToDateTextDate", "upToDatePropertyDate").
    const std::optional<Date>& upToDateTextDate() const { return rare_.get().upToDateTextDate; }
    void setUpToDateTextDate(std::optional<Date> date) { setRare(&Rare::upToDateTextDate, std::move(date)); }
    const std::optional<Date>& upToDatePropertyDate() const { return rare_.get().upToDatePropertyDate; }
    void setUpToDatePropertyDate(std::optional<Date> date) { setRare(&Rare::upToDatePropertyDate, std::move(date)); }
    /// The checksum of the pristine text ("checksum").
    const std::optional<std::string>& checksum() const { return rare_.get().checksum; }
    void setChecksum(std::optional<std::string> checksum) { setRare(&Rare::checksum, std::move(checksum)); }

    /// The lock held in the repository ("repositoryLock").
    const std::shared_ptr<const LuSVNLock>& repositoryLock() const { return rare_.get().repositoryLock; }
    void setRepositoryLock(std::shared_ptr<const LuSVNLock> lock) { setRare(&Rare::repositoryLock, std::move(lock)); }
    /// The change list the item belongs to; backends 1.5 and later
    /// ("changelist").
    const std::optional<std::string>& changelist() const { return rare_.get().changelist; }
    void setChangelist(std::optional<std::string> name) { setRare(&Rare::changelist, std::move(name)); }
    /// The item's depth; not archived.
    LuSVNDepth depth() const { return depth_; }
    void setDepth(LuSVNDepth depth) { depth_ = depth; }
    /// The tree conflict on the item ("treeConflict").
    const std::shared_ptr<const LuSVNConflict>& treeConflict() const { return rare_.get().treeConflict; }
    void setTreeConflict(std::shared_ptr<const LuSVNConflict> conflict) { setRare(&Rare::treeConflict, std::move(conflict)); }
    /// Where a moved item came from and where it went: the absolute local
    /// paths of the other end of a local move ("movedFromPath",
    /// "movedToPath"). Subversion records moves from 1.8 on and names them
    /// on the roots of a move only (the item moved, not its children): the
    /// copy reports where it came from, the deleted source where it went; an
    /// item that swapped places with another names that one as both. Not in
    /// Subversion's older status record; backends before 1.7 leave both
    /// empty.
    const std::optional<std::string>& movedFromPath() const { return rare_.get().movedFromPath; }
    /// Sets where a moved item came from.
    void setMovedFromPath(std::optional<std::string> path) { setRare(&Rare::movedFromPath, std::move(path)); }
    /// Where a moved item went (above).
    const std::optional<std::string>& movedToPath() const { return rare_.get().movedToPath; }
    /// Sets where a moved item went.
    void setMovedToPath(std::optional<std::string> path) { setRare(&Rare::movedToPath, std::move(path)); }

    // --- Copying and archiving ------------------------------------------------

    /// A new record with every field of this one; objects are shared.
    std::shared_ptr<LuSVNStatus> copy() const;

    /// Reads the keys written by encodeWithCoder; the depth reads as unknown.
    static std::shared_ptr<LuSVNStatus> initWithCoder(LuSVNCoder& coder);
    std::string archiveClassName() const override;
    void encodeWithCoder(LuSVNCoder& coder) const override;

private:
    enum Flag : std::uint32_t {
        LockedFlag = 1u << 0,
        CopiedFlag = 1u << 1,
        SwitchedFlag = 1u << 2,
        DeletedFlag = 1u << 3,
        AbsentFlag = 1u << 4,
        HasPropertiesFlag = 1u << 5,
        HasPropertyModificationsFlag = 1u << 6,
        FileExternalFlag = 1u << 7,
    };
    // The fields that most items leave unset, kept apart so that the records
    // of a walk of many thousand items stay small; made when one is set.
    struct Rare {
        std::optional<Date> outOfDateLastCommitDate;
        std::optional<std::string> outOfDateLastCommitAuthor;
        std::shared_ptr<const LuSVNURL> repositoryRootURL;
        std::optional<std::string> repositoryUUID;
        std::shared_ptr<const LuSVNURL> copyFromURL;
        std::int32_t copyFromRevision = LuSVNInvalidRevision;
        std::optional<std::string> conflictOldVersion;
        std::optional<std::string> conflictNewVersion;
        std::optional<std::string> conflictWorkingVersion;
        std::optional<std::string> propertyRejectFilePath;
        std::optional<Date> upToDateTextDate;
        std::optional<Date> upToDatePropertyDate;
        std::optional<std::string> checksum;
        std::shared_ptr<const LuSVNLock> repositoryLock;
        std::optional<std::string> changelist;
        std::shared_ptr<const LuSVNConflict> treeConflict;
        std::optional<std::string> movedFromPath;
        std::optional<std::string> movedToPath;
    };
    // Owns the rare part; a copy of a record copies it too.
    class RarePart {
    public:
        RarePart() = default;
        RarePart(const RarePart& other) : part_(other.part_ ? std::make_unique<Rare>(*other.part_) : nullptr) {}
        RarePart(RarePart&&) noexcept = default;
        RarePart& operator=(const RarePart& other)
        {
            part_ = other.part_ ? std::make_unique<Rare>(*other.part_) : nullptr;
            return *this;
        }
        RarePart& operator=(RarePart&&) noexcept = default;
        bool exists() const { return part_ != nullptr; }
        const Rare& get() const { return part_ ? *part_ : emptyRare(); }
        Rare& mutate()
        {
            if (!part_)
                part_ = std::make_unique<Rare>();
            return *part_;
        }

    private:
        std::unique_ptr<Rare> part_;
    };
    static const Rare& emptyRare();
    template <class T>
    static bool isUnset(const T& value)
    {
        return !value;
    }
    static bool isUnset(std::int32_t revision) { return revision == LuSVNInvalidRevision; }
    // Setting "none" on a record without a rare part makes none.
    template <class T>
    void setRare(T Rare::*field, T value)
    {
        if (rare_.exists() || !isUnset(value))
            rare_.mutate().*field = std::move(value);
    }

    bool flag(Flag flag) const { return (flags_ & flag) != 0; }
    void setFlag(Flag flag, bool value) { flags_ = value ? (flags_ | flag) : (flags_ & ~flag); }

    LuSVNStatusKind textStatus_ = LuSVNStatusNone;
    LuSVNStatusKind propertyStatus_ = LuSVNStatusNone;
    LuSVNStatusKind repositoryTextStatus_ = LuSVNStatusNone;
    LuSVNStatusKind repositoryPropertyStatus_ = LuSVNStatusNone;
    LuSVNStatusKind pristineTextStatus_ = LuSVNStatusNone;
    LuSVNStatusKind pristinePropertyStatus_ = LuSVNStatusNone;
    std::int32_t workingRevision_ = LuSVNInvalidRevision;
    std::int32_t lastChangedRevision_ = LuSVNInvalidRevision;
    std::optional<Date> lastChangedDate_;
    std::optional<std::string> lastChangedAuthor_;
    std::uint32_t flags_ = 0;
    std::int32_t outOfDateLastCommitRevision_ = LuSVNInvalidRevision;
    LuSVNSchedule schedule_ = LuSVNScheduleNormal;
    LuSVNDepth depth_ = LuSVNDepthUnknown;
    RarePart rare_;
};
