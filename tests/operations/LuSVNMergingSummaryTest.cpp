// The merging summary of two lines of development, before and after a sync
// merge and before a reintegration, against the revisions svn mergeinfo
// draws; the refusal of backends before 1.8; repository paths of locations.
#include <tessera/LuSVNMergeOptions.h>
#include <tessera/LuSVNMergingSummary.h>
#include <tessera/LuSVNRevisionRange.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <set>
#include <sstream>

#include "OperationsTestSupport.h"

using namespace tessera_operations_test;
using tessera_test::svn;

namespace {

// The revision numbers svn mergeinfo's diagram prints above and below the
// graph (its first and last two rows), "WC" left out.
std::multiset<std::int32_t> drawnRevisions(const std::string& diagram)
{
    std::vector<std::string> lines;
    std::istringstream stream(diagram);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    std::multiset<std::int32_t> revisions;
    if (lines.size() < 13)
        return revisions;
    for (const std::string& line : {lines[5], lines[12]}) {
        std::istringstream words(line);
        for (std::string word; words >> word;)
            if (word != "WC")
                revisions.insert(std::stoi(word));
    }
    return revisions;
}

// trunk/a.txt at r1; "branches/my branch" copied from trunk@1 in r2; trunk
// changes in r3. "wc" is a checkout of the branch, "trunk-wc" of trunk.
class MergingSummary : public ::testing::Test {
protected:
    void SetUp() override
    {
        repositoryURL = tessera_test::makeRepository(directory / "repo");
        trunk = repositoryURL + "/trunk";
        branch = repositoryURL + "/branches/my%20branch";
        std::filesystem::create_directories(directory / "tree/trunk");
        std::filesystem::create_directories(directory / "tree/branches");
        tessera_test::writeFile(directory / "tree/trunk/a.txt", "a\n");
        ASSERT_EQ(svn({"import", "-q", "-m", "tree", directory / "tree", repositoryURL}).status, 0);
        ASSERT_EQ(svn({"copy", "-q", "-m", "branch", trunk, branch}).status, 0);
        trunkWC = directory / "trunk-wc";
        tessera_test::checkout(trunk, trunkWC);
        tessera_test::writeFile(trunkWC + "/a.txt", "a3\n");
        ASSERT_EQ(svn({"commit", "-q", "-m", "r3", trunkWC}).status, 0);
        wc = directory / "wc";
        tessera_test::checkout(branch, wc);
    }

