// Locking and unlocking on every backend, svn reading the repository's locks;
// the lock that controls a node.
#include <tessera/LuSVNLockOptions.h>
#include <tessera/LuSVNStatusOptions.h>
#include <tessera/LuSVNUnlockOptions.h>

#include <gtest/gtest.h>

#include <filesystem>

#include "OperationsTestSupport.h"

using namespace tessera_operations_test;
using tessera_test::svn;

namespace {

// A line of svn info ("Lock Owner"), "" when svn shows none.
std::string infoField(const std::string& target, const std::string& field)
{
    const auto result = svn({"info", target});
    const std::string start = field + ": ";
    for (auto line = result.output.find(start); line != std::string::npos; line = result.output.find(start, line + 1))
        if (line == 0 || result.output[line - 1] == '\n')
            return result.output.substr(line + start.size(), result.output.find('\n', line) - line - start.size());
    return "";
}

// Repository with a.txt and b.txt at r1, checked out into "wc"; "bob" is
// the other user, working through svn.
class Locking : public ::testing::TestWithParam<const char*> {
protected:
    void SetUp() override
    {
        repositoryURL = tessera_test::makeRepository(directory / "repo");
        std::filesystem::create_directories(directory / "tree");
        tessera_test::writeFile(directory / "tree/a.txt", "a\n");
        tessera_test::writeFile(directory / "tree/b.txt", "b\n");
        ASSERT_EQ(svn({"import", "-q", "-m", "tree", directory / "tree", repositoryURL}).status, 0);
        wc = directory / "wc";
        tessera_test::checkout(repositoryURL, wc);
        context = contextFor(GetParam());
        context->setNotificationHandler(recorder);
    }

    LuSVNNode::Path file(const std::string& name) const { return local(wc + "/" + name); }

    static std::string owner(const std::string& target) { return infoField(target, "Lock Owner"); }

    static LuSVNLockOptions stealing(bool steal)
    {
        LuSVNLockOptions options;
        options.setStealLocks(steal);
        return options;
    }

    static LuSVNUnlockOptions breaking(bool breakLocks)
    {
        LuSVNUnlockOptions options;
        options.setBreakLocks(breakLocks);
        return options;
    }

