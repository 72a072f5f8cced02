#include <tessera/LuSVNNotification.h>

#include <array>
#include <string_view>

#include "LuSVNObjectDescription.h"

namespace {

// Subversion's notify actions 0 to 68, in Subversion's order.
constexpr std::array<std::string_view, 69> subversionActionWords = {
    "Add", "Copy", "Delete", "Restore", "Revert", "FailedRevert", "Resolved", "Skip", "UpdateDelete", "UpdateAdd",
    "UpdateUpdate", "UpdateCompleted", "UpdateExternal", "StatusCompleted", "StatusExternal", "CommitModified",
    "CommitAdded", "CommitDeleted", "CommitReplaced", "CommitPostfixTXDelta", "BlameRevision", "Locked", "Unlocked",
    "FailedLock", "FailedUnlock", "Exists", "ChangeListSet", "ChangeListClear", "ChangeListMoved", "MergeBegin",
    "ForeignMergeBegin", "UpdateReplace", "PropertyAdded", "PropertyModified", "PropertyDeleted",
    "PropertyDeletedNonExistent", "RevisionPropertySet", "RevisionPropertyDeleted", "MergeCompleted", "TreeConflict",
    "FailedExternal", "UpdateStarted", "UpdateSkipObstruction", "UpdateSkipWorkingOnly", "UpdateSkipAccessDenied",
    "UpdateExternalRemoved", "UpdateShadowedAdd", "UpdateShadowedUpdate", "UpdateShadowedDelete", "MergeRecordInfo",
    "UpgradedPath", "MergeRecordInfoBegin", "MergeElideInfo", "Patch", "PatchAppliedHunk", "PatchRejectedHunk",
    "PatchHunkAlreadyApplied", "CommitCopied", "CommitCopiedReplaced", "URLRedirect", "PathNonExistent", "Exclude",
    "FailedConflict", "FailedMissing", "FailedOutOfDate", "FailedNoParent", "FailedLocked",
    "FailedForbiddenByServer", "SkipConflicted"};

// The library's own actions from 65536 on; the empty words are the codes
// left unused.
constexpr std::int32_t firstOwnAction = LuSVNNotifyActionLegacyUpdateStarted;
constexpr std::array<std::string_view, 28> ownActionWords = {
    "LegacyUpdateStarted", "UpdateSucceeded", "UpdateFailed", "CommitStarted", "CommitSucceeded", "CommitFailed",
    "CheckOutStarted", "CheckOutSucceeded", "CheckOutFailed", "ImportStarted", "ImportSucceeded", "ImportFailed",
    "ExportStarted", "ExportSucceeded", "ExportFailed", "InternalExportStarted", "", "", "", "RelocateStarted",
    "RelocateSucceeded", "RelocateFailed", "SwitchStarted", "SwitchSucceeded", "SwitchFailed",
    "MergeStarted", "MergeSucceeded", "MergeFailed"};

std::string_view actionWord(std::int32_t action)
{
    if (action == LuSVNNotifyActionUnknown)
        return "Unknown";
    if (action >= 0 && action < static_cast<std::int32_t>(subversionActionWords.size()))
        return subversionActionWords[static_cast<std::size_t>(action)];
    if (action >= firstOwnAction && action - firstOwnAction < static_cast<std::int32_t>(ownActionWords.size()))
        return ownActionWords[static_cast<std::size_t>(action - firstOwnAction)];
    return {};
}

// An exception inside an archive: its class name, reason and user info, as
// the platform's exceptions archive themselves.
class ArchivedException final : public LuSVNCoding {
public:
    explicit ArchivedException(std::shared_ptr<const LuSVNException> exception) : exception_(std::move(exception)) {}

    static std::shared_ptr<ArchivedException> initWithCoder(LuSVNCoder& coder)
    {
        LuSVNRequireKeyedUnarchiver(coder);
        const std::string name = coder.decodeStringForKey("name").value_or("");
        std::string reason = coder.decodeStringForKey("reason").value_or("");
        auto userInfo = coder.decodeObjectOfClassForKey<LuSVNErrorDictionary>("userInfo");
        std::optional<LuSVNErrorDictionary> info;
        if (userInfo)
            info = *userInfo;
        // Only the class a status maps to can be found again by name; others
        // come back as the root of the family.
        const LuSVNExceptionClass* exceptionClass =
            info && info->status ? LuSVNException::classForAPRStatus(static_cast<int>(*info->status)) : nullptr;
        if (!exceptionClass || name != exceptionClass->name)
            exceptionClass = &LuSVNException::classObject();
        return std::make_shared<ArchivedException>(exceptionClass->make(std::move(reason), std::move(info)));
    }

