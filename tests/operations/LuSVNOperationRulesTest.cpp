// The rules around the Subversion call: assertions, depths per release,
// Tessera's own notifications, handler failures, log messages, progress.
#include <tessera/LuSVNAddOptions.h>
#include <tessera/LuSVNCheckOutOptions.h>
#include <tessera/LuSVNCommitItem.h>
#include <tessera/LuSVNCommitOptions.h>
#include <tessera/LuSVNResolveOptions.h>
#include <tessera/LuSVNRevertOptions.h>
#include <tessera/LuSVNSimpleLogMessageProvider.h>
#include <tessera/LuSVNSwitchOptions.h>
#include <tessera/LuSVNUpdateOptions.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <stdexcept>

#include "OperationsTestSupport.h"

using namespace tessera_operations_test;
using tessera_test::svn;

namespace {

// Repository with a.txt and sub/b.txt at r1; working copy "wc" of it.
class OperationRules : public ::testing::Test {
protected:
    void SetUp() override
    {
        repositoryURL = tessera_test::makeRepository(directory / "repo");
        std::filesystem::create_directories(directory / "tree/sub");
        tessera_test::writeFile(directory / "tree/a.txt", "a\n");
        tessera_test::writeFile(directory / "tree/sub/b.txt", "b\n");
        ASSERT_EQ(svn({"import", "-q", "-m", "tree", directory / "tree", repositoryURL}).status, 0);
        wc = directory / "wc";
        tessera_test::checkout(repositoryURL, wc);
    }

    tessera_test::TemporaryDirectory directory;
    std::string repositoryURL;
    std::string wc;
};

TEST_F(OperationRules, NullArgumentsAreRefusedBeforeAnyWork)
{
    const auto context = contextFor(nullptr);
    const auto path = local(wc);
    const auto repository = url(repositoryURL);
    LuSVNCheckOutOptions unknownDepth;
    unknownDepth.setDepth(LuSVNDepthUnknown);
    LuSVNCheckOutOptions excludeDepth;
    excludeDepth.setDepth(LuSVNDepthExclude);
    struct Case {
        const char* condition;
        std::function<void()> call;
    };
    const std::vector<Case> cases = {
        {"url != nil", [&] { LuSVNDirectory::checkoutDirectoryAtURL(nullptr, path, {}, context); }},
        {"path != nil", [&] { LuSVNDirectory::checkoutDirectoryAtURL(repository, nullptr, {}, context); }},
        {"context != nil", [&] { LuSVNDirectory::checkoutDirectoryAtURL(repository, path, {}, nullptr); }},
        {"[options depth] != LuSVNDepthUnknown",
         [&] { LuSVNDirectory::checkoutDirectoryAtURL(repository, path, unknownDepth, context); }},
        {"[options depth] != LuSVNDepthExclude",
         [&] { LuSVNDirectory::checkoutDirectoryAtURL(repository, path, excludeDepth, context); }},
        {"revision != nil", [&] { LuSVNNode::updateNodes({path}, nullptr, {}, context); }},
        {"path != nil", [&] { LuSVNNode::updateNodes({path, nullptr}, LuSVNRevisionSpec::HEAD(), {}, context); }},
        {"toURL != nil", [&] { LuSVNNode::switchNodeAtPath(path, nullptr, {}, context); }},
        {"context != nil", [&] { LuSVNNode::commitChangesToNodes({path}, {}, nullptr); }},
        {"path != nil", [&] { LuSVNNode::add(nullptr, context); }},
        {"path != nil", [&] { LuSVNNode::revertNodes({nullptr}, {}, context); }},
        {"path != nil", [&] { LuSVNNode::resolveNodeAtPath(nullptr, {}, context); }},
        {"path != nil", [&] { LuSVNNode::relocateNodeAtPath(nullptr, repositoryURL, repositoryURL, true, context); }},
        {"path != nil", [&] { LuSVNDirectory::cleanUpWorkingCopyAtPath(nullptr, context); }},
        {"path != nil", [&] { LuSVNDirectory::upgradeWorkingCopyAtPath(nullptr, LuSVNVersion::version1_7(), false); }},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.condition);
        tessera_test::expectParameterAssertion(c.call, c.condition);
    }
    EXPECT_EQ(svnStatus(wc), "");
}

