// The context's conflict resolver during merges and updates: each answer
// against what svn makes of the same conflict with the same --accept, the
// description the resolver sees, a merged file of its own, a failing
// resolver, and the postponement without resolver and on 1.4.
#include <tessera/LuSVNConflictResolution.h>
#include <tessera/LuSVNMergeOptions.h>
#include <tessera/LuSVNRevisionRange.h>
#include <tessera/LuSVNUpdateOptions.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <stdexcept>

#include "OperationsTestSupport.h"

using namespace tessera_operations_test;
using tessera_test::svn;

namespace {

constexpr std::int32_t TextConflict = 0, PropertyConflict = 1;
constexpr std::int32_t OperationUpdate = 1, OperationMerge = 3;

std::string contents(const std::string& path)
{
    return tessera_test::run({"cat", path}).output;
}

std::string property(const std::string& path)
{
    return svn({"propget", "p", path}).output;
}

// trunk/f ("a b c", property p "v") at r2, branches/b copied from it at r3;
// trunk changes the middle line and p in r4, the branch changes both its own
// way in r5: merging trunk into the branch conflicts in the text and in p.
class ConflictResolver : public ::testing::Test {
protected:
    void SetUp() override
    {
        repositoryURL = tessera_test::makeRepository(directory / "repo");
        ASSERT_EQ(svn({"mkdir", "-q", "-m", "trunk", repositoryURL + "/trunk", repositoryURL + "/branches"}).status,
                  0);
        const std::string seed = directory / "seed";
        tessera_test::checkout(repositoryURL + "/trunk", seed);
        tessera_test::writeFile(seed + "/f", "a\nb\nc\n");
        ASSERT_EQ(svn({"add", "-q", seed + "/f"}).status, 0);
        ASSERT_EQ(svn({"propset", "-q", "p", "v", seed + "/f"}).status, 0);
        ASSERT_EQ(svn({"commit", "-q", "-m", "f", seed}).status, 0);
        ASSERT_EQ(svn({"copy", "-q", "-m", "b", repositoryURL + "/trunk", repositoryURL + "/branches/b"}).status, 0);
        change(seed, "a\nB\nc\n", "vtrunk");
        const std::string branch = directory / "branch";
        tessera_test::checkout(repositoryURL + "/branches/b", branch);
        change(branch, "a\nX\nc\n", "vbranch");
    }

    void change(const std::string& workingCopy, const std::string& text, const std::string& value)
    {
        tessera_test::writeFile(workingCopy + "/f", text);
        ASSERT_EQ(svn({"propset", "-q", "p", value, workingCopy + "/f"}).status, 0);
        ASSERT_EQ(svn({"commit", "-q", "-m", value, workingCopy}).status, 0);
    }

    // A fresh checkout of the branch.
    std::string branchCopy(const std::string& name)
    {
        const std::string path = directory / name;
        tessera_test::checkout(repositoryURL + "/branches/b", path);
        return path;
    }

    void mergeTrunk(const std::string& workingCopy, const std::shared_ptr<LuSVNContext>& context)
    {
        LuSVNNode::mergeNodeAtPath(url(repositoryURL + "/trunk"),
                                   {LuSVNRevisionRange::from(LuSVNRevision::revisionWithNumber(1),
                                                             LuSVNRevision::HEAD())},
                                   LuSVNRevision::HEAD(), local(workingCopy), LuSVNMergeOptions(), context);
    }