    tessera_test::TemporaryDirectory directory;
    std::string repositoryURL;
    std::string wc;
    std::shared_ptr<LuSVNContext> context;
    std::shared_ptr<Recorder> recorder = std::make_shared<Recorder>();
};

TEST_P(Locking, LocksAndUnlocksPathsAndURLsAsSvnSeesThem)
{
    const auto locks = LuSVNNode::lockNodes({file("a.txt")}, "editing", stealing(false), context);
    ASSERT_EQ(locks.size(), 1u);
    EXPECT_EQ(locks[0]->path()->string(), "/a.txt");
    EXPECT_EQ(locks[0]->comment(), "editing");
    EXPECT_EQ(locks[0]->token(), infoField(wc + "/a.txt", "Lock Token"));
    EXPECT_EQ(locks[0]->owner(), owner(wc + "/a.txt"));
    EXPECT_EQ(svnStatus(wc), "     K  " + wc + "/a.txt\n");
    ASSERT_EQ(recorder->count(LuSVNNotifyActionLocked), 1u);
    EXPECT_TRUE(recorder->notifications.back().lock()->isEqualToLock(locks[0]));

    const auto byURL = LuSVNNode::lockNodes({url(repositoryURL + "/b.txt")}, std::nullopt, stealing(false), context);
    ASSERT_EQ(byURL.size(), 1u);
    EXPECT_EQ(byURL[0]->comment(), std::nullopt);
    EXPECT_EQ(byURL[0]->token(), infoField(repositoryURL + "/b.txt", "Lock Token"));
    // A lock taken through a URL belongs to no working copy.
    EXPECT_EQ(svnStatus(wc), "     K  " + wc + "/a.txt\n");

    LuSVNNode::unlockNodes({file("a.txt")}, breaking(false), context);
    LuSVNNode::unlockNodes({url(repositoryURL + "/b.txt")}, breaking(false), context);
    EXPECT_EQ(owner(wc + "/a.txt"), "");
    EXPECT_EQ(owner(repositoryURL + "/b.txt"), "");
    EXPECT_EQ(svnStatus(wc), "");
    EXPECT_EQ(recorder->count(LuSVNNotifyActionUnlocked), 2u);
}

TEST_P(Locking, FailedTargetsRaiseOneErrorWithEachCauseAfterTheOthersAreDone)
{
    ASSERT_EQ(svn({"lock", "-q", "--username", "bob", repositoryURL + "/a.txt"}).status, 0);
    try {
        LuSVNNode::lockNodes({file("a.txt"), file("b.txt")}, std::nullopt, stealing(false), context);
        FAIL() << "no exception";
    } catch (const LuSVNException& failure) {
        EXPECT_EQ(failure.status(), 200009);
        EXPECT_EQ(failure.reason(), "One or more locks could not be obtained");
        ASSERT_TRUE(failure.userInfo() && failure.userInfo()->cause);
        EXPECT_EQ(failure.userInfo()->cause->status, 160035);
        EXPECT_EQ(failure.userInfo()->cause->cause, nullptr);
    }
    // The other target was locked all the same, and each outcome was told.
    EXPECT_EQ(owner(repositoryURL + "/a.txt"), "bob");
    EXPECT_NE(owner(repositoryURL + "/b.txt"), "bob");
    EXPECT_NE(owner(repositoryURL + "/b.txt"), "");
    EXPECT_EQ(recorder->count(LuSVNNotifyActionFailedLock), 1u);
    EXPECT_EQ(recorder->count(LuSVNNotifyActionLocked), 1u);

    // Two failures: both errors.
    LuSVNNode::unlockNodes({file("b.txt")}, breaking(false), context);
    ASSERT_EQ(svn({"lock", "-q", "--username", "bob", repositoryURL + "/b.txt"}).status, 0);
    try {
        LuSVNNode::unlockNodes({url(repositoryURL + "/a.txt"), url(repositoryURL + "/b.txt")}, breaking(false),
                               context);
        FAIL() << "no exception";
    } catch (const LuSVNException& failure) {
        EXPECT_EQ(failure.reason(), "One or more locks could not be released");
        std::vector<std::int64_t> causes;
        for (auto cause = failure.userInfo()->cause; cause; cause = cause->cause)
            causes.push_back(cause->status.value_or(0));
        // Each target's own error: another user's lock.
        EXPECT_EQ(causes, (std::vector<std::int64_t>{160039, 160039}));
    }
    EXPECT_EQ(owner(repositoryURL + "/a.txt"), "bob");

    // Taken over, then broken.
    const auto stolen = LuSVNNode::lockNodes({file("a.txt")}, std::nullopt, stealing(true), context);
    ASSERT_EQ(stolen.size(), 1u);
    EXPECT_EQ(owner(repositoryURL + "/a.txt"), stolen[0]->owner());
    LuSVNNode::unlockNodes({url(repositoryURL + "/b.txt")}, breaking(true), context);
    EXPECT_EQ(owner(repositoryURL + "/b.txt"), "");
}

TEST_P(Locking, WholeCallFailuresAndBadCommentsLockNothing)
{
    // Subversion refuses the mixture before it locks anything.
    EXPECT_THROW(LuSVNNode::lockNodes({file("a.txt"), url(repositoryURL + "/b.txt")}, std::nullopt, stealing(false),
                                      context),
                 LuSVNException);
    try {
        LuSVNNode::lockNodes({file("a.txt")}, std::string("one\0two", 7), stealing(false), context);
        FAIL() << "no exception";
    } catch (const LuSVNInvalidArgumentException& failure) {
        EXPECT_EQ(failure.reason(), "Lock comment contains a zero byte");
    }
    EXPECT_EQ(owner(repositoryURL + "/a.txt"), "");
    EXPECT_EQ(owner(repositoryURL + "/b.txt"), "");
    tessera_test::expectParameterAssertion(
        [&] { LuSVNNode::lockNodes({nullptr}, std::nullopt, stealing(false), context); }, "path != nil");
    tessera_test::expectParameterAssertion(
        [&] { LuSVNNode::unlockNodes({file("a.txt")}, breaking(false), nullptr); }, "context != nil");
}

INSTANTIATE_TEST_SUITE_P(Backends, Locking, ::testing::ValuesIn(allBackends()),
                         [](const auto& info) { return backendTestName(info.param); });

// The node of a.txt in the working copy, as a status walk against the
// repository reports it.
std::shared_ptr<LuSVNNode> nodeAgainstRepository(const std::string& path, const std::shared_ptr<LuSVNContext>& context)
{
    LuSVNStatusOptions options;
    options.setCompareAgainstRepository(true);
    return LuSVNNode::nodeWithStatusAtPath(local(path), options, context);
}

TEST(ControllingLock, WhoHoldsTheLockDecides)
{
    const auto mine = LuSVNLock::lockWithPath(LuSVNPath::pathWithString("/a"), "mine", "me", std::nullopt,
                                              std::chrono::system_clock::now(), std::nullopt);
    const auto theirs = LuSVNLock::lockWithPath(LuSVNPath::pathWithString("/a"), "theirs", "them", std::nullopt,
                                                std::chrono::system_clock::now(), std::nullopt);
    struct Case {
        const char* name;
        bool withStatus;
        std::shared_ptr<const LuSVNLock> own, repository;
        bool asked;
        std::shared_ptr<const LuSVNLock> expected;
    };
    for (const Case& c : {Case{"no status", false, mine, nullptr, false, mine},
                          Case{"locked here", true, mine, mine, true, mine},
                          Case{"stolen", true, mine, theirs, true, theirs},
                          Case{"elsewhere", true, nullptr, theirs, true, theirs},
                          Case{"broken", true, mine, nullptr, true, mine},
                          Case{"locally", true, mine, nullptr, false, mine},
                          Case{"not locked", true, nullptr, nullptr, true, nullptr},
                          Case{"unknown", true, nullptr, nullptr, false, nullptr}}) {
        auto node = LuSVNNode::nodeWithPath(LuSVNPath::pathWithString("/wc/a"));
        node->setLock(c.own);
        if (c.withStatus) {
            auto status = LuSVNStatus::normal();
            status->setRepositoryLock(c.repository);
            status->setRepositoryTextStatus(c.asked ? LuSVNStatusNormal : LuSVNStatusNone);
            node->setStatus(status);
        }
        EXPECT_EQ(node->controllingLock(), c.expected) << c.name;
    }
}

TEST(ControllingLock, FollowsLocksStolenAndBrokenByAnotherUser)
{
    tessera_test::TemporaryDirectory directory;
    const std::string repositoryURL = tessera_test::makeRepository(directory / "repo");
    tessera_test::writeFile(directory / "a.txt", "a\n");
    ASSERT_EQ(svn({"import", "-q", "-m", "a", directory / "a.txt", repositoryURL + "/a.txt"}).status, 0);
    tessera_test::checkout(repositoryURL, directory / "wc");
    const std::string path = directory / "wc/a.txt";
    auto context = contextFor(nullptr);

    const auto locks = LuSVNNode::lockNodes({local(path)}, std::nullopt, LuSVNLockOptions(), context);
    ASSERT_EQ(locks.size(), 1u);
    auto node = nodeAgainstRepository(path, context);
    EXPECT_EQ(node->lockStatus(), LuSVNLockStatusLockedHere);
    EXPECT_TRUE(node->controllingLock()->isEqualToLock(locks[0]));

    ASSERT_EQ(svn({"lock", "-q", "--force", "--username", "bob", repositoryURL + "/a.txt"}).status, 0);
    node = nodeAgainstRepository(path, context);
    EXPECT_EQ(node->lockStatus(), LuSVNLockStatusStolen);
    EXPECT_EQ(node->controllingLock()->owner(), "bob");
    EXPECT_EQ(node->controllingLock()->token(), infoField(repositoryURL + "/a.txt", "Lock Token"));

    ASSERT_EQ(svn({"unlock", "-q", "--force", repositoryURL + "/a.txt"}).status, 0);
    node = nodeAgainstRepository(path, context);
    EXPECT_EQ(node->lockStatus(), LuSVNLockStatusBroken);
    EXPECT_TRUE(node->controllingLock()->isEqualToLock(locks[0]));
}

}  // namespace