TEST_F(OperationRules, DepthsTheOlderFormsCannotExpressAreRefused)
{
    tessera_test::writeFile(wc + "/a.txt", "changed\n");
    tessera_test::writeFile(wc + "/sub/b.txt", "changed\n");
    const std::string modified = "M       " + wc + "/a.txt\nM       " + wc + "/sub/b.txt\n";
    struct Case {
        const char* bundle;
        const char* operation;
        LuSVNDepth depth;
        bool refused;
    };
    for (const Case& c : {Case{TESSERA_TEST_BUNDLE_1_4_6, "revert", LuSVNDepthEmpty, true},
                          Case{TESSERA_TEST_BUNDLE_1_4_6, "revert", LuSVNDepthImmediates, true},
                          Case{TESSERA_TEST_BUNDLE_1_4_6, "update", LuSVNDepthEmpty, true},
                          Case{TESSERA_TEST_BUNDLE_1_4_6, "commit", LuSVNDepthImmediates, true},
                          Case{nullptr, "update", 7, true},
                          Case{nullptr, "revert", -3, true},
                          Case{TESSERA_TEST_BUNDLE_1_5_9, "revert", LuSVNDepthEmpty, false},
                          Case{nullptr, "update", LuSVNDepthEmpty, false}}) {
        SCOPED_TRACE(std::string(c.bundle ? c.bundle : "newest") + " " + c.operation + " " + std::to_string(c.depth));
        const auto context = contextFor(c.bundle);
        context->setLogMessageProvider(LuSVNSimpleLogMessageProvider::providerWithMessage("refused"));
        const auto run = [&] {
            if (std::string(c.operation) == "revert") {
                LuSVNRevertOptions options;
                options.setDepth(c.depth);
                LuSVNNode::revertNodes({local(wc)}, options, context);
            } else if (std::string(c.operation) == "update") {
                LuSVNUpdateOptions options;
                options.setDepth(c.depth);
                LuSVNNode::updateNodes({local(wc)}, LuSVNRevisionSpec::HEAD(), options, context);
            } else {
                LuSVNCommitOptions options;
                options.setDepth(c.depth);
                LuSVNNode::commitChangesToNodes({local(wc)}, options, context);
            }
        };
        if (!c.refused) {
            run();
            // Depth empty left the children alone.
            EXPECT_EQ(svnStatus(wc), modified);
            continue;
        }
        try {
            run();
            ADD_FAILURE() << "nothing raised";
        } catch (const LuSVNGenericException& refused) {
            EXPECT_EQ(refused.reason(), "Invalid depth");
        }
        EXPECT_EQ(svnStatus(wc), modified);
        EXPECT_EQ(svnInfo(repositoryURL, "revision"), "1");
    }
}

TEST_F(OperationRules, AddTakesDepthAndParentsFromRelease15)
{
    struct Case {
        const char* bundle;
        const char* name;
        std::function<void(LuSVNAddOptions&)> set;
        std::string target;    // below the working copy
        const char* refusal;   // null: added
        std::string expected;  // svn status afterwards, paths relative to the working copy
    };
    const std::vector<Case> cases = {
        {nullptr, "empty", [](auto& o) { o.setDepth(LuSVNDepthEmpty); }, "d", nullptr,
         "A       d\n?       d/e\n?       d/f\n"},
        {nullptr, "files", [](auto& o) { o.setDepth(LuSVNDepthFiles); }, "d", nullptr,
         "A       d\n?       d/e\nA       d/f\n"},
        {nullptr, "recursive", [](auto&) {}, "d", nullptr, "A       d\nA       d/e\nA       d/e/g\nA       d/f\n"},
        {nullptr, "parents", [](auto& o) { o.setAddParents(true); }, "d/e/g", nullptr,
         "A       d\nA       d/e\nA       d/e/g\n?       d/f\n"},
        {TESSERA_TEST_BUNDLE_1_4_6, "not recursive", [](auto& o) { o.setRecursive(false); }, "d", nullptr,
         "A       d\n?       d/e\n?       d/f\n"},
        {TESSERA_TEST_BUNDLE_1_4_6, "files", [](auto& o) { o.setDepth(LuSVNDepthFiles); }, "d", "Invalid depth", ""},
        {TESSERA_TEST_BUNDLE_1_4_6, "parents", [](auto& o) { o.setAddParents(true); }, "d/e/g",
         "Adding the parents needs a backend of 1.5 or later", ""},
        {nullptr, "exclude", [](auto& o) { o.setDepth(LuSVNDepthExclude); }, "d", "Invalid depth", ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.bundle ? c.bundle : "newest") + " " + c.name);
        std::filesystem::remove_all(wc + "/d");
        svn({"revert", "-q", "-R", wc});
        std::filesystem::create_directories(wc + "/d/e");
        tessera_test::writeFile(wc + "/d/f", "f\n");
        tessera_test::writeFile(wc + "/d/e/g", "g\n");
        LuSVNAddOptions options;
        c.set(options);
        try {
            LuSVNNode::add(local(wc + "/" + c.target), options, contextFor(c.bundle));
            EXPECT_EQ(c.refusal, nullptr);
        } catch (const LuSVNException& refused) {
            ASSERT_NE(c.refusal, nullptr) << refused.reason();
            EXPECT_EQ(refused.reason(), c.refusal);
        }
        const auto status = svn({"status", wc});
        std::string relative = status.output;
        for (std::size_t at; (at = relative.find(wc + "/")) != std::string::npos;)
            relative.erase(at, wc.size() + 1);
        EXPECT_EQ(relative, c.refusal ? "?       d\n" : c.expected);
    }
}

