// Notifications as values (names, description, archives) and the handler
// chain with its filters.
#include <tessera/LuSVNKeyedArchiver.h>
#include <tessera/LuSVNNotificationFilter.h>
#include <tessera/LuSVNPlatformExceptions.h>

#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "LuSVNContextTestSupport.h"

namespace {

using context_test::ContextTest;
using context_test::Recorder;

TEST(LuSVNNotification, NamesFollowSubversionsActionsAndTheLibrarysOwn)
{
    // Subversion's constants on the left: a word out of place shifts those
    // after it, so a sample across each table shows it.
    const std::vector<std::pair<std::int32_t, std::string>> rows = {
        {-1, "Unknown"},
        {svn_wc_notify_add, "Add"},
        {svn_wc_notify_update_delete, "UpdateDelete"},
        {svn_wc_notify_commit_postfix_txdelta, "CommitPostfixTXDelta"},
        {svn_wc_notify_changelist_moved, "ChangeListMoved"},
        {svn_wc_notify_property_deleted_nonexistent, "PropertyDeletedNonExistent"},
        {svn_wc_notify_update_skip_access_denied, "UpdateSkipAccessDenied"},
        {svn_wc_notify_merge_elide_info, "MergeElideInfo"},
        {svn_wc_notify_url_redirect, "URLRedirect"},
        {svn_wc_notify_failed_forbidden_by_server, "FailedForbiddenByServer"},
        {svn_wc_notify_skip_conflicted, "SkipConflicted"},
        {65536, "LegacyUpdateStarted"},
        {65541, "CommitFailed"},
        {65551, "InternalExportStarted"},
        {65555, "RelocateStarted"},
        {65560, "SwitchFailed"},
        {65561, "MergeStarted"},
        {65563, "MergeFailed"},
    };
    for (const auto& [action, word] : rows)
        EXPECT_EQ(LuSVNStringFromNotificationAction(action), "LuSVNNotifyAction" + word) << action;

    // Later releases' actions, the unused gap and everything around the tables.
    for (const std::int32_t action : {svn_wc_notify_skip_conflicted + 1, 65552, 65553, 65554, 65564, -2, 65535})
        EXPECT_EQ(LuSVNStringFromNotificationAction(action), "<unknown> (" + std::to_string(action) + ")");
}

TEST(LuSVNNotification, NewNotificationDescribesItsDefaults)
{
    const std::string description = LuSVNNotification::notification().description();
    EXPECT_EQ(description.substr(description.find(','), std::string::npos),
              ", action: LuSVNNotifyActionUnknown, contentState: 1, error: (null), lock: (null), lockState: 1, "
              "nodeKind: 3, path: (null), alternatePath: (null), propertyState: 1, revision: -1 }");
    EXPECT_EQ(description.rfind("{ <LuSVNNotification: 0x", 0), 0u) << description;
    EXPECT_EQ(LuSVNNotification::notificationWithAction(LuSVNNotifyActionLocked).action(), 21);
}

TEST(LuSVNNotification, ArchiveKeepsEveryFieldInTheKeysOrder)
{
    const auto created = std::chrono::system_clock::time_point(std::chrono::microseconds(1'600'000'000'123'456));
    LuSVNNotification notification(LuSVNNotifyActionLocked);
    notification.setPath("/wc/a.txt");
    notification.setAlternatePath("/wc/b.txt");
    notification.setNodeKind(1);
    notification.setLock(LuSVNLock::lockWithPath(LuSVNPath::pathWithString("/trunk/a.txt"), "opaquelocktoken:1",
                                                 "alice", "mine", created, std::nullopt));
    notification.setError(LuSVNException::exceptionWithReason("gone", 160013));
    notification.setRevision(7);
    notification.setContentState(5);
    notification.setPropertyState(6);
    notification.setLockState(3);
    notification.setPathPrefix("/wc");
    notification.setURL(LuSVNURL::URLWithString("file:///repository/trunk/a.txt"));
    notification.setPropertyName("svn:needs-lock");

    const std::string archive = LuSVNKeyedArchiver::archivedDataWithRootObject(notification);
    std::size_t position = 0;
    for (const char* key : {"\"path\"", "\"alternatePath\"", "\"action\"", "\"nodeKind\"", "\"lock\"", "\"error\"",
                            "\"revision\"", "\"contentState\"", "\"propertyState\"", "\"lockState\"",
                            "\"pathPrefix\"", "\"url\"", "\"propertyName\""}) {
        const std::size_t found = archive.find(key, position);
        ASSERT_NE(found, std::string::npos) << key << " in order in " << archive;
        position = found;
    }

    // Every field comes back: the copy archives to the same text.
    const auto copy = LuSVNKeyedUnarchiver::unarchiveObjectOfClass<LuSVNNotification>(archive);
    EXPECT_EQ(LuSVNKeyedArchiver::archivedDataWithRootObject(*copy), archive);
    EXPECT_EQ(copy->lock()->creationDate(), created);
    EXPECT_NE(dynamic_cast<const LuSVNNoSuchEntryException*>(copy->error().get()), nullptr);
    EXPECT_EQ(copy->error()->status(), 160013);

    // Nothing set comes back as nothing set.
    const std::string empty = LuSVNKeyedArchiver::archivedDataWithRootObject(LuSVNNotification());
    EXPECT_EQ(LuSVNKeyedArchiver::archivedDataWithRootObject(
                  *LuSVNKeyedUnarchiver::unarchiveObjectOfClass<LuSVNNotification>(empty)),
              empty);
}

TEST_F(ContextTest, FiltersPassWhatTheirPredicateAccepts)
{
    auto end = std::make_shared<Recorder>();
    auto filter = LuSVNNotificationFilter::filterWithPredicate(
        [](const LuSVNNotification& notification) { return notification.nodeKind() == 1; });
    filter->setNextHandler(end);
    auto head = std::make_shared<Recorder>(filter);
    context->setNotificationHandler(head);

    LuSVNNotification file(LuSVNNotifyActionUpdateAdd);
    file.setNodeKind(1);
    LuSVNNotification directory(LuSVNNotifyActionUpdateDelete);
    directory.setNodeKind(2);
    context->notify(file);
    context->notify(directory);
    EXPECT_EQ(head->notifications.size(), 2u);
    ASSERT_EQ(end->notifications.size(), 1u);
    EXPECT_EQ(end->notifications[0].action(), LuSVNNotifyActionUpdateAdd);

    // Without predicate everything passes; the base class passes nothing on.
    filter->setPredicate(nullptr);
    context->notify(directory);
    EXPECT_EQ(end->notifications.size(), 2u);
    auto plain = std::make_shared<LuSVNNotificationHandler>(end);
    plain->contextNotify(*context, file);
    EXPECT_EQ(end->notifications.size(), 2u);

    tessera_test::expectParameterAssertion([] { LuSVNNotificationFilter::filterWithPredicate(nullptr); },
                                           "predicate != nil");
}

TEST(LuSVNNotificationHandler, HandlerOfClassSearchesTheChainFromTheReceiver)
{
    auto filter = LuSVNNotificationFilter::filter();
    auto middle = std::make_shared<LuSVNNotificationHandler>(filter);
    auto head = std::make_shared<Recorder>(middle);

    EXPECT_EQ(head->handlerOfClass<LuSVNNotificationFilter>(), filter);
    EXPECT_EQ(head->handlerOfClass<LuSVNNotificationHandler>(), head);  // a subclass answers for its base
    EXPECT_EQ(middle->handlerOfClass<Recorder>(), nullptr);
    EXPECT_EQ(filter->handlerOfClass<Recorder>(), nullptr);
}

// A copy is of the handler's own class and shares the rest of the chain; a
// handler whose class cannot copy itself is refused rather than copied as a
// plain handler, which would drop every notification.
TEST_F(ContextTest, CopiesOfHandlersKeepTheirClassAndShareTheChain)
{
    auto end = std::make_shared<Recorder>();
    auto filter = LuSVNNotificationFilter::filterWithPredicate(
        [](const LuSVNNotification& notification) { return notification.nodeKind() == 1; });
    filter->setNextHandler(end);
    const auto filterCopy = filter->copy();
    ASSERT_NE(std::dynamic_pointer_cast<LuSVNNotificationFilter>(filterCopy), nullptr);
    EXPECT_EQ(filterCopy->nextHandler(), end);
    LuSVNNotification file(LuSVNNotifyActionUpdateAdd);
    file.setNodeKind(1);
    LuSVNNotification directory(LuSVNNotifyActionUpdateAdd);
    directory.setNodeKind(2);
    filterCopy->contextNotify(*context, directory);
    filterCopy->contextNotify(*context, file);
    EXPECT_EQ(end->notifications.size(), 1u);
    EXPECT_EQ(std::make_shared<LuSVNNotificationHandler>(end)->copy()->nextHandler(), end);

    auto head = std::make_shared<Recorder>(filter);  // does not override copy()
    try {
        head->copy();
        ADD_FAILURE() << "copied";
    } catch (const LuSVNInvalidArgumentException& e) {
        EXPECT_STREQ(e.what(), "context_test::Recorder does not override copy()");
    }
}

}  // namespace
