// Tree conflicts through Subversion 1.10's conflict resolution: the options
// offered for a local edit of a file moved in another working copy, the
// "move and merge" resolution against what svn's update makes of the same
// conflict, and the refusals.
#include <tessera/LuSVNPlatformExceptions.h>
#include <tessera/LuSVNUpdateOptions.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "LuSVNSubversion.h"
#include "OperationsTestSupport.h"

using namespace tessera_operations_test;
using tessera_test::svn;

namespace {

std::string contents(const std::string& path)
{
    return tessera_test::run({"cat", path}).output;
}

// svn status of the working copy with its path left out of the lines.
std::string statusOf(const std::string& workingCopy)
{
    std::string status = svnStatus(workingCopy);
    for (auto at = status.find(workingCopy); at != std::string::npos; at = status.find(workingCopy))
        status.erase(at, workingCopy.size());
    return status;
}

// f ("a b c") at r1; another working copy moves it to g in r2. "wc" is at
// r1 with f edited; "svn-wc" is a copy of it.
class TreeConflictOptions : public ::testing::Test {
protected:
    void SetUp() override
    {
        const std::string repositoryURL = tessera_test::makeRepository(directory / "repo");
        const std::string other = directory / "other";
        tessera_test::checkout(repositoryURL, other);
        tessera_test::writeFile(other + "/f", "a\nb\nc\n");
        ASSERT_EQ(svn({"add", "-q", other + "/f"}).status, 0);
        ASSERT_EQ(svn({"commit", "-q", "-m", "f", other}).status, 0);
        wc = directory / "wc";
        tessera_test::checkout(repositoryURL, wc);
        ASSERT_EQ(svn({"move", "-q", other + "/f", other + "/g"}).status, 0);
        ASSERT_EQ(svn({"commit", "-q", "-m", "moved", other}).status, 0);
        tessera_test::writeFile(wc + "/f", "a\nB\nc\n");
        svnWC = directory / "svn-wc";
        std::filesystem::copy(wc, svnWC, std::filesystem::copy_options::recursive);
    }

    tessera_test::TemporaryDirectory directory;
    std::string wc;
    std::string svnWC;
};

TEST_F(TreeConflictOptions, IncomingMoveIsOfferedAndResolvedAsSvnResolvesIt)
{
    const auto context = contextFor(nullptr);
    LuSVNNode::updateNodes({local(wc)}, LuSVNRevisionSpec::HEAD(), LuSVNUpdateOptions(), context);
    ASSERT_EQ(svnStatus(wc + "/f").substr(0, 7), "A  +  C");

    const LuSVNTreeConflictOptions offered = LuSVNNode::treeConflictOptionsForNodeAtPath(local(wc + "/f"), context);
    EXPECT_NE(offered.incomingChange.find("moved to '^/g'"), std::string::npos) << offered.incomingChange;
    EXPECT_FALSE(offered.localChange.empty());
    std::vector<std::int32_t> ids;
    for (const LuSVNTreeConflictOption& option : offered.options) {
        EXPECT_FALSE(option.label.empty());
        EXPECT_FALSE(option.description.empty());
        ids.push_back(option.id);
    }
    EXPECT_NE(std::find(ids.begin(), ids.end(), svn_client_conflict_option_postpone), ids.end());
    ASSERT_NE(std::find(ids.begin(), ids.end(), svn_client_conflict_option_incoming_move_file_text_merge), ids.end());

    // svn's update, which has nobody to ask, takes the option Subversion
    // recommends for an incoming move: the same "move and merge".
    ASSERT_EQ(svn({"update", "--non-interactive", svnWC}).status, 0);
    LuSVNNode::resolveTreeConflictAtPath(local(wc + "/f"), svn_client_conflict_option_incoming_move_file_text_merge,
                                         context);
    EXPECT_EQ(statusOf(wc), statusOf(svnWC));
    EXPECT_EQ(contents(wc + "/g"), "a\nB\nc\n");
    EXPECT_EQ(contents(wc + "/g"), contents(svnWC + "/g"));
}

TEST_F(TreeConflictOptions, Refusals)
{
    const auto context = contextFor(nullptr);
    LuSVNNode::updateNodes({local(wc)}, LuSVNRevisionSpec::HEAD(), LuSVNUpdateOptions(), context);
    EXPECT_THROW(LuSVNNode::treeConflictOptionsForNodeAtPath(local(wc + "/f"), contextFor(TESSERA_TEST_BUNDLE_1_6_23)),
                 LuSVNUnsupportedFeatureException);
    EXPECT_THROW(LuSVNNode::treeConflictOptionsForNodeAtPath(local(wc + "/g"), context),
                 LuSVNInvalidArgumentException);
    // An option that does not fit the conflict leaves it.
    EXPECT_THROW(LuSVNNode::resolveTreeConflictAtPath(local(wc + "/f"),
                                                      svn_client_conflict_option_incoming_added_dir_merge, context),
                 LuSVNException);
    EXPECT_EQ(svnStatus(wc + "/f").substr(0, 7), "A  +  C");
}

}  // namespace