TEST_F(OperationRules, OperationsAnnounceStartAndOutcome)
{
    struct Case {
        const char* bundle;
        const char* operation;
        std::int32_t first;
        std::int32_t last;
    };
    tessera_test::writeFile(wc + "/a.txt", "changed\n");
    for (const Case& c : {
             Case{nullptr, "checkout", LuSVNNotifyActionCheckOutStarted, LuSVNNotifyActionCheckOutSucceeded},
             Case{nullptr, "checkout missing", LuSVNNotifyActionCheckOutStarted, LuSVNNotifyActionCheckOutFailed},
             Case{nullptr, "update", LuSVNNotifyActionUpdateStarted, LuSVNNotifyActionUpdateSucceeded},
             Case{TESSERA_TEST_BUNDLE_1_6_23, "update", LuSVNNotifyActionLegacyUpdateStarted,
                  LuSVNNotifyActionUpdateSucceeded},
             Case{TESSERA_TEST_BUNDLE_1_4_6, "update missing", LuSVNNotifyActionLegacyUpdateStarted,
                  LuSVNNotifyActionUpdateFailed},
             Case{nullptr, "switch", LuSVNNotifyActionSwitchStarted, LuSVNNotifyActionSwitchSucceeded},
             Case{nullptr, "relocate", LuSVNNotifyActionRelocateStarted, LuSVNNotifyActionRelocateSucceeded},
             Case{TESSERA_TEST_BUNDLE_1_4_6, "commit", LuSVNNotifyActionCommitStarted,
                  LuSVNNotifyActionCommitSucceeded},
             Case{nullptr, "commit missing", LuSVNNotifyActionCommitStarted, LuSVNNotifyActionCommitFailed},
         }) {
        const std::string operation = c.operation;
        SCOPED_TRACE(std::string(c.bundle ? c.bundle : "newest") + " " + operation);
        const auto context = contextFor(c.bundle);
        context->setLogMessageProvider(LuSVNSimpleLogMessageProvider::providerWithMessage("announced"));
        auto recorder = std::make_shared<Recorder>();
        context->setNotificationHandler(recorder);
        const auto missing = local(directory / "missing");
        std::optional<int> raised;
        try {
            if (operation == "checkout")
                LuSVNDirectory::checkoutDirectoryAtURL(url(repositoryURL), local(directory / "co"), {}, context);
            else if (operation == "checkout missing")
                LuSVNDirectory::checkoutDirectoryAtURL(url(repositoryURL + "/none"), local(directory / "co2"), {},
                                                       context);
            else if (operation == "update")
                LuSVNNode::updateNodes({local(wc)}, LuSVNRevisionSpec::HEAD(), {}, context);
            else if (operation == "update missing")
                LuSVNNode::updateNodes({local(wc)}, LuSVNRevisionSpec::revisionWithNumber(9), {}, context);
            else if (operation == "switch")
                LuSVNNode::switchNodeAtPath(local(wc + "/sub"), url(repositoryURL + "/sub"), {}, context);
            else if (operation == "relocate")
                LuSVNNode::relocateNodeAtPath(local(wc), repositoryURL, repositoryURL, true, context);
            else if (operation == "commit")
                LuSVNNode::commitChangesToNodes({local(wc)}, {}, context);
            else
                LuSVNNode::commitChangesToNodes({missing}, {}, context);
        } catch (const LuSVNException& exception) {
            raised = exception.status();
        }
        ASSERT_FALSE(recorder->notifications.empty());
        EXPECT_EQ(recorder->notifications.front().action(), c.first);
        const LuSVNNotification& last = recorder->notifications.back();
        EXPECT_EQ(last.action(), c.last);
        // A failure reaches the caller, and the handlers with it.
        EXPECT_EQ(raised.has_value(), operation.ends_with("missing"));
        if (raised) {
            ASSERT_NE(last.error(), nullptr);
            EXPECT_EQ(last.error()->status(), *raised);
        }
        EXPECT_EQ(recorder->count(LuSVNNotifyActionLegacyUpdateStarted),
                  c.first == LuSVNNotifyActionLegacyUpdateStarted ? 1u : 0u);
    }
}