    tessera_test::TemporaryDirectory directory;
    std::string repositoryURL;
    std::string trunk;
    std::string branch;
    std::string trunkWC;
    std::string wc;
};

TEST_F(MergingSummary, AgreesWithSvnBeforeAndAfterASyncAndBeforeAReintegration)
{
    struct Case {
        const char* name;
        std::function<void()> before;
        std::string source;
        std::string target;
        bool needsReintegration;
        std::int32_t ancestor, base, right, target_;
        std::string basePath, targetPath;
    };
    const auto context = contextFor(nullptr);
    const auto nothing = [] {};
    const auto sync = [&] {
        LuSVNNode::mergeNodeAtPath(url(trunk), {LuSVNRevisionRange::from(LuSVNRevision::revisionWithNumber(1),
                                                                         LuSVNRevision::HEAD())},
                                   LuSVNRevision::HEAD(), local(wc), LuSVNMergeOptions(), context);
        ASSERT_EQ(svn({"commit", "-q", "-m", "sync", wc}).status, 0);  // r4
        ASSERT_EQ(svn({"update", "-q", wc}).status, 0);
        tessera_test::writeFile(wc + "/b.txt", "b\n");
        ASSERT_EQ(svn({"add", "-q", wc + "/b.txt"}).status, 0);
        ASSERT_EQ(svn({"commit", "-q", "-m", "branch work", wc}).status, 0);  // r5, the working copy stays at r4
        ASSERT_EQ(svn({"update", "-q", trunkWC}).status, 0);
    };
    for (const Case& c : std::vector<Case>{
             {"nothing merged yet", nothing, trunk, wc, false, 1, 1, 3, 3, "trunk", "branches/my branch"},
             {"synchronised", sync, trunk, wc, false, 1, 3, 5, 4, "trunk", "branches/my branch"},
             {"branch back to trunk", nothing, branch, trunkWC, true, 1, 3, 5, 5, "trunk", "trunk"},
         }) {
        SCOPED_TRACE(c.name);
        c.before();
        const auto summary = LuSVNNode::mergingSummaryForNodeAtPath(url(c.source), LuSVNRevision::HEAD(),
                                                                    local(c.target), LuSVNRevision::BASE(), context);
        EXPECT_EQ(summary.needsReintegration(), c.needsReintegration);
        EXPECT_EQ(summary.youngestCommonAncestor().revision, c.ancestor);
        EXPECT_EQ(summary.repositoryPathOf(summary.youngestCommonAncestor()), "trunk");
        EXPECT_EQ(summary.base().revision, c.base);
        EXPECT_EQ(summary.repositoryPathOf(summary.base()), c.basePath);
        EXPECT_EQ(summary.right().revision, c.right);
        EXPECT_EQ(summary.right().url->string(), c.source);
        EXPECT_EQ(summary.target().revision, c.target_);
        EXPECT_EQ(summary.repositoryPathOf(summary.target()), c.targetPath);
        EXPECT_EQ(summary.repositoryRootURL()->string(), repositoryURL);

        // svn draws the base only when it is younger than the ancestor, and
        // the working copy as "WC".
        const auto diagram = svn({"mergeinfo", c.source, c.target});
        ASSERT_EQ(diagram.status, 0) << diagram.output;
        std::multiset<std::int32_t> expected{summary.youngestCommonAncestor().revision, summary.right().revision};
        if (summary.base().revision > summary.youngestCommonAncestor().revision)
            expected.insert(summary.base().revision);
        EXPECT_EQ(drawnRevisions(diagram.output), expected) << diagram.output;
        EXPECT_NE(diagram.output.find("  " + summary.repositoryPathOf(summary.target()) + "\n"), std::string::npos)
            << diagram.output;
    }
}

TEST_F(MergingSummary, RefusalsAndAssertions)
{
    for (const char* bundle : {TESSERA_TEST_BUNDLE_1_6_23, TESSERA_TEST_BUNDLE_1_4_6}) {
        SCOPED_TRACE(bundle);
        try {
            LuSVNNode::mergingSummaryForNodeAtPath(url(trunk), LuSVNRevision::HEAD(), local(wc),
                                                   LuSVNRevision::BASE(), contextFor(bundle));
            ADD_FAILURE() << "nothing raised";
        } catch (const LuSVNInvalidArgumentException& refused) {
            EXPECT_EQ(refused.reason(), "Merging summary requires 1.8 or newer");
        }
    }
    const auto context = contextFor(nullptr);
    const LuSVNNode::Path source = url(trunk);
    const LuSVNNode::Path target = local(wc);
    const auto head = LuSVNRevision::HEAD();
    tessera_test::expectParameterAssertion(
        [&] { LuSVNNode::mergingSummaryForNodeAtPath(nullptr, head, target, head, context); }, "sourcePath != nil");
    tessera_test::expectParameterAssertion(
        [&] { LuSVNNode::mergingSummaryForNodeAtPath(source, nullptr, target, head, context); },
        "sourceRevision != nil");
    tessera_test::expectParameterAssertion(
        [&] { LuSVNNode::mergingSummaryForNodeAtPath(source, head, nullptr, head, context); }, "targetPath != nil");
    tessera_test::expectParameterAssertion(
        [&] { LuSVNNode::mergingSummaryForNodeAtPath(source, head, target, nullptr, context); },
        "targetRevision != nil");
    tessera_test::expectParameterAssertion(
        [&] { LuSVNNode::mergingSummaryForNodeAtPath(source, head, target, head, nullptr); }, "context != nil");
}

TEST(MergingSummaryValue, RepositoryPathsAreDecodedAndBelowTheRoot)
{
    const auto root = LuSVNURL::URLWithString("svn://host/repo%20one");
    const LuSVNMergingSummary summary(false, {}, {}, {}, {}, root);
    struct Case {
        const char* url;
        const char* path;
    };
    for (const Case& c : {Case{"svn://host/repo%20one", ""}, Case{"svn://host/repo%20one/trunk", "trunk"},
                          Case{"svn://host/repo%20one/branches/my%20branch", "branches/my branch"}}) {
        EXPECT_EQ(summary.repositoryPathOf({LuSVNURL::URLWithString(c.url), 1}), c.path) << c.url;
    }
    for (const char* outside : {"svn://host/repo%20one-two/trunk", "svn://host/other", "svn://host/repo"})
        EXPECT_THROW(summary.repositoryPathOf({LuSVNURL::URLWithString(outside), 1}), LuSVNInvalidArgumentException)
            << outside;
}

}  // namespace