    const std::shared_ptr<const LuSVNException>& exception() const { return exception_; }

    std::string archiveClassName() const override { return "LuSVNException"; }

    void encodeWithCoder(LuSVNCoder& coder) const override
    {
        LuSVNRequireKeyedArchiver(coder);
        coder.encodeString(exception_->name(), "name");
        coder.encodeString(exception_->reason(), "reason");
        coder.encodeObject(exception_->userInfo(), "userInfo");
    }

private:
    std::shared_ptr<const LuSVNException> exception_;
};

const LuSVNArchivableClassRegistrar<ArchivedException> exceptionRegistrar("LuSVNException");
const LuSVNArchivableClassRegistrar<LuSVNNotification> registrar("LuSVNNotification");

std::string text(const std::optional<std::string>& value)
{
    return value.value_or("(null)");
}

}  // namespace

std::string LuSVNStringFromNotificationAction(std::int32_t action)
{
    const std::string_view word = actionWord(action);
    if (word.empty())
        return "<unknown> (" + std::to_string(action) + ")";
    return "LuSVNNotifyAction" + std::string(word);
}

std::string LuSVNNotification::description() const
{
    return "{ " + tessera_private::LuSVNGenericDescription("LuSVNNotification", this) +
           ", action: " + LuSVNStringFromNotificationAction(action_) +
           ", contentState: " + std::to_string(contentState_) +
           ", error: " + (error_ ? error_->reason() : "(null)") +
           ", lock: " + (lock_ ? lock_->description() : "(null)") + ", lockState: " + std::to_string(lockState_) +
           ", nodeKind: " + std::to_string(nodeKind_) + ", path: " + text(path_) +
           ", alternatePath: " + text(alternatePath_) + ", propertyState: " + std::to_string(propertyState_) +
           ", revision: " + std::to_string(revision_) + " }";
}

std::shared_ptr<LuSVNNotification> LuSVNNotification::initWithCoder(LuSVNCoder& coder)
{
    LuSVNRequireKeyedUnarchiver(coder);
    auto notification = std::make_shared<LuSVNNotification>();
    notification->path_ = coder.decodeStringForKey("path");
    notification->alternatePath_ = coder.decodeStringForKey("alternatePath");
    notification->action_ = static_cast<std::int32_t>(coder.decodeInt64ForKey("action"));
    notification->nodeKind_ = static_cast<std::int32_t>(coder.decodeInt64ForKey("nodeKind"));
    notification->lock_ = coder.decodeObjectOfClassForKey<LuSVNLock>("lock");
    if (auto error = coder.decodeObjectOfClassForKey<ArchivedException>("error"))
        notification->error_ = error->exception();
    notification->revision_ = static_cast<std::int32_t>(coder.decodeInt64ForKey("revision"));
    notification->contentState_ = static_cast<std::int32_t>(coder.decodeInt64ForKey("contentState"));
    notification->propertyState_ = static_cast<std::int32_t>(coder.decodeInt64ForKey("propertyState"));
    notification->lockState_ = static_cast<std::int32_t>(coder.decodeInt64ForKey("lockState"));
    notification->pathPrefix_ = coder.decodeStringForKey("pathPrefix");
    notification->url_ = coder.decodeObjectOfClassForKey<LuSVNURL>("url");
    notification->propertyName_ = coder.decodeStringForKey("propertyName");
    return notification;
}

std::string LuSVNNotification::archiveClassName() const
{
    return "LuSVNNotification";
}

void LuSVNNotification::encodeWithCoder(LuSVNCoder& coder) const
{
    LuSVNRequireKeyedArchiver(coder);
    coder.encodeString(path_, "path");
    coder.encodeString(alternatePath_, "alternatePath");
    coder.encodeInt64(action_, "action");
    coder.encodeInt64(nodeKind_, "nodeKind");
    coder.encodeObject(lock_, "lock");
    const ArchivedException error(error_);
    coder.encodeObject(error_ ? &error : nullptr, "error");
    coder.encodeInt64(revision_, "revision");
    coder.encodeInt64(contentState_, "contentState");
    coder.encodeInt64(propertyState_, "propertyState");
    coder.encodeInt64(lockState_, "lockState");
    coder.encodeString(pathPrefix_, "pathPrefix");
    coder.encodeObject(url_, "url");
    coder.encodeString(propertyName_, "propertyName");
}
