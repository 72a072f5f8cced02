// One step of an operation, as the notification handlers of a context
// receive it (LuSVNNotificationHandler.h).
//
//   void contextNotify(LuSVNContext& context, const LuSVNNotification& notification) override
//   {
//       if (notification.action() == LuSVNNotifyActionUpdateAdd)
//           std::cout << "A    " << notification.path().value_or("") << "\n";
//   }
//
// Subversion's own steps keep Subversion's action codes (0 to 68 are named
// here; later releases add more, which print in the unknown form); the
// library adds its own codes from 65536 on for whole operations.
//
// A plain value. Archived with the keyed coders under "path",
// "alternatePath", "action", "nodeKind", "lock", "error", "revision",
// "contentState", "propertyState", "lockState", "pathPrefix", "url" and
// "propertyName", in this order.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include <tessera/LuSVNCoder.h>
#include <tessera/LuSVNException.h>
#include <tessera/LuSVNExport.h>
#include <tessera/LuSVNLock.h>
#include <tessera/LuSVNRevision.h>
#include <tessera/LuSVNRevisionRange.h>
#include <tessera/LuSVNURL.h>

/// The action of a notification: Subversion's notify actions, then the
/// library's own.
enum LuSVNNotifyAction : std::int32_t {
    LuSVNNotifyActionUnknown = -1,
    LuSVNNotifyActionAdd = 0,
    LuSVNNotifyActionCopy = 1,
    LuSVNNotifyActionDelete = 2,
    LuSVNNotifyActionRestore = 3,
    LuSVNNotifyActionRevert = 4,
    LuSVNNotifyActionFailedRevert = 5,
    LuSVNNotifyActionResolved = 6,
    LuSVNNotifyActionSkip = 7,
    LuSVNNotifyActionUpdateDelete = 8,
    LuSVNNotifyActionUpdateAdd = 9,
    LuSVNNotifyActionUpdateUpdate = 10,
    LuSVNNotifyActionUpdateCompleted = 11,
    LuSVNNotifyActionUpdateExternal = 12,
    LuSVNNotifyActionStatusCompleted = 13,
    LuSVNNotifyActionStatusExternal = 14,
    LuSVNNotifyActionCommitModified = 15,
    LuSVNNotifyActionCommitAdded = 16,
    LuSVNNotifyActionCommitDeleted = 17,
    LuSVNNotifyActionCommitReplaced = 18,
    LuSVNNotifyActionCommitPostfixTXDelta = 19,
    LuSVNNotifyActionBlameRevision = 20,
    LuSVNNotifyActionLocked = 21,
    LuSVNNotifyActionUnlocked = 22,
    LuSVNNotifyActionFailedLock = 23,
    LuSVNNotifyActionFailedUnlock = 24,
    LuSVNNotifyActionExists = 25,
    LuSVNNotifyActionChangeListSet = 26,
    LuSVNNotifyActionChangeListClear = 27,
    LuSVNNotifyActionChangeListMoved = 28,
    LuSVNNotifyActionMergeBegin = 29,
    LuSVNNotifyActionForeignMergeBegin = 30,
    LuSVNNotifyActionUpdateReplace = 31,
    LuSVNNotifyActionPropertyAdded = 32,
    LuSVNNotifyActionPropertyModified = 33,
    LuSVNNotifyActionPropertyDeleted = 34,
    LuSVNNotifyActionPropertyDeletedNonExistent = 35,
    LuSVNNotifyActionRevisionPropertySet = 36,
    LuSVNNotifyActionRevisionPropertyDeleted = 37,
    LuSVNNotifyActionMergeCompleted = 38,
    LuSVNNotifyActionTreeConflict = 39,
    LuSVNNotifyActionFailedExternal = 40,
    LuSVNNotifyActionUpdateStarted = 41,
    LuSVNNotifyActionUpdateSkipObstruction = 42,
    LuSVNNotifyActionUpdateSkipWorkingOnly = 43,
    LuSVNNotifyActionUpdateSkipAccessDenied = 44,
    LuSVNNotifyActionUpdateExternalRemoved = 45,
    LuSVNNotifyActionUpdateShadowedAdd = 46,
    LuSVNNotifyActionUpdateShadowedUpdate = 47,
    LuSVNNotifyActionUpdateShadowedDelete = 48,
    LuSVNNotifyActionMergeRecordInfo = 49,
    LuSVNNotifyActionUpgradedPath = 50,
    LuSVNNotifyActionMergeRecordInfoBegin = 51,
    LuSVNNotifyActionMergeElideInfo = 52,
    LuSVNNotifyActionPatch = 53,
    LuSVNNotifyActionPatchAppliedHunk = 54,
    LuSVNNotifyActionPatchRejectedHunk = 55,
    LuSVNNotifyActionPatchHunkAlreadyApplied = 56,
    LuSVNNotifyActionCommitCopied = 57,
    LuSVNNotifyActionCommitCopiedReplaced = 58,
    LuSVNNotifyActionURLRedirect = 59,
    LuSVNNotifyActionPathNonExistent = 60,
    LuSVNNotifyActionExclude = 61,
    LuSVNNotifyActionFailedConflict = 62,
    LuSVNNotifyActionFailedMissing = 63,
    LuSVNNotifyActionFailedOutOfDate = 64,
    LuSVNNotifyActionFailedNoParent = 65,
    LuSVNNotifyActionFailedLocked = 66,
    LuSVNNotifyActionFailedForbiddenByServer = 67,
    LuSVNNotifyActionSkipConflicted = 68,