TEST_F(OperationRules, HandlerFailureStopsTheOperationAndReachesTheCaller)
{
    std::filesystem::create_directories(directory / "more");
    for (int index = 0; index < 10; ++index)
        tessera_test::writeFile(directory / ("more/f" + std::to_string(index)), "f\n");
    ASSERT_EQ(svn({"import", "-q", "-m", "more", directory / "more", repositoryURL + "/more"}).status, 0);
    for (const std::int32_t action : {LuSVNNotifyActionUpdateAdd, LuSVNNotifyActionCommitAdded}) {
        SCOPED_TRACE(action);
        const auto context = contextFor(nullptr);
        context->setLogMessageProvider(LuSVNSimpleLogMessageProvider::providerWithMessage("stopped"));
        auto recorder = std::make_shared<Recorder>();
        int seen = 0;
        recorder->onNotify = [&](const LuSVNNotification& notification) {
            if (notification.action() == action && ++seen == 3)
                throw std::out_of_range("handler gave up");
        };
        context->setNotificationHandler(recorder);
        const std::string target = directory / ("co" + std::to_string(action));
        if (action == LuSVNNotifyActionUpdateAdd) {
            EXPECT_THROW(LuSVNDirectory::checkoutDirectoryAtURL(url(repositoryURL + "/more"), local(target), {}, context),
                         std::out_of_range);
            EXPECT_LT(recorder->count(LuSVNNotifyActionUpdateAdd), 10u);
            LuSVNDirectory::cleanUpWorkingCopyAtPath(local(target), context);
            EXPECT_EQ(svn({"status", target}).status, 0);
        } else {
            for (int index = 0; index < 5; ++index) {
                tessera_test::writeFile(wc + "/n" + std::to_string(index), "n\n");
                LuSVNNode::add(local(wc + "/n" + std::to_string(index)), context);
            }
            EXPECT_THROW(LuSVNNode::commitChangesToNodes({local(wc)}, {}, context), std::out_of_range);
            EXPECT_EQ(svnInfo(repositoryURL, "revision"), "2");
        }
        EXPECT_EQ(recorder->notifications.back().action() & 0xffff0000, 0x10000) << "a Failed notification last";
    }
}

TEST_F(OperationRules, UpgradeWritesOnlyFormatsOfLoadedReleasesFrom17)
{
    struct Case {
        LuSVNVersion version;
        const char* refusal;  // null: upgraded
    };
    const LuSVNVersion newest = *LuSVNBundleLoader::sharedInstance()->newestVersion();
    for (const Case& c : {Case{LuSVNVersion::version(1, 6), "only formats of 1.7 and later are written in place"},
                          Case{LuSVNVersion::version1_7(), "No backend of version 1.7 is loaded"},
                          Case{newest, nullptr}}) {
        SCOPED_TRACE(c.version.versionString());
        try {
            LuSVNDirectory::upgradeWorkingCopyAtPath(local(wc), c.version, false);
            EXPECT_EQ(c.refusal, nullptr);
        } catch (const LuSVNException& refused) {
            ASSERT_NE(c.refusal, nullptr) << refused.reason();
            EXPECT_NE(refused.reason().find(c.refusal), std::string::npos) << refused.reason();
        }
        EXPECT_EQ(LuSVNNode::formatVersionForWorkingCopyAtPath(wc), TESSERA_SVN_WC_FORMAT);
        EXPECT_EQ(svnStatus(wc), "");
    }
}

