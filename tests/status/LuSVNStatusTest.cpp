// The status record and conflicts as values: kinds, derived answers, copies
// and archives.
#include <tessera/LuSVNKeyedArchiver.h>
#include <tessera/LuSVNStatus.h>

#include <gtest/gtest.h>

#include "LuSVNStatus+ClientStatus.h"
#include "NonKeyedCoder.h"

namespace {

using Date = LuSVNStatus::Date;

Date at(std::int64_t microseconds)
{
    return Date(std::chrono::microseconds(microseconds));
}

TEST(LuSVNStatus, KindsAndSchedulesFromSubversion)
{
    const std::pair<int, LuSVNStatusKind> kinds[] = {
        {svn_wc_status_none, LuSVNStatusNone},           {svn_wc_status_unversioned, LuSVNStatusUnversioned},
        {svn_wc_status_normal, LuSVNStatusNormal},       {svn_wc_status_added, LuSVNStatusAdded},
        {svn_wc_status_missing, LuSVNStatusMissing},     {svn_wc_status_deleted, LuSVNStatusDeleted},
        {svn_wc_status_replaced, LuSVNStatusReplaced},   {svn_wc_status_modified, LuSVNStatusModified},
        {svn_wc_status_merged, LuSVNStatusMerged},       {svn_wc_status_conflicted, LuSVNStatusConflicted},
        {svn_wc_status_ignored, LuSVNStatusIgnored},     {svn_wc_status_obstructed, LuSVNStatusObstructed},
        {svn_wc_status_external, LuSVNStatusExternal},   {svn_wc_status_incomplete, LuSVNStatusIncomplete},
        {0, LuSVNStatusUnknown},                         {15, LuSVNStatusUnknown},
        {-1, LuSVNStatusUnknown},
    };
    for (const auto& [svnKind, kind] : kinds)
        EXPECT_EQ(LuSVNStatus::statusKindFromSVNStatusKind(svnKind), kind) << svnKind;

    const std::pair<int, LuSVNSchedule> schedules[] = {
        {0, LuSVNScheduleNormal}, {1, LuSVNScheduleAdd},     {2, LuSVNScheduleDelete},
        {3, LuSVNScheduleReplace}, {4, LuSVNScheduleInvalid}, {-1, LuSVNScheduleInvalid},
    };
    for (const auto& [svnSchedule, schedule] : schedules)
        EXPECT_EQ(LuSVNStatus::scheduleFromSVNSchedule(svnSchedule), schedule) << svnSchedule;
}

TEST(LuSVNStatus, RevisionFromConflictFileName)
{
    const std::pair<const char*, std::int32_t> cases[] = {
        {"a.c.r1234", 1234}, {"/wc/dir/a.c.r7", 7}, {"a.c.mine", LuSVNInvalidRevision},
        {"a.c.r", LuSVNInvalidRevision}, {"README", LuSVNInvalidRevision}, {"/wc/d.r5/file", LuSVNInvalidRevision},
        {"a.rx", 0}, {"a.r12x", 12}, {"a.R12", LuSVNInvalidRevision},
    };
    for (const auto& [name, revision] : cases)
        EXPECT_EQ(LuSVNStatus::revisionFromFilename(name), revision) << name;

    auto status = LuSVNStatus::status();
    EXPECT_EQ(status->conflictOldRevision(), LuSVNInvalidRevision);
    status->setConflictOldVersion("a.c.r3");
    status->setConflictNewVersion("a.c.r9");
    EXPECT_EQ(status->conflictOldRevision(), 3);
    EXPECT_EQ(status->conflictNewRevision(), 9);
}

TEST(LuSVNStatus, AbnormalAndVersioned)
{
    struct Case {
        LuSVNStatusKind text, property;
        bool abnormal, versioned;
    };
    const Case cases[] = {
        {LuSVNStatusUnversioned, LuSVNStatusNone, true, false},
        {LuSVNStatusIgnored, LuSVNStatusNone, false, false},
        {LuSVNStatusExternal, LuSVNStatusNone, false, true},
        {LuSVNStatusNormal, LuSVNStatusNormal, false, true},
        {LuSVNStatusNormal, LuSVNStatusModified, true, true},
        {LuSVNStatusMissing, LuSVNStatusNone, true, true},
        {LuSVNStatusUnknown, LuSVNStatusNone, true, true},
    };
    for (const Case& c : cases) {
        auto status = LuSVNStatus::status();
        status->setTextStatus(c.text);
        status->setPropertyStatus(c.property);
        EXPECT_EQ(status->isAbnormal(), c.abnormal) << c.text << "/" << c.property;
        EXPECT_EQ(status->isVersioned(), c.versioned) << c.text;
    }
    EXPECT_FALSE(LuSVNStatus::ignored()->isVersioned());
    EXPECT_TRUE(LuSVNStatus::unversioned()->isAbnormal());
    EXPECT_FALSE(LuSVNStatus::normal()->isAbnormal());
    EXPECT_TRUE(LuSVNStatusIsAbnormal(LuSVNStatusNormal | LuSVNStatusAdded));
    EXPECT_FALSE(LuSVNStatusIsAbnormal(LuSVNStatusNormal | LuSVNStatusIgnored | LuSVNStatusExternal));
    EXPECT_EQ(LuSVNStatusFromNumber(std::nullopt), LuSVNStatusNone);
    EXPECT_EQ(LuSVNStatusFromNumber(LuSVNStatusAdded | LuSVNStatusModified), 68u);
}

TEST(LuSVNStatus, UnsetFieldsAreInvalidNotZero)
{
    const auto status = LuSVNStatus::status();
    EXPECT_EQ(status->lastChangedRevision(), LuSVNInvalidRevision);
    EXPECT_EQ(status->outOfDateLastCommitRevision(), LuSVNInvalidRevision);
    EXPECT_EQ(status->copyFromRevision(), LuSVNInvalidRevision);
    EXPECT_EQ(status->depth(), LuSVNDepthUnknown);
    EXPECT_EQ(LuSVNConflictVersion::conflictVersion()->pegRevision(), LuSVNInvalidRevision);
}

std::shared_ptr<LuSVNConflict> treeConflict()
{
    auto left = LuSVNConflictVersion::conflictVersion();
    left->setRepositoryURL(LuSVNURL::URLWithString("file:///srv/repo"));
    left->setPegRevision(3);
    left->setRepositoryPath("trunk/a.c");
    left->setNodeKind(1);
    auto right = left->copy();
    right->setPegRevision(4);
    right->setNodeKind(0);
    auto conflict = LuSVNConflict::conflict();
    conflict->setPath(LuSVNPath::pathWithString("/wc/a.c"));
    conflict->setNodeKind(1);
    conflict->setKind(2);
    conflict->setPropertyName("colour");
    conflict->setMIMEType("image/png");
    conflict->setAction(2);
    conflict->setReason(1);
    conflict->setBaseFilePath(LuSVNPath::pathWithString("/wc/a.c.r3"));
    conflict->setTheirFilePath(LuSVNPath::pathWithString("/wc/a.c.r4"));
    conflict->setMyFilePath(LuSVNPath::pathWithString("/wc/a.c.mine"));
    conflict->setMergedFilePath(LuSVNPath::pathWithString("/wc/a.c"));
    conflict->setOperation(3);
    conflict->setLeftVersion(left);
    conflict->setRightVersion(right);
    conflict->setBinary(true);
    return conflict;
}

TEST(LuSVNConflict, ArchiveKeepsVersionsAndBinaryFlag)
{
    const auto original = treeConflict();
    const auto restored =
        LuSVNKeyedUnarchiver::unarchiveObjectOfClass<LuSVNConflict>(LuSVNKeyedArchiver::archivedDataWithRootObject(*original));
    EXPECT_EQ(restored->path()->string(), "/wc/a.c");
    EXPECT_EQ(restored->nodeKind(), 1);
    EXPECT_EQ(restored->kind(), 2);
    EXPECT_EQ(restored->propertyName(), "colour");
    EXPECT_EQ(restored->MIMEType(), "image/png");
    EXPECT_EQ(restored->action(), 2);
    EXPECT_EQ(restored->reason(), 1);
    EXPECT_EQ(restored->baseFilePath()->string(), "/wc/a.c.r3");
    EXPECT_EQ(restored->theirFilePath()->string(), "/wc/a.c.r4");
    EXPECT_EQ(restored->myFilePath()->string(), "/wc/a.c.mine");
    EXPECT_EQ(restored->mergedFilePath()->string(), "/wc/a.c");
    EXPECT_EQ(restored->operation(), 3);
    EXPECT_TRUE(restored->isBinary());
    for (const auto& [version, revision, kind] :
         {std::tuple{restored->leftVersion(), 3, 1}, std::tuple{restored->rightVersion(), 4, 0}}) {
        ASSERT_NE(version, nullptr);
        const LuSVNConflictVersion& restored = *version;
        EXPECT_EQ(typeid(restored), typeid(LuSVNConflictVersion));
        EXPECT_EQ(version->repositoryURL()->string(), "file:///srv/repo");
        EXPECT_EQ(version->repositoryPath(), "trunk/a.c");
        EXPECT_EQ(version->pegRevision(), revision);
        EXPECT_EQ(version->nodeKind(), kind);
    }

    const auto copy = original->copy();
    EXPECT_TRUE(copy->isBinary());
    EXPECT_EQ(copy->leftVersion(), original->leftVersion());
    copy->setBinary(false);
    EXPECT_TRUE(original->isBinary());
}

TEST(LuSVNStatus, ArchiveAndCopyKeepEveryField)
{
    auto status = LuSVNStatus::status();
    status->setTextStatus(LuSVNStatusModified);
    status->setPropertyStatus(LuSVNStatusConflicted);
    status->setRepositoryTextStatus(LuSVNStatusAdded);
    status->setRepositoryPropertyStatus(LuSVNStatusNormal);
    status->setPristineTextStatus(LuSVNStatusMissing);
    status->setPristinePropertyStatus(LuSVNStatusIgnored);
    status->setLastChangedRevision(12);
    status->setLastChangedDate(at(1'000'001));
    status->setLastChangedAuthor("alice");
    // Every other flag, so that no two flags can be confused.
    status->setLocked(true);
    status->setSwitched(true);
    status->setAbsent(true);
    status->setHasPropertyModifications(true);
    status->setOutOfDateLastCommitRevision(14);
    status->setOutOfDateLastCommitDate(at(0));
    status->setOutOfDateLastCommitAuthor("bob");
    status->setRepositoryRootURL(LuSVNURL::URLWithString("file:///srv/repo"));
    status->setRepositoryUUID("a2d0b0c4-0000-4000-8000-000000000000");
    status->setSchedule(LuSVNScheduleReplace);
    status->setCopyFromURL(LuSVNURL::URLWithString("file:///srv/repo/trunk/a.c"));
    status->setCopyFromRevision(9);
    status->setConflictOldVersion("a.c.r3");
    status->setConflictNewVersion("a.c.r4");
    status->setConflictWorkingVersion("a.c.mine");
    status->setPropertyRejectFilePath("a.c.prej");
    status->setUpToDateTextDate(at(2'000'000));
    status->setUpToDatePropertyDate(at(3'000'000));
    status->setChecksum("d41d8cd98f00b204e9800998ecf8427e");
    status->setRepositoryLock(LuSVNLock::lockWithPath(LuSVNPath::pathWithString("/trunk/a.c"), "opaquelocktoken:1",
                                                      "carol", std::nullopt, at(4'000'000), std::nullopt));
    status->setDepth(LuSVNDepthFiles);
    status->setTreeConflict(treeConflict());
    status->setWorkingRevision(13);
    status->setChangelist("review");
    status->setMovedFromPath("/wc/old name.c");
    status->setMovedToPath("/wc/sub/new.c");

    const auto restored =
        LuSVNKeyedUnarchiver::unarchiveObjectOfClass<LuSVNStatus>(LuSVNKeyedArchiver::archivedDataWithRootObject(*status));
    for (const auto& [copy, depth] :
         {std::pair{restored, LuSVNDepthUnknown}, std::pair{status->copy(), LuSVNDepthFiles}}) {
        EXPECT_EQ(copy->textStatus(), LuSVNStatusModified);
        EXPECT_EQ(copy->propertyStatus(), LuSVNStatusConflicted);
        EXPECT_EQ(copy->repositoryTextStatus(), LuSVNStatusAdded);
        EXPECT_EQ(copy->repositoryPropertyStatus(), LuSVNStatusNormal);
        EXPECT_EQ(copy->pristineTextStatus(), LuSVNStatusMissing);
        EXPECT_EQ(copy->pristinePropertyStatus(), LuSVNStatusIgnored);
        EXPECT_EQ(copy->lastChangedRevision(), 12);
        EXPECT_EQ(copy->workingRevision(), 13);
        EXPECT_EQ(copy->changelist(), "review");
        EXPECT_EQ(copy->movedFromPath(), "/wc/old name.c");
        EXPECT_EQ(copy->movedToPath(), "/wc/sub/new.c");
        EXPECT_EQ(copy->lastChangedDate(), at(1'000'001));
        EXPECT_EQ(copy->lastChangedAuthor(), "alice");
        EXPECT_TRUE(copy->isLocked());
        EXPECT_FALSE(copy->isCopied());
        EXPECT_TRUE(copy->isSwitched());
        EXPECT_FALSE(copy->isDeleted());
        EXPECT_TRUE(copy->isAbsent());
        EXPECT_FALSE(copy->hasProperties());
        EXPECT_TRUE(copy->hasPropertyModifications());
        EXPECT_FALSE(copy->isFileExternal());
        EXPECT_EQ(copy->outOfDateLastCommitRevision(), 14);
        EXPECT_EQ(copy->outOfDateLastCommitDate(), at(0));  // the epoch is a date, not none
        EXPECT_EQ(copy->outOfDateLastCommitAuthor(), "bob");
        EXPECT_EQ(copy->repositoryRootURL()->string(), "file:///srv/repo");
        EXPECT_EQ(copy->repositoryUUID(), "a2d0b0c4-0000-4000-8000-000000000000");
        EXPECT_EQ(copy->schedule(), LuSVNScheduleReplace);
        EXPECT_EQ(copy->copyFromURL()->string(), "file:///srv/repo/trunk/a.c");
        EXPECT_EQ(copy->copyFromRevision(), 9);
        EXPECT_EQ(copy->conflictOldVersion(), "a.c.r3");
        EXPECT_EQ(copy->conflictNewVersion(), "a.c.r4");
        EXPECT_EQ(copy->conflictWorkingVersion(), "a.c.mine");
        EXPECT_EQ(copy->propertyRejectFilePath(), "a.c.prej");
        EXPECT_EQ(copy->upToDateTextDate(), at(2'000'000));
        EXPECT_EQ(copy->upToDatePropertyDate(), at(3'000'000));
        EXPECT_EQ(copy->checksum(), "d41d8cd98f00b204e9800998ecf8427e");
        EXPECT_EQ(copy->repositoryLock()->token(), "opaquelocktoken:1");
        EXPECT_EQ(copy->depth(), depth);
        EXPECT_EQ(copy->treeConflict()->rightVersion()->pegRevision(), 4);
    }

    // Flags of the other half, and no dates at all.
    auto other = LuSVNStatus::status();
    other->setCopied(true);
    other->setDeleted(true);
    other->setHasProperties(true);
    other->setFileExternal(true);
    const auto otherRestored =
        LuSVNKeyedUnarchiver::unarchiveObjectOfClass<LuSVNStatus>(LuSVNKeyedArchiver::archivedDataWithRootObject(*other));
    EXPECT_FALSE(otherRestored->isLocked());
    EXPECT_TRUE(otherRestored->isCopied());
    EXPECT_FALSE(otherRestored->isSwitched());
    EXPECT_TRUE(otherRestored->isDeleted());
    EXPECT_FALSE(otherRestored->isAbsent());
    EXPECT_TRUE(otherRestored->hasProperties());
    EXPECT_FALSE(otherRestored->hasPropertyModifications());
    EXPECT_TRUE(otherRestored->isFileExternal());
    EXPECT_FALSE(otherRestored->lastChangedDate().has_value());
    EXPECT_FALSE(otherRestored->movedFromPath().has_value());
    EXPECT_FALSE(otherRestored->movedToPath().has_value());
    EXPECT_EQ(otherRestored->lastChangedRevision(), LuSVNInvalidRevision);

    // A copy is a record of its own, the fields that are kept apart included.
    const auto copy = status->copy();
    copy->setTextStatus(LuSVNStatusNormal);
    copy->setConflictOldVersion("other.r1");
    copy->setChangelist(std::nullopt);
    EXPECT_EQ(status->textStatus(), LuSVNStatusModified);
    EXPECT_EQ(copy->conflictNewVersion(), status->conflictNewVersion());
    EXPECT_NE(status->conflictOldVersion(), copy->conflictOldVersion());
    EXPECT_NE(status->changelist(), copy->changelist());
}

TEST(LuSVNStatus, ArchivingNeedsKeyedCoders)
{
    tessera_status_test::NonKeyedCoder coder;
    const LuSVNStatus status;
    const LuSVNConflict conflict;
    const LuSVNConflictVersion version;
    for (const LuSVNCoding* object : std::initializer_list<const LuSVNCoding*>{&status, &conflict, &version})
        tessera_status_test::expectInvalidArgument([&] { object->encodeWithCoder(coder); }, "Keyed archiver required");
    tessera_status_test::expectInvalidArgument([&] { LuSVNStatus::initWithCoder(coder); }, "Keyed unarchiver required");
    tessera_status_test::expectInvalidArgument([&] { LuSVNConflict::initWithCoder(coder); },
                                               "Keyed unarchiver required");
    tessera_status_test::expectInvalidArgument([&] { LuSVNConflictVersion::initWithCoder(coder); },
                                               "Keyed unarchiver required");
}

// The kinds of a 1.7 record in the older form, row by row.
TEST(LuSVNClientStatus, ConvertsTheKinds)
{
    struct Case {
        svn_wc_status_kind node, text, prop, reposNode, reposText, reposProp;
        svn_wc_status_kind wcText, wcProp, wcReposText, wcReposProp, pristineText, pristineProp;
    };
    using K = svn_wc_status_kind;
    const K none = svn_wc_status_none, normal = svn_wc_status_normal, modified = svn_wc_status_modified,
            added = svn_wc_status_added, conflicted = svn_wc_status_conflicted, deleted = svn_wc_status_deleted,
            missing = svn_wc_status_missing;
    const Case cases[] = {
        {normal, normal, none, none, none, none, normal, none, none, none, normal, none},
        {modified, modified, normal, none, none, none, modified, normal, none, none, modified, normal},
        {modified, normal, modified, none, none, none, normal, modified, none, none, normal, modified},
        {conflicted, normal, normal, none, none, none, normal, normal, none, none, normal, normal},
        {conflicted, conflicted, conflicted, none, none, none, conflicted, conflicted, none, none, none, none},
        {added, normal, modified, none, none, none, added, none, none, none, normal, none},
        {deleted, normal, normal, modified, modified, none, deleted, normal, modified, none, normal, none},
        {missing, missing, none, added, normal, normal, missing, none, added, normal, none, none},
    };
    for (const Case& c : cases) {
        svn_client_status_t client{};
        client.node_status = c.node;
        client.text_status = c.text;
        client.prop_status = c.prop;
        client.repos_node_status = c.reposNode;
        client.repos_text_status = c.reposText;
        client.repos_prop_status = c.reposProp;
        svn_wc_status2_t record{};
        LuSVNClientStatusConvertFields(&client, &record);
        const std::string row = std::to_string(&c - cases);
        EXPECT_EQ(record.text_status, c.wcText) << row;
        EXPECT_EQ(record.prop_status, c.wcProp) << row;
        EXPECT_EQ(record.repos_text_status, c.wcReposText) << row;
        EXPECT_EQ(record.repos_prop_status, c.wcReposProp) << row;
        EXPECT_EQ(record.pristine_text_status, c.pristineText) << row;
        EXPECT_EQ(record.pristine_prop_status, c.pristineProp) << row;
    }
}

}  // namespace
