// Making directories, deleting, importing, copying and moving, on every
// backend, with svn reading the result; the batch forms with their handler.
#include <tessera/LuSVNBatchHandler.h>
#include <tessera/LuSVNCommitItem.h>
#include <tessera/LuSVNCopyOptions.h>
#include <tessera/LuSVNDeleteOptions.h>
#include <tessera/LuSVNImportOptions.h>
#include <tessera/LuSVNMoveOptions.h>
#include <tessera/LuSVNSimpleLogMessageProvider.h>

#include <gtest/gtest.h>

#include <filesystem>

#include "OperationsTestSupport.h"

using namespace tessera_operations_test;
using tessera_test::svn;
namespace fs = std::filesystem;

namespace {

// A repository with trunk/a.txt and trunk/dir/b.txt (r1), checked out at wc.
class RepositoryChanges : public ::testing::TestWithParam<const char*> {
protected:
    void SetUp() override
    {
        repositoryURL = tessera_test::makeRepository(directory / "repo");
        fs::create_directories(directory / "tree/trunk/dir");
        tessera_test::writeFile(directory / "tree/trunk/a.txt", "a\n");
        tessera_test::writeFile(directory / "tree/trunk/dir/b.txt", "b\n");
        ASSERT_EQ(svn({"import", "-q", "-m", "tree", directory / "tree", repositoryURL}).status, 0);
        wc = directory / "wc";
        tessera_test::checkout(repositoryURL + "/trunk", wc);
        context = contextFor(GetParam());
        context->setLogMessageProvider(LuSVNSimpleLogMessageProvider::providerWithMessage("library change"));
    }

    std::string list(const std::string& path)
    {
        const auto result = svn({"list", "-R", repositoryURL + path});
        return result.status == 0 ? result.output : "error: " + result.output;
    }