// Remembers the items the commit offered and answers with its own message.
class ItemProvider : public LuSVNLogMessageProvider {
public:
    bool contextPromptForLogMessage(LuSVNContext&, std::optional<std::string>& message,
                                    const std::vector<LuSVNCommitItem>& items) override
    {
        for (const auto& item : items)
            seen.emplace(item.path()->string(), item.actions());
        message = "from the items";
        return true;
    }
    std::shared_ptr<LuSVNLogMessageProvider> copy() const override { return std::make_shared<ItemProvider>(); }
    std::map<std::string, std::int32_t> seen;
};

TEST_F(OperationRules, CommitTakesItsMessageFromTheProviderChain)
{
    tessera_test::writeFile(wc + "/a.txt", "changed\n");
    tessera_test::writeFile(wc + "/c.txt", "c\n");
    for (const char* bundle : {static_cast<const char*>(nullptr), TESSERA_TEST_BUNDLE_1_4_6}) {
        SCOPED_TRACE(bundle ? bundle : "newest");
        const auto context = contextFor(bundle);
        if (!bundle)
            LuSVNNode::add(local(wc + "/c.txt"), context);
        // A chain that gives no message abandons the commit.
        context->setLogMessageProvider(LuSVNSimpleLogMessageProvider::provider());
        EXPECT_EQ(LuSVNNode::commitChangesToNodes({local(wc)}, {}, context), LuSVNInvalidRevision);
        EXPECT_EQ(svnInfo(repositoryURL, "revision"), "1");
        EXPECT_EQ(svnStatus(wc), "M       " + wc + "/a.txt\nA       " + wc + "/c.txt\n");
    }

    const auto context = contextFor(nullptr);
    auto provider = std::make_shared<ItemProvider>();
    context->setLogMessageProvider(provider);
    EXPECT_EQ(LuSVNNode::commitChangesToNodes({local(wc)}, {}, context), 2);
    EXPECT_EQ(provider->seen, (std::map<std::string, std::int32_t>{{wc + "/a.txt", LuSVNCommitActionModification},
                                                                   {wc + "/c.txt", LuSVNCommitActionAdd | LuSVNCommitActionModification}}));
    EXPECT_NE(svn({"log", "-r", "2", repositoryURL}).output.find("from the items"), std::string::npos);
}

TEST_F(OperationRules, ProgressCountsItemsWithoutBytesOnLocalRepositories)
{
    const auto context = contextFor(nullptr);
    auto recorder = std::make_shared<Recorder>();
    context->setNotificationHandler(recorder);
    std::vector<LuSVNProgress> reports;
    context->setProgressHandler([&](const LuSVNProgress& progress) { reports.push_back(progress); });
    LuSVNDirectory::checkoutDirectoryAtURL(url(repositoryURL), local(directory / "co"), {}, context);
    // a.txt, sub, sub/b.txt added and the root updated: one report each,
    // counting up; neither the start nor the completion is an item.
    ASSERT_EQ(reports.size(), 4u);
    for (std::size_t index = 0; index < reports.size(); ++index) {
        EXPECT_EQ(reports[index].items, static_cast<std::int64_t>(index + 1));
        EXPECT_EQ(reports[index].bytes, 0);
    }
    EXPECT_EQ(recorder->count(LuSVNNotifyActionUpdateAdd), 3u);
    EXPECT_EQ(recorder->count(LuSVNNotifyActionUpdateUpdate), 1u);

    // A failing progress handler stops the next operation; its count starts again.
    reports.clear();
    context->setProgressHandler([&](const LuSVNProgress& progress) {
        reports.push_back(progress);
        throw std::length_error("enough");
    });
    EXPECT_THROW(LuSVNDirectory::checkoutDirectoryAtURL(url(repositoryURL), local(directory / "co2"), {}, context),
                 std::length_error);
    ASSERT_EQ(reports.size(), 1u);
    EXPECT_EQ(reports.front().items, 1);
}

}  // namespace
