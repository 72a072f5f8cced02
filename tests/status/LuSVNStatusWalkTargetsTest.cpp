// What a status walk answers for each kind of target, as the headers promise
// it: a directory or a file, the root reported or not, and nodes that outlive
// the context of their walk. svn status on the same target is the oracle.
#include <tessera/LuSVNBundleLoader.h>
#include <tessera/LuSVNContext.h>
#include <tessera/LuSVNDirectory.h>
#include <tessera/LuSVNException.h>
#include <tessera/LuSVNURL.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <set>

#include "StatusFixture.h"

namespace {

using namespace tessera_status_test;

// A working copy with a clean root, a normal file g.txt and a modified
// file sub/f.txt.
class StatusWalkTargets : public testing::Test {
protected:
    static void SetUpTestSuite()
    {
        directory = new tessera_test::TemporaryDirectory();
        const std::string url = tessera_test::makeRepository(*directory / "repo");
        tessera_test::checkout(url, wc());
        std::filesystem::create_directory(wc() + "/sub");
        tessera_test::writeFile(wc() + "/sub/f.txt", "f\n");
        tessera_test::writeFile(wc() + "/g.txt", "g\n");
        tessera_test::svn({"add", "-q", wc() + "/sub", wc() + "/g.txt"});
        tessera_test::svn({"commit", "-q", "-m", "items", wc()});
        tessera_test::svn({"update", "-q", wc()});
        tessera_test::writeFile(wc() + "/sub/f.txt", "f changed\n");
    }
    static void TearDownTestSuite() { delete directory; }

    static std::string wc() { return *directory / "wc"; }

    static std::shared_ptr<LuSVNContext> context()
    {
        return LuSVNContext::contextWithBundle(LuSVNBundleLoader::sharedInstance()->newestBundle());
    }

    static inline tessera_test::TemporaryDirectory* directory = nullptr;
};

std::set<std::string> pathsOf(const LuSVNNode::Nodes& nodes)
{
    std::set<std::string> paths;
    for (const auto& node : nodes)
        paths.insert(node->path()->string());
    return paths;
}

TEST_F(StatusWalkTargets, EachTargetAnswersWhatSvnReportsAndTheRootOnlyWhenReported)
{
    struct Row {
        const char* target;
        bool includeNormalFiles;
        bool rootReported;
    };
    const Row rows[] = {
        {"", false, false},           // a clean root is not reported
        {"", true, true},             // with normal items it is, and it is the out-argument
        {"/sub", false, false},       // a directory below the root, only its change
        {"/sub/f.txt", true, false},  // a file target: the file alone, no directory
        {"/sub/f.txt", false, false},
        {"/g.txt", false, false},     // an unchanged file without normal items: nothing
    };
    const auto walkContext = context();
    for (const Row& row : rows) {
        const std::string target = wc() + row.target;
        SCOPED_TRACE(target + (row.includeNormalFiles ? " -v" : ""));
        std::set<std::string> expected;
        for (const ClientEntry& entry :
             clientStatusReport(target, row.includeNormalFiles ? std::vector<std::string>{"-v"} : std::vector<std::string>{}))
            expected.insert(entry.path);

        LuSVNStatusOptions options;
        options.setIncludeNormalFiles(row.includeNormalFiles);
        const Walk result = walk(target, options, walkContext);
        EXPECT_EQ(pathsOf(result.nodes), expected);
        if (row.rootReported) {
            ASSERT_NE(result.root, nullptr);
            EXPECT_EQ(result.root->path()->string(), target);
            EXPECT_EQ(result.at(target), result.root);
        } else {
            EXPECT_EQ(result.root, nullptr);
        }
    }
}

// A path outside any working copy, existing or not, raises the same class.
TEST_F(StatusWalkTargets, PathsOutsideAWorkingCopyRaiseNotWorkingCopy)
{
    const auto walkContext = context();
    for (const std::string& path : {directory->path(), *directory / "missing"}) {
        SCOPED_TRACE(path);
        EXPECT_THROW(LuSVNDirectory::statusForNodesInDirectoryAtPath(LuSVNLocalPath::pathWithString(path),
                                                                     LuSVNStatusOptions(), walkContext),
                     LuSVNNotWorkingCopyException);
    }
}

// Nodes hold no reference to the context of their walk: they stay whole
// after it is gone (AddressSanitizer checks the reads).
TEST_F(StatusWalkTargets, NodesOutliveTheirContext)
{
    LuSVNStatusOptions options;
    options.setIncludeNormalFiles(true);
    LuSVNNode::Nodes nodes;
    {
        const auto walkContext = context();
        nodes = LuSVNDirectory::statusForNodesInDirectoryAtPath(LuSVNLocalPath::pathWithString(wc()), options,
                                                                walkContext);
    }
    const std::map<std::string, ClientStatus> svn = clientStatus(wc());
    ASSERT_EQ(nodes.size(), svn.size());
    for (const auto& node : nodes) {
        SCOPED_TRACE(node->path()->string());
        ASSERT_EQ(svn.count(node->path()->string()), 1u);
        EXPECT_EQ(node->status()->textStatus(), kindNamed(svn.at(node->path()->string()).item));
        ASSERT_NE(node->URL(), nullptr);
        EXPECT_EQ(node->URL()->string().rfind("file://", 0), 0u);
    }
}

}  // namespace