    LuSVNNotifyActionLegacyUpdateStarted = 65536,
    LuSVNNotifyActionUpdateSucceeded = 65537,
    LuSVNNotifyActionUpdateFailed = 65538,
    LuSVNNotifyActionCommitStarted = 65539,
    LuSVNNotifyActionCommitSucceeded = 65540,
    LuSVNNotifyActionCommitFailed = 65541,
    LuSVNNotifyActionCheckOutStarted = 65542,
    LuSVNNotifyActionCheckOutSucceeded = 65543,
    LuSVNNotifyActionCheckOutFailed = 65544,
    LuSVNNotifyActionImportStarted = 65545,
    LuSVNNotifyActionImportSucceeded = 65546,
    LuSVNNotifyActionImportFailed = 65547,
    LuSVNNotifyActionExportStarted = 65548,
    LuSVNNotifyActionExportSucceeded = 65549,
    LuSVNNotifyActionExportFailed = 65550,
    LuSVNNotifyActionInternalExportStarted = 65551,
    // 65552 to 65554 are not used.
    LuSVNNotifyActionRelocateStarted = 65555,
    LuSVNNotifyActionRelocateSucceeded = 65556,
    LuSVNNotifyActionRelocateFailed = 65557,
    LuSVNNotifyActionSwitchStarted = 65558,
    LuSVNNotifyActionSwitchSucceeded = 65559,
    LuSVNNotifyActionSwitchFailed = 65560,
    /// Tessera's own frame of a merge, for the working-copy path.
    LuSVNNotifyActionMergeStarted = 65561,
    LuSVNNotifyActionMergeSucceeded = 65562,
    LuSVNNotifyActionMergeFailed = 65563,
};

/// The name of an action code: "LuSVNNotifyAction" and the word of the code
/// ("LuSVNNotifyActionUpdateAdd" for 9, "LuSVNNotifyActionUnknown" for -1);
/// "<unknown> (<code>)" for a code without a name.
TESSERA_EXPORT std::string LuSVNStringFromNotificationAction(std::int32_t action);

class TESSERA_EXPORT LuSVNNotification final : public LuSVNCoding {
public:
    /// Nothing set: action -1 (unknown), node kind 3 (unknown), revision
    /// LuSVNInvalidRevision, content, property and lock states 1 (unknown).
    LuSVNNotification() = default;
    explicit LuSVNNotification(std::int32_t action) : action_(action) {}
    static LuSVNNotification notification() { return LuSVNNotification(); }
    static LuSVNNotification notificationWithAction(std::int32_t action) { return LuSVNNotification(action); }