    tessera_test::TemporaryDirectory directory;
    std::string repositoryURL;
    std::string wc;
    std::shared_ptr<LuSVNContext> context;
};

TEST_P(RepositoryChanges, MakesDirectoriesInRepositoryAndWorkingCopy)
{
    EXPECT_EQ(LuSVNNode::createDirectoriesAtPaths({url(repositoryURL + "/tags"), url(repositoryURL + "/branches")},
                                                  context),
              2);
    EXPECT_EQ(svn({"list", repositoryURL}).output, "branches/\ntags/\ntrunk/\n");
    EXPECT_EQ(LuSVNNode::createDirectoriesAtPaths({local(wc + "/new")}, context), LuSVNInvalidRevision);
    EXPECT_EQ(svnStatus(wc), "A       " + wc + "/new\n");

    // The parents need the newer form.
    const std::vector<LuSVNNode::Path> deep{local(wc + "/x/y")};
    if (GetParam() && std::string(GetParam()) == TESSERA_TEST_BUNDLE_1_4_6) {
        EXPECT_THROW(LuSVNNode::createDirectoriesAtPaths(deep, true, context), LuSVNInvalidArgumentException);
    } else {
        LuSVNNode::createDirectoriesAtPaths(deep, true, context);
        EXPECT_EQ(svnInfo(wc + "/x/y", "kind"), "dir");
    }
}

TEST_P(RepositoryChanges, CommitsWithoutMessageAreCancelled)
{
    context->setLogMessageProvider(LuSVNSimpleLogMessageProvider::provider());
    for (const auto& attempt : std::vector<std::function<void()>>{
             [&] { LuSVNNode::createDirectoriesAtPaths({url(repositoryURL + "/tags")}, context); },
             [&] { LuSVNNode::importNodeAtPath(local(directory / "tree"), url(repositoryURL + "/imported"),
                                               LuSVNImportOptions(), context); }}) {
        try {
            attempt();
            ADD_FAILURE() << "no cancellation";
        } catch (const LuSVNOperationCancelledException& cancelled) {
            EXPECT_EQ(cancelled.reason(), "Operation was cancelled");
        }
    }
    EXPECT_EQ(svnInfo(repositoryURL, "revision"), "1");
}

// What every release does with the same entry point runs on the newest.
class RepositoryChangesOneForm : public RepositoryChanges {};

TEST_P(RepositoryChangesOneForm, DeletesFromRepositoryAndWorkingCopy)
{
    EXPECT_EQ(LuSVNNode::deleteNodes({}, LuSVNDeleteOptions(), context), LuSVNInvalidRevision);
    EXPECT_EQ(LuSVNNode::deleteNodes({url(repositoryURL + "/trunk/a.txt")}, LuSVNDeleteOptions(), context), 2);
    EXPECT_EQ(list("/trunk"), "dir/\ndir/b.txt\n");

    EXPECT_EQ(LuSVNNode::deleteNodes({local(wc + "/dir/b.txt")}, LuSVNDeleteOptions(), context),
              LuSVNInvalidRevision);
    EXPECT_EQ(svnStatus(wc + "/dir"), "D       " + wc + "/dir/b.txt\n");
    EXPECT_FALSE(fs::exists(wc + "/dir/b.txt"));
}

TEST_P(RepositoryChangesOneForm, UnversionedItemsNeedForceAndStayWithout)
{
    tessera_test::writeFile(wc + "/loose.txt", "mine\n");
    try {
        LuSVNNode::deleteWorkingCopyNodesAtPaths({local(wc + "/a.txt"), local(wc + "/loose.txt")},
                                                 LuSVNDeleteOptions(), context);
        ADD_FAILURE() << "deleted an unversioned file without force";
    } catch (const LuSVNUnversionedResourceException& refused) {
        EXPECT_EQ(refused.reason(),
                  "Cannot delete '" + wc + "/loose.txt' because it is unversioned and force was not specified");
    }
    // Nothing was deleted: neither the unversioned file nor its companion.
    EXPECT_TRUE(fs::exists(wc + "/loose.txt"));
    EXPECT_EQ(svnStatus(wc), "?       " + wc + "/loose.txt\n");

    LuSVNDeleteOptions force;
    force.setForce(true);
    LuSVNNode::deleteWorkingCopyNodesAtPaths({local(wc + "/a.txt"), local(wc + "/loose.txt")}, force, context);
    EXPECT_FALSE(fs::exists(wc + "/loose.txt"));
    EXPECT_EQ(svnStatus(wc), "D       " + wc + "/a.txt\n");
}

TEST_P(RepositoryChangesOneForm, ImportsATree)
{
    LuSVNImportOptions options;
    EXPECT_EQ(LuSVNNode::importNodeAtPath(local(directory / "tree/trunk"), url(repositoryURL + "/copy"), options,
                                          context),
              2);
    EXPECT_EQ(list("/copy"), "a.txt\ndir/\ndir/b.txt\n");
    options.setRecursive(false);
    EXPECT_EQ(LuSVNNode::importNodeAtPath(local(directory / "tree/trunk"), url(repositoryURL + "/flat"), options,
                                          context),
              3);
    EXPECT_EQ(list("/flat"), "a.txt\n");
}

TEST_P(RepositoryChangesOneForm, CopiesAndMovesInWorkingCopyAndRepository)
{
    EXPECT_EQ(LuSVNNode::copyNodeAtPath(local(wc + "/a.txt"), local(wc + "/c.txt"), LuSVNCopyOptions(), context),
              LuSVNInvalidRevision);
    EXPECT_EQ(LuSVNNode::moveNodeAtPath(local(wc + "/dir"), local(wc + "/moved"), LuSVNMoveOptions(), context),
              LuSVNInvalidRevision);
    EXPECT_EQ(svnInfo(wc + "/c.txt", "url"), repositoryURL + "/trunk/c.txt");
    EXPECT_EQ(svn({"status", "-q", wc}).status, 0);
    const std::string status = svnStatus(wc);
    EXPECT_NE(status.find("A  +    " + wc + "/c.txt\n"), std::string::npos) << status;
    EXPECT_NE(status.find("D       " + wc + "/dir\n"), std::string::npos) << status;
    EXPECT_NE(status.find("A  +    " + wc + "/moved\n"), std::string::npos) << status;

    LuSVNCopyOptions first;
    first.setRevision(LuSVNRevision::revisionWithNumber(1));
    EXPECT_EQ(LuSVNNode::copyNodeAtPath(url(repositoryURL + "/trunk"), url(repositoryURL + "/tag"), first, context), 2);
    EXPECT_EQ(LuSVNNode::moveNodeAtPath(url(repositoryURL + "/tag"), url(repositoryURL + "/tag2"), LuSVNMoveOptions(),
                                        context),
              3);
    EXPECT_EQ(list("/tag2"), "a.txt\ndir/\ndir/b.txt\n");
}

TEST_P(RepositoryChangesOneForm, CopiesAndMovesIntoUnversionedDirectoriesAreRefused)
{
    fs::create_directories(wc + "/plain");
    const std::string source = wc + "/a.txt";
    for (const bool copy : {true, false}) {
        try {
            if (copy)
                LuSVNNode::copyNodeAtPath(local(source), local(wc + "/plain/a.txt"), LuSVNCopyOptions(), context);
            else
                LuSVNNode::moveNodeAtPath(local(source), local(wc + "/plain/a.txt"), LuSVNMoveOptions(), context);
            ADD_FAILURE() << "no refusal";
        } catch (const LuSVNNotWorkingCopyException& refused) {
            EXPECT_EQ(refused.reason(), std::string("Failed to ") + (copy ? "copy" : "move") + " item at '" + source +
                                            "' to unversioned directory at '" + wc + "/plain'");
        }
    }
    EXPECT_FALSE(fs::exists(wc + "/plain/a.txt"));
    EXPECT_EQ(svnStatus(wc), "?       " + wc + "/plain\n");
}

INSTANTIATE_TEST_SUITE_P(Backends, RepositoryChanges, ::testing::ValuesIn(allBackends()));
INSTANTIATE_TEST_SUITE_P(Newest, RepositoryChangesOneForm, ::testing::Values(nullptr));

// A handler answering from a script of answers, one per question, and
// keeping the questions.
class ScriptedHandler : public LuSVNBatchHandler {
public:
    LuSVNBatchAnswer batchWillProcessItem(const LuSVNPath::Path& source, const LuSVNPath::Path&,
                                          const std::any& contextInfo) override
    {
        EXPECT_EQ(std::any_cast<int>(contextInfo), 42);
        asked.push_back("will " + source->lastComponent());
        return static_cast<LuSVNBatchAnswer>(next());
    }
    std::int32_t batchShouldOverwriteItem(const LuSVNPath::Path& source, const LuSVNPath::Path&,
                                          const std::any&) override
    {
        asked.push_back("overwrite " + source->lastComponent());
        return next();
    }
    void batchDidProcessItem(const LuSVNPath::Path& source, const LuSVNPath::Path&, std::int32_t revision,
                             const std::any&) override
    {
        asked.push_back("did " + source->lastComponent() + " " + std::to_string(revision));
    }