    tessera_test::TemporaryDirectory directory;
    std::string repositoryURL;
};

TEST_F(ConflictResolver, EachChoiceGivesWhatSvnAcceptGives)
{
    struct Case {
        LuSVNConflictChoice choice;
        const char* accept;
    };
    for (const Case& c : {Case{LuSVNConflictChoiceBase, "base"}, Case{LuSVNConflictChoiceTheirsFull, "tf"},
                          Case{LuSVNConflictChoiceMineFull, "mf"}, Case{LuSVNConflictChoiceTheirsConflict, "tc"},
                          Case{LuSVNConflictChoiceMineConflict, "mc"}, Case{LuSVNConflictChoiceMerged, "working"}}) {
        SCOPED_TRACE(c.accept);
        const std::string expected = branchCopy(std::string("svn-") + c.accept);
        ASSERT_EQ(svn({"merge", "-q", "--non-interactive", "--accept", c.accept, repositoryURL + "/trunk", expected})
                      .status,
                  0);
        const std::string merged = branchCopy(std::string("lib-") + c.accept);
        const auto context = contextFor(nullptr);
        context->setConflictResolver(
            [&](const LuSVNConflict&) { return LuSVNConflictResolution::choose(c.choice); });
        mergeTrunk(merged, context);
        EXPECT_EQ(contents(merged + "/f"), contents(expected + "/f"));
        EXPECT_EQ(property(merged + "/f"), property(expected + "/f"));
        EXPECT_EQ(svnStatus(merged + "/f").substr(0, 2), svnStatus(expected + "/f").substr(0, 2));
    }
}

TEST_F(ConflictResolver, SeesEachConflictWhileItsFilesExist)
{
    const std::string merged = branchCopy("wc");
    const auto context = contextFor(nullptr);
    std::vector<LuSVNConflict> seen;
    std::string theirs;
    context->setConflictResolver([&](const LuSVNConflict& conflict) {
        seen.push_back(conflict);
        if (conflict.kind() == TextConflict)
            theirs = contents(conflict.theirFilePath()->string());
        return LuSVNConflictResolution::postpone();
    });
    mergeTrunk(merged, context);
    ASSERT_EQ(seen.size(), 2U);
    const LuSVNConflict& text = seen[0].kind() == TextConflict ? seen[0] : seen[1];
    const LuSVNConflict& prop = seen[0].kind() == TextConflict ? seen[1] : seen[0];
    EXPECT_EQ(text.path()->string(), merged + "/f");
    EXPECT_EQ(text.operation(), OperationMerge);
    EXPECT_EQ(theirs, "a\nB\nc\n");
    ASSERT_TRUE(text.rightVersion());
    EXPECT_EQ(text.rightVersion()->repositoryPath(), "trunk/f");
    EXPECT_EQ(prop.kind(), PropertyConflict);
    EXPECT_EQ(prop.propertyName(), "p");
    EXPECT_EQ(svnStatus(merged + "/f").substr(0, 2), "CC");
}

TEST_F(ConflictResolver, MergedFileOfTheResolverIsInstalled)
{
    const std::string merged = branchCopy("wc");
    const std::string resolved = directory / "resolved";
    tessera_test::writeFile(resolved, "a\nmine and theirs\nc\n");
    const auto context = contextFor(nullptr);
    context->setConflictResolver([&](const LuSVNConflict& conflict) {
        return conflict.kind() == TextConflict ? LuSVNConflictResolution::mergedFile(resolved)
                                               : LuSVNConflictResolution::postpone();
    });
    mergeTrunk(merged, context);
    EXPECT_EQ(contents(merged + "/f"), "a\nmine and theirs\nc\n");
    EXPECT_EQ(svnStatus(merged + "/f").substr(0, 2), "MC");
}

TEST_F(ConflictResolver, ExceptionOfTheResolverReachesTheCaller)
{
    const std::string merged = branchCopy("wc");
    const auto context = contextFor(nullptr);
    context->setConflictResolver([](const LuSVNConflict&) -> LuSVNConflictResolution {
        throw std::runtime_error("no answer");
    });
    try {
        mergeTrunk(merged, context);
        ADD_FAILURE() << "the merge went on";
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "no answer");
    }
}

// Without resolver, after it is taken away, and on 1.4 (which has no
// conflict callback) the conflicts stay; 1.5 and 1.6 call the older form.
TEST_F(ConflictResolver, BackendsCallTheResolverOrPostpone)
{
    struct Case {
        const char* bundle;
        bool resolver;
        bool resolved;
    };
    for (const Case& c : {Case{nullptr, false, false}, Case{TESSERA_TEST_BUNDLE_1_6_23, true, true},
                          Case{TESSERA_TEST_BUNDLE_1_5_9, true, true}, Case{TESSERA_TEST_BUNDLE_1_4_6, true, false}}) {
        SCOPED_TRACE(backendTestName(c.bundle));
        const std::string merged = branchCopy(backendTestName(c.bundle));
        const auto context = contextFor(c.bundle);
        int calls = 0;
        context->setConflictResolver([&](const LuSVNConflict&) {
            ++calls;
            return LuSVNConflictResolution::choose(LuSVNConflictChoiceTheirsFull);
        });
        if (!c.resolver)
            context->setConflictResolver({});
        mergeTrunk(merged, context);
        EXPECT_EQ(calls, c.resolved ? 2 : 0);
        EXPECT_EQ(svnStatus(merged + "/f").substr(0, 2), c.resolved ? "MM" : "CC");
        EXPECT_EQ(contents(merged + "/f").find("<<<<<<<") == std::string::npos, c.resolved);
    }
}

TEST_F(ConflictResolver, UpdateAsksTheResolverToo)
{
    const std::string wc = directory / "trunk-wc";
    tessera_test::checkout(repositoryURL + "/trunk@2", wc);
    tessera_test::writeFile(wc + "/f", "a\nlocal\nc\n");
    const auto context = contextFor(nullptr);
    std::vector<std::int32_t> operations;
    context->setConflictResolver([&](const LuSVNConflict& conflict) {
        operations.push_back(conflict.operation());
        return LuSVNConflictResolution::choose(LuSVNConflictChoiceMineFull);
    });
    LuSVNNode::updateNodes({local(wc)}, LuSVNRevisionSpec::HEAD(), LuSVNUpdateOptions(), context);
    EXPECT_EQ(operations, std::vector<std::int32_t>{OperationUpdate});
    EXPECT_EQ(contents(wc + "/f"), "a\nlocal\nc\n");
    EXPECT_EQ(svnStatus(wc + "/f").substr(0, 1), "M");
}

}  // namespace