    const std::optional<std::string>& path() const { return path_; }
    void setPath(std::optional<std::string> path) { path_ = std::move(path); }
    const std::optional<std::string>& pathPrefix() const { return pathPrefix_; }
    void setPathPrefix(std::optional<std::string> pathPrefix) { pathPrefix_ = std::move(pathPrefix); }
    const LuSVNURL::URLPath& URL() const { return url_; }
    void setURL(LuSVNURL::URLPath url) { url_ = std::move(url); }
    const std::optional<std::string>& alternatePath() const { return alternatePath_; }
    void setAlternatePath(std::optional<std::string> alternatePath) { alternatePath_ = std::move(alternatePath); }
    /// A LuSVNNotifyAction, or any other code.
    std::int32_t action() const { return action_; }
    void setAction(std::int32_t action) { action_ = action; }
    /// Subversion's node kind: 0 none, 1 file, 2 directory, 3 unknown.
    std::int32_t nodeKind() const { return nodeKind_; }
    void setNodeKind(std::int32_t nodeKind) { nodeKind_ = nodeKind; }
    const std::shared_ptr<const LuSVNLock>& lock() const { return lock_; }
    void setLock(std::shared_ptr<const LuSVNLock> lock) { lock_ = std::move(lock); }
    const std::shared_ptr<const LuSVNException>& error() const { return error_; }
    void setError(std::shared_ptr<const LuSVNException> error) { error_ = std::move(error); }
    std::int32_t revision() const { return revision_; }
    void setRevision(std::int32_t revision) { revision_ = revision; }
    /// Subversion's notify states: 0 inapplicable, 1 unknown, 2 unchanged,
    /// 3 missing, 4 obstructed, 5 changed, 6 merged, 7 conflicted.
    std::int32_t contentState() const { return contentState_; }
    void setContentState(std::int32_t contentState) { contentState_ = contentState; }
    std::int32_t propertyState() const { return propertyState_; }
    void setPropertyState(std::int32_t propertyState) { propertyState_ = propertyState; }
    /// Subversion's lock states: 0 inapplicable, 1 unknown, 2 unchanged,
    /// 3 locked, 4 unlocked.
    std::int32_t lockState() const { return lockState_; }
    void setLockState(std::int32_t lockState) { lockState_ = lockState; }
    const std::optional<std::string>& propertyName() const { return propertyName_; }
    void setPropertyName(std::optional<std::string> propertyName) { propertyName_ = std::move(propertyName); }
    /// The revisions a merge notification is about (backends 1.5 and
    /// later), as Subversion gives them: the first bound exclusive, "r5
    /// through r7" is { 4 - 7 }, a reverse merge runs backwards. Not
    /// archived and not in the description.
    const std::shared_ptr<const LuSVNRevisionRange>& mergeRange() const { return mergeRange_; }
    /// See mergeRange().
    void setMergeRange(std::shared_ptr<const LuSVNRevisionRange> mergeRange) { mergeRange_ = std::move(mergeRange); }

    /// "{ <LuSVNNotification: 0x...>, action: <name>, contentState: <n>,
    /// error: <reason>, lock: <description>, lockState: <n>, nodeKind: <n>,
    /// path: <path>, alternatePath: <path>, propertyState: <n>, revision: <n> }",
    /// with "(null)" for what is absent.
    std::string description() const;

    /// Reads the keys above. The error comes back with its reason and user
    /// info, of the class it was archived as when that is the class its
    /// status maps to (LuSVNException::classForAPRStatus), else as
    /// LuSVNException.
    static std::shared_ptr<LuSVNNotification> initWithCoder(LuSVNCoder& coder);
    std::string archiveClassName() const override;
    void encodeWithCoder(LuSVNCoder& coder) const override;

private:
    std::optional<std::string> path_;
    std::optional<std::string> pathPrefix_;
    LuSVNURL::URLPath url_;
    std::optional<std::string> alternatePath_;
    std::int32_t action_ = LuSVNNotifyActionUnknown;
    std::int32_t nodeKind_ = 3;
    std::shared_ptr<const LuSVNLock> lock_;
    std::shared_ptr<const LuSVNException> error_;
    std::int32_t revision_ = LuSVNInvalidRevision;
    std::int32_t contentState_ = 1;
    std::int32_t propertyState_ = 1;
    std::int32_t lockState_ = 1;
    std::optional<std::string> propertyName_;
    std::shared_ptr<const LuSVNRevisionRange> mergeRange_;
};