    std::vector<std::int32_t> answers;
    std::vector<std::string> asked;

private:
    std::int32_t next()
    {
        const std::int32_t answer = answers.at(0);
        answers.erase(answers.begin());
        return answer;
    }
};

// A provider that counts its questions and the items it was shown.
class CountingProvider : public LuSVNLogMessageProvider {
public:
    bool contextPromptForLogMessage(LuSVNContext&, std::optional<std::string>& message,
                                    const std::vector<LuSVNCommitItem>& items) override
    {
        ++questions;
        shown = items;
        message = "batch";
        return true;
    }
    std::shared_ptr<LuSVNLogMessageProvider> copy() const override { return std::make_shared<CountingProvider>(); }

    int questions = 0;
    std::vector<LuSVNCommitItem> shown;
};


TEST_P(RepositoryChangesOneForm, ImportAsksOnceAndStopsWhereTheHandlerCancels)
{
    auto provider = std::make_shared<CountingProvider>();
    context->setLogMessageProvider(provider);
    auto handler = std::make_shared<ScriptedHandler>();
    handler->answers = {LuSVNBatchAnswerProceed, LuSVNBatchAnswerSkip, LuSVNBatchAnswerCancel};
    const std::vector<LuSVNNode::LocalPath> paths{local(directory / "tree/trunk/a.txt"),
                                                  local(directory / "tree/trunk/dir"),
                                                  local(directory / "tree/trunk")};
    const std::vector<LuSVNNode::URLPath> urls{url(repositoryURL + "/i1"), url(repositoryURL + "/i2"),
                                               url(repositoryURL + "/i3")};
    try {
        LuSVNNode::importNodes(paths, urls, LuSVNImportOptions(), handler, 42, context);
        ADD_FAILURE() << "no cancellation";
    } catch (const LuSVNOperationCancelledException& cancelled) {
        EXPECT_EQ(cancelled.reason(), "Import was canceled by user");
    }
    EXPECT_EQ(handler->asked, (std::vector<std::string>{"will a.txt", "did a.txt 2", "will dir", "will trunk"}));
    EXPECT_EQ(provider->questions, 1);
    ASSERT_EQ(provider->shown.size(), 3u);
    EXPECT_EQ(provider->shown[1].nodeKind(), 2);
    EXPECT_EQ(provider->shown[1].URL()->string(), repositoryURL + "/i2");
    EXPECT_EQ(provider->shown[0].actions(), LuSVNCommitActionAdd);
    EXPECT_EQ(svn({"log", "-q", "-v", "-r", "2", repositoryURL}).status, 0);
    EXPECT_EQ(svnInfo(repositoryURL, "revision"), "2");
    // The context's own provider is back.
    EXPECT_EQ(context->logMessageProvider(), provider);
}

TEST_P(RepositoryChangesOneForm, MovesOverExistingItemsAsTheHandlerSays)
{
    tessera_test::writeFile(wc + "/loose.txt", "in the way\n");
    auto handler = std::make_shared<ScriptedHandler>();
    // a.txt over the unversioned loose.txt, dir/b.txt over the versioned
    // a.txt's place would be skipped.
    handler->answers = {LuSVNBatchAnswerProceed, LuSVNBatchAnswerProceed, LuSVNBatchAnswerProceed,
                        LuSVNBatchAnswerSkip};
    const auto revisions = LuSVNNode::moveNodes({local(wc + "/a.txt"), local(wc + "/dir/b.txt")},
                                                {local(wc + "/loose.txt"), local(wc + "/loose.txt")}, false,
                                                LuSVNMoveOptions(), handler, 42, context);
    EXPECT_EQ(revisions, (std::vector<std::int32_t>{LuSVNInvalidRevision, LuSVNInvalidRevision}));
    EXPECT_EQ(handler->asked, (std::vector<std::string>{"will a.txt", "overwrite a.txt", "did a.txt -1", "will b.txt",
                                                        "overwrite b.txt"}));
    EXPECT_EQ(tessera_test::svn({"cat", wc + "/loose.txt"}).output, "a\n");
    const std::string status = svnStatus(wc);
    EXPECT_NE(status.find("A  +    " + wc + "/loose.txt\n"), std::string::npos) << status;
    EXPECT_TRUE(fs::exists(wc + "/dir/b.txt"));
}

TEST_P(RepositoryChangesOneForm, CancellationsAndUnknownAnswersSayWhich)
{
    tessera_test::writeFile(wc + "/loose.txt", "in the way\n");
    struct Case {
        bool copy;
        bool single;
        std::vector<std::int32_t> answers;
        std::string reason;
    };
    const std::vector<Case> cases{
        {false, false, {LuSVNBatchAnswerCancel}, "Move was canceled by user"},
        {true, false, {LuSVNBatchAnswerCancel}, "Operation canceled by user"},
        {false, true, {LuSVNBatchAnswerCancel}, "Move was canceled"},
        {true, false, {LuSVNBatchAnswerProceed, LuSVNBatchAnswerCancel}, "Operation canceled by user"},
        {false, false, {LuSVNBatchAnswerProceed, 7}, "Unrecognised overwrite result"},
    };
    for (const Case& test : cases) {
        auto handler = std::make_shared<ScriptedHandler>();
        handler->answers = test.answers;
        try {
            if (test.single)
                LuSVNNode::moveNodeAtPath(local(wc + "/a.txt"), local(wc + "/loose.txt"), test.copy,
                                          LuSVNMoveOptions(), handler, 42, context);
            else
                LuSVNNode::moveNodes({local(wc + "/a.txt")}, {local(wc + "/loose.txt")}, test.copy,
                                     LuSVNMoveOptions(), handler, 42, context);
            ADD_FAILURE() << test.reason << ": went through";
        } catch (const LuSVNException& failure) {
            EXPECT_EQ(failure.reason(), test.reason);
        }
        EXPECT_TRUE(fs::exists(wc + "/a.txt")) << test.reason;
        EXPECT_EQ(svnStatus(wc), "?       " + wc + "/loose.txt\n") << test.reason;
    }
}


TEST(RepositoryChangeItems, CommitItemsDescribeTheBatch)
{
    const auto items = LuSVNNode::commitItemsForMoveOfNodes({local("/w/a"), url("file:///r/b")},
                                                            {local("/w/c"), url("file:///r/d")}, false);
    ASSERT_EQ(items.size(), 4u);
    EXPECT_EQ(items[0].actions(), LuSVNCommitActionAdd | LuSVNCommitActionCopy);
    EXPECT_EQ(items[0].copySource()->path()->string(), "/w/a");
    EXPECT_EQ(items[1].actions(), LuSVNCommitActionDelete);
    EXPECT_EQ(items[1].path()->string(), "/w/a");
    EXPECT_EQ(items[2].URL()->string(), "file:///r/d");
    EXPECT_EQ(items[3].URL()->string(), "file:///r/b");
    EXPECT_EQ(LuSVNNode::commitItemsForMoveOfNodes({local("/w/a")}, {local("/w/c")}, true).size(), 1u);
}

TEST(RepositoryChangeItems, OverwriteNeedsALocalSourceAndPromptsFallBackToEmpty)
{
    auto context = contextFor(nullptr);
    EXPECT_THROW(LuSVNNode::deleteNodeAtPath(local("/nonexistent/x"), url("file:///r/a"), context),
                 LuSVNInvalidArgumentException);
    EXPECT_EQ(LuSVNNode::promptForLogMessage({}, context), "");
    context->setLogMessageProvider(LuSVNSimpleLogMessageProvider::provider());
    EXPECT_EQ(LuSVNNode::promptForLogMessage({}, context), "");
    context->setLogMessageProvider(LuSVNSimpleLogMessageProvider::providerWithMessage("said"));
    EXPECT_EQ(LuSVNNode::promptForLogMessage({}, context), "said");
}

TEST(RepositoryChangeItems, CommitItemsOfStatuses)
{
    struct Case {
        LuSVNStatusKind text;
        LuSVNStatusKind property;
        bool copied;
        bool hasProperties;
        std::int32_t actions;  // 0: no item
    };
    const std::vector<Case> cases{
        {LuSVNStatusNormal, LuSVNStatusModified, false, true, 16},
        {LuSVNStatusUnversioned, LuSVNStatusNone, false, false, 0},
        {LuSVNStatusIgnored, LuSVNStatusNone, false, false, 0},
        {LuSVNStatusAdded, LuSVNStatusNone, true, true, 21},
        {LuSVNStatusAdded, LuSVNStatusNone, false, true, 25},
        {LuSVNStatusAdded, LuSVNStatusNone, false, false, 9},
        {LuSVNStatusDeleted, LuSVNStatusNone, false, false, 2},
        {LuSVNStatusReplaced, LuSVNStatusMerged, false, false, 27},
        {LuSVNStatusMerged, LuSVNStatusNormal, false, false, 8},
        {LuSVNStatusConflicted, LuSVNStatusConflicted, false, false, 0},
    };
    for (const Case& test : cases) {
        auto status = LuSVNStatus::status();
        status->setTextStatus(test.text);
        status->setPropertyStatus(test.property);
        status->setHasProperties(test.hasProperties);
        if (test.copied) {
            status->setCopyFromURL(url("file:///r/src"));
            status->setCopyFromRevision(4);
        }
        const auto item = LuSVNCommitItem::commitItemForStatus(status);
        SCOPED_TRACE(std::to_string(test.text) + "/" + std::to_string(test.property));
        if (test.actions == 0) {
            EXPECT_FALSE(item);
            continue;
        }
        ASSERT_TRUE(item);
        EXPECT_EQ(item->actions(), test.actions);
        EXPECT_EQ(item->copySource() != nullptr, test.copied);
        if (test.copied) {
            EXPECT_EQ(item->copySource()->revision()->description(), "4");
        }
    }

    auto node = LuSVNDirectory::nodeWithPath(local("/w/dir"));
    node->setRevision(3);
    EXPECT_FALSE(LuSVNCommitItem::commitItemForNode(node));
    auto status = LuSVNStatus::status();
    status->setTextStatus(LuSVNStatusModified);
    node->setStatus(status);
    node->setLock(LuSVNLock::lockWithPath(local("/w/dir"), "token", "me", std::nullopt, {}, std::nullopt));
    const auto item = LuSVNCommitItem::commitItemForNode(node);
    ASSERT_TRUE(item);
    EXPECT_EQ(item->nodeKind(), 2);
    EXPECT_TRUE(item->isLocked());
    EXPECT_EQ(item->revision(), 3);
    EXPECT_EQ(item->path()->string(), "/w/dir");
    EXPECT_THROW(LuSVNCommitItem::commitItemForStatus(nullptr), LuSVNInternalInconsistencyException);
}

}  // namespace
