// Each working-copy operation on every backend, svn reading the result.
#include <tessera/LuSVNAddOptions.h>
#include <tessera/LuSVNCheckOutOptions.h>
#include <tessera/LuSVNCommitOptions.h>
#include <tessera/LuSVNResolveOptions.h>
#include <tessera/LuSVNRevertOptions.h>
#include <tessera/LuSVNSimpleLogMessageProvider.h>
#include <tessera/LuSVNSwitchOptions.h>
#include <tessera/LuSVNUpdateOptions.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "OperationsTestSupport.h"

using namespace tessera_operations_test;
using tessera_test::svn;

namespace {

std::string readFile(const std::string& path)
{
    std::ifstream in(path);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

// Repository with trunk (a.txt, sub/b.txt) and branches/br, a copy of trunk
// whose a.txt differs: r1 the tree, r2 the branch, r3 the branch's change.
class WorkingCopyOperations : public ::testing::TestWithParam<const char*> {
protected:
    void SetUp() override
    {
        repositoryURL = tessera_test::makeRepository(directory / "repo");
        std::filesystem::create_directories(directory / "tree/trunk/sub");
        tessera_test::writeFile(directory / "tree/trunk/a.txt", "a\n");
        tessera_test::writeFile(directory / "tree/trunk/sub/b.txt", "b\n");
        std::filesystem::create_directories(directory / "tree/branches");
        ASSERT_EQ(svn({"import", "-q", "-m", "tree", directory / "tree", repositoryURL}).status, 0);
        ASSERT_EQ(svn({"copy", "-q", "-m", "branch", repositoryURL + "/trunk", repositoryURL + "/branches/br"}).status,
                  0);
        tessera_test::checkout(repositoryURL + "/branches/br", directory / "side");
        tessera_test::writeFile(directory / "side/a.txt", "branch a\n");
        ASSERT_EQ(svn({"commit", "-q", "-m", "change", directory / "side"}).status, 0);
        context = contextFor(GetParam());
        context->setLogMessageProvider(LuSVNSimpleLogMessageProvider::providerWithMessage("library commit"));
        wc = directory / "wc";
    }

    std::int32_t checkoutTrunk(std::int32_t revision)
    {
        LuSVNCheckOutOptions options;
        options.setRevision(LuSVNRevisionSpec::revisionWithNumber(revision));
        return LuSVNDirectory::checkoutDirectoryAtURL(url(repositoryURL + "/trunk"), local(wc), options, context);
    }

    tessera_test::TemporaryDirectory directory;
    std::string repositoryURL;
    std::string wc;
    std::shared_ptr<LuSVNContext> context;
};

TEST_P(WorkingCopyOperations, CheckOutUpdateAndCommitAsSvnSeesThem)
{
    EXPECT_EQ(checkoutTrunk(1), 1);
    EXPECT_EQ(svnInfo(wc, "revision"), "1");
    EXPECT_EQ(svnInfo(wc, "url"), repositoryURL + "/trunk");
    EXPECT_EQ(svnStatus(wc), "");

    // Two targets, one result each, in their order.
    const auto revisions = LuSVNNode::updateNodes({local(wc + "/sub"), local(wc + "/a.txt")},
                                                  LuSVNRevisionSpec::HEAD(), LuSVNUpdateOptions(), context);
    EXPECT_EQ(revisions, (std::vector<std::int32_t>{3, 3}));
    EXPECT_EQ(svnInfo(wc + "/sub/b.txt", "revision"), "3");

    tessera_test::writeFile(wc + "/a.txt", "changed\n");
    tessera_test::writeFile(wc + "/new.txt", "new\n");
    LuSVNNode::add(local(wc + "/new.txt"), context);
    EXPECT_EQ(svnStatus(wc), "M       " + wc + "/a.txt\nA       " + wc + "/new.txt\n");

    EXPECT_EQ(LuSVNNode::commitChangesToNodes({local(wc)}, LuSVNCommitOptions(), context), 4);
    EXPECT_EQ(svnStatus(wc), "");
    const auto log = svn({"log", "-r", "4", repositoryURL});
    EXPECT_NE(log.output.find("library commit"), std::string::npos) << log.output;
    EXPECT_EQ(svn({"cat", repositoryURL + "/trunk/new.txt"}).output, "new\n");

    // Nothing left to commit: no revision.
    EXPECT_EQ(LuSVNNode::commitChangesToNodes({local(wc)}, LuSVNCommitOptions(), context), LuSVNInvalidRevision);
    EXPECT_EQ(svnInfo(repositoryURL, "revision"), "4");
}

TEST_P(WorkingCopyOperations, RevertSwitchAndRelocateAsSvnSeesThem)
{
    checkoutTrunk(3);
    tessera_test::writeFile(wc + "/a.txt", "changed\n");
    tessera_test::writeFile(wc + "/sub/b.txt", "changed\n");
    LuSVNRevertOptions revert;
    revert.setDepth(LuSVNDepthInfinity);
    LuSVNNode::revertNodes({local(wc)}, revert, context);
    EXPECT_EQ(svnStatus(wc), "");
    EXPECT_EQ(readFile(wc + "/a.txt"), "a\n");

    LuSVNSwitchOptions switchOptions;
    EXPECT_EQ(LuSVNNode::switchNodeAtPath(local(wc), url(repositoryURL + "/branches/br"), switchOptions, context), 3);
    EXPECT_EQ(svnInfo(wc, "url"), repositoryURL + "/branches/br");
    EXPECT_EQ(readFile(wc + "/a.txt"), "branch a\n");

    std::filesystem::rename(directory / "repo", directory / "moved");
    const std::string movedURL = "file://" + (directory / "moved");
    LuSVNNode::relocateNodeAtPath(local(wc), repositoryURL, movedURL, true, context);
    EXPECT_EQ(svnInfo(wc + "/sub/b.txt", "url"), movedURL + "/branches/br/sub/b.txt");
    EXPECT_EQ(svnStatus(wc), "");
}

TEST_P(WorkingCopyOperations, CheckOutDepthsTheBackendKnows)
{
    struct Case {
        LuSVNDepth depth;
        const char* svnDepth;
        bool olderBackendsRefuse;
    };
    const bool older = std::string(GetParam() ? GetParam() : "").find("1.4.6") != std::string::npos;
    for (const Case& c : {Case{LuSVNDepthFiles, "files", false}, Case{LuSVNDepthInfinity, "infinity", false},
                          Case{LuSVNDepthEmpty, "empty", true}, Case{LuSVNDepthImmediates, "immediates", true}}) {
        SCOPED_TRACE(c.svnDepth);
        // A new place each time: the context keeps the working copies it opened.
        const std::string target = wc + "-" + c.svnDepth;
        LuSVNCheckOutOptions options;
        options.setDepth(c.depth);
        const auto checkout = [&] {
            return LuSVNDirectory::checkoutDirectoryAtURL(url(repositoryURL + "/trunk"), local(target), options,
                                                          context);
        };
        if (older && c.olderBackendsRefuse) {
            try {
                checkout();
                ADD_FAILURE() << "nothing raised";
            } catch (const LuSVNInvalidArgumentException& refused) {
                EXPECT_EQ(refused.reason(),
                          "Incompatible depth argument for 1.4 (LuSVNDepthInfinity and LuSVNDepthFiles supported)");
            }
            EXPECT_FALSE(std::filesystem::exists(target));
            continue;
        }
        EXPECT_EQ(checkout(), 3);
        EXPECT_EQ(svnInfo(target, "depth"), c.svnDepth);
    }
}

TEST_P(WorkingCopyOperations, ConflictsAreResolvedAsChosen)
{
    const bool choices = std::string(GetParam() ? GetParam() : "").find("1.4.6") == std::string::npos;
    checkoutTrunk(1);
    // A second working copy changes the line this one changes too.
    tessera_test::checkout(repositoryURL + "/trunk", directory / "other");
    tessera_test::writeFile(directory / "other/a.txt", "theirs\n");
    ASSERT_EQ(svn({"commit", "-q", "-m", "theirs", directory / "other"}).status, 0);
    tessera_test::writeFile(wc + "/a.txt", "mine\n");
    const auto conflicted = [&] {
        LuSVNNode::updateNodes({local(wc)}, LuSVNRevisionSpec::HEAD(), LuSVNUpdateOptions(), context);
        ASSERT_EQ(svnStatus(wc + "/a.txt").substr(0, 1), "C");
    };

    conflicted();
    LuSVNResolveOptions resolve;
    LuSVNNode::resolveNodeAtPath(local(wc + "/a.txt"), resolve, context);  // merged: the file as it stands
    EXPECT_EQ(svnStatus(wc + "/a.txt").substr(0, 1), "M");

    resolve.setConflictChoice(LuSVNConflictChoiceTheirsFull);
    if (!choices) {
        EXPECT_THROW(LuSVNNode::resolveNodeAtPath(local(wc + "/a.txt"), resolve, context),
                     LuSVNInternalInconsistencyException);
        return;
    }
    LuSVNNode::revertNodes({local(wc + "/a.txt")}, LuSVNRevertOptions(), context);
    LuSVNNode::updateNodes({local(wc)}, LuSVNRevisionSpec::revisionWithNumber(1), LuSVNUpdateOptions(), context);
    tessera_test::writeFile(wc + "/a.txt", "mine\n");
    conflicted();
    LuSVNNode::resolveNodeAtPath(local(wc + "/a.txt"), resolve, context);
    EXPECT_EQ(svnStatus(wc), "");
    EXPECT_EQ(readFile(wc + "/a.txt"), "theirs\n");
}

TEST_P(WorkingCopyOperations, ChangelistsFromRelease15)
{
    const bool changelists = std::string(GetParam() ? GetParam() : "").find("1.4.6") == std::string::npos;
    checkoutTrunk(1);
    tessera_test::writeFile(wc + "/a.txt", "changed\n");
    const auto add = [&] { LuSVNNode::addNodesToChangelist({local(wc + "/a.txt")}, "fix", LuSVNDepthEmpty, context); };
    if (!changelists) {
        EXPECT_THROW(add(), LuSVNInternalInconsistencyException);
        return;
    }
    add();
    EXPECT_EQ(svnStatus(wc), "\n--- Changelist 'fix':\nM       " + wc + "/a.txt\n");
    LuSVNNode::removeNodesFromChangelists({local(wc)}, LuSVNDepthInfinity, context);
    EXPECT_EQ(svnStatus(wc), "M       " + wc + "/a.txt\n");
}

INSTANTIATE_TEST_SUITE_P(Backends, WorkingCopyOperations, ::testing::ValuesIn(allBackends()),
                         [](const auto& info) { return backendName(info.param); });

}  // namespace
