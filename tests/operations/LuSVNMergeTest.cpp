// Merges into working copies on every backend, against what svn sees
// afterwards: revision ranges, two sources, dry runs, the refusals of the
// older releases and of reintegration, suggestions, the merge log, and the
// merge options handed to Subversion.
#include <tessera/LuSVNLogMessageReceiver.h>
#include <tessera/LuSVNMergeOptions.h>
#include <tessera/LuSVNRevertOptions.h>
#include <tessera/LuSVNRevisionRange.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <stdexcept>

#include "LuSVNBackendFrame.h"
#include "LuSVNMergeOptionsArray.h"
#include "OperationsTestSupport.h"

using namespace tessera_operations_test;
using tessera_test::svn;

namespace {

std::shared_ptr<const LuSVNRevisionRange> range(std::int32_t first, std::int32_t last)
{
    return LuSVNRevisionRange::from(LuSVNRevision::revisionWithNumber(first), LuSVNRevision::revisionWithNumber(last));
}

std::string contents(const std::string& path)
{
    return tessera_test::run({"cat", path}).output;
}

// "(none)" when the path has no merge info of its own.
std::string mergeInfo(const std::string& path)
{
    const auto result = svn({"propget", "svn:mergeinfo", path});
    return result.status == 0 ? result.output : "(none)";
}

// trunk/a.txt at r1; branches/b copied from trunk at r2; trunk changes a.txt
// in r3 ("a3") and again in r4 ("a4"). "wc" is a checkout of the branch.
class Merging : public ::testing::Test {
protected:
    void SetUp() override
    {
        repositoryURL = tessera_test::makeRepository(directory / "repo");
        trunk = repositoryURL + "/trunk";
        std::filesystem::create_directories(directory / "tree/trunk");
        std::filesystem::create_directories(directory / "tree/branches");
        tessera_test::writeFile(directory / "tree/trunk/a.txt", "a\n");
        ASSERT_EQ(svn({"import", "-q", "-m", "tree", directory / "tree", repositoryURL}).status, 0);
        ASSERT_EQ(svn({"copy", "-q", "-m", "branch", trunk, repositoryURL + "/branches/b"}).status, 0);
        const std::string seed = directory / "seed";
        tessera_test::checkout(trunk, seed);
        for (const char* text : {"a3\n", "a4\n"}) {
            tessera_test::writeFile(seed + "/a.txt", text);
            ASSERT_EQ(svn({"commit", "-q", "-m", text, seed}).status, 0);
        }
        wc = directory / "wc";
        tessera_test::checkout(repositoryURL + "/branches/b", wc);
    }

    tessera_test::TemporaryDirectory directory;
    std::string repositoryURL;
    std::string trunk;
    std::string wc;
};

TEST(MergeOptionsArray, WhitespaceThenEndOfLineOptions)
{
    struct Case {
        std::int32_t whitespace;
        bool ignoreEOLStyle;
        std::vector<std::string> expected;
    };
    LuSVNBackendFrame frame(LuSVNBundleLoader::sharedInstance()->newestBundle());
    for (const Case& c : {Case{0, false, {}}, Case{1, true, {"--ignore-space-change", "--ignore-eol-style"}},
                          Case{2, false, {"--ignore-all-space"}}, Case{0, true, {"--ignore-eol-style"}},
                          Case{2, true, {"--ignore-all-space", "--ignore-eol-style"}}}) {
        LuSVNMergeOptions options;
        options.setWhitespaceCompareBehavior(c.whitespace);
        options.setIgnoreEOLStyle(c.ignoreEOLStyle);
        const apr_array_header_t* array = tessera_private::LuSVNArrayForMergeOptions(options, frame.pool());
        std::vector<std::string> found;
        for (int index = 0; index < array->nelts; ++index)
            found.emplace_back(reinterpret_cast<const char* const*>(array->elts)[index]);
        EXPECT_EQ(found, c.expected) << c.whitespace << " " << c.ignoreEOLStyle;
    }
    tessera_test::expectParameterAssertion(
        [] { tessera_private::LuSVNArrayForMergeOptions(LuSVNMergeOptions(), nullptr); }, "pool != nil");
}

TEST_F(Merging, RangesMergeOnEveryBackendAndRecordTheirMergeInfo)
{
    for (const char* bundle : allBackends()) {
        SCOPED_TRACE(bundle ? bundle : "newest");
        ASSERT_EQ(svn({"revert", "-q", "-R", wc}).status, 0);
        const auto context = contextFor(bundle);
        auto recorder = std::make_shared<Recorder>();
        context->setNotificationHandler(recorder);
        LuSVNNode::mergeNodeAtPath(url(trunk), {range(2, 3)}, LuSVNRevision::HEAD(), local(wc), LuSVNMergeOptions(),
                                   context);
        EXPECT_EQ(contents(wc + "/a.txt"), "a3\n");
        EXPECT_EQ(mergeInfo(wc), "/trunk:3\n");
        const auto actions = recorder->actions();
        ASSERT_FALSE(actions.empty());
        EXPECT_EQ(actions.front(), LuSVNNotifyActionMergeStarted);
        EXPECT_EQ(actions.back(), LuSVNNotifyActionMergeSucceeded);
        // The range of the merge reaches the handlers from 1.5 on.
        const auto begin = std::find_if(recorder->notifications.begin(), recorder->notifications.end(),
                                        [](const auto& n) { return n.action() == LuSVNNotifyActionMergeBegin; });
        ASSERT_NE(begin, recorder->notifications.end());
        if (bundle && std::string(bundle) == TESSERA_TEST_BUNDLE_1_4_6) {
            EXPECT_EQ(begin->mergeRange(), nullptr);
        } else {
            ASSERT_NE(begin->mergeRange(), nullptr);
            EXPECT_EQ(begin->mergeRange()->description(), "{ 2 - 3 }");
        }
    }
}

TEST_F(Merging, OptionsReachSubversion)
{
    struct Case {
        const char* name;
        std::function<void(const LuSVNNode::Context&)> merge;
        const char* text;       // a.txt afterwards
        const char* mergeInfo;  // svn:mergeinfo of the working copy afterwards
    };
    const auto options = [](auto change) {
        LuSVNMergeOptions merged;
        change(merged);
        return merged;
    };
    const auto r = [](std::int32_t number) { return LuSVNRevision::revisionWithNumber(number); };
    for (const Case& c : std::vector<Case>{
             {"two sources",
              [&](const auto& context) {
                  LuSVNNode::mergeNodeAtPath(url(trunk), r(2), url(trunk), r(4), local(wc), LuSVNMergeOptions(),
                                             context);
              },
              "a4\n", "/trunk:3-4\n"},
             {"reverse range",
              [&](const auto& context) {
                  LuSVNNode::mergeNodeAtPath(url(trunk), {range(2, 4), range(4, 3)}, r(4), local(wc),
                                             LuSVNMergeOptions(), context);
              },
              "a3\n", "/trunk:3\n"},
             {"dry run",
              [&](const auto& context) {
                  LuSVNNode::mergeNodeAtPath(url(trunk), {range(2, 4)}, r(4), local(wc),
                                             options([](auto& o) { o.setDryRun(true); }), context);
              },
              "a\n", "(none)"},
             {"record only",
              [&](const auto& context) {
                  LuSVNNode::mergeNodeAtPath(url(trunk), {range(2, 4)}, r(4), local(wc),
                                             options([](auto& o) { o.setRecordOnly(true); }), context);
              },
              "a\n", "/trunk:3-4\n"},
         }) {
        SCOPED_TRACE(c.name);
        ASSERT_EQ(svn({"revert", "-q", "-R", wc}).status, 0);
        c.merge(contextFor(nullptr));
        EXPECT_EQ(contents(wc + "/a.txt"), c.text);
        EXPECT_EQ(mergeInfo(wc), c.mergeInfo);
    }
}

TEST_F(Merging, RefusalsComeBeforeAnyChange)
{
    struct Case {
        const char* bundle;
        const char* name;
        std::function<void(LuSVNMergeOptions&)> change;
        std::function<void(const LuSVNMergeOptions&, const LuSVNNode::Context&)> merge;
        const char* reason;
    };
    const auto none = [](LuSVNMergeOptions&) {};
    const auto ranges = [this](std::vector<std::shared_ptr<const LuSVNRevisionRange>> merged) {
        return [this, merged](const LuSVNMergeOptions& options, const LuSVNNode::Context& context) {
            LuSVNNode::mergeNodeAtPath(url(trunk), merged, LuSVNRevision::HEAD(), local(wc), options, context);
        };
    };
    const auto twoSources = [this](const LuSVNMergeOptions& options, const LuSVNNode::Context& context) {
        LuSVNNode::mergeNodeAtPath(url(trunk), LuSVNRevision::revisionWithNumber(2), url(trunk),
                                   LuSVNRevision::HEAD(), local(wc), options, context);
    };
    const auto reintegrate = [this](const LuSVNMergeOptions& options, const LuSVNNode::Context& context) {
        LuSVNNode::reintegrateMergeNodeAtPath(url(trunk), LuSVNRevision::HEAD(), local(wc), options, context);
    };
    const auto log = [this](const LuSVNMergeOptions&, const LuSVNNode::Context& context) {
        LuSVNNode::readLogForNodeAtPath(local(wc), LuSVNRevision::BASE(), url(trunk), LuSVNRevision::HEAD(), true,
                                        nullptr, false, context);
    };
    const char* const old = TESSERA_TEST_BUNDLE_1_4_6;
    for (const Case& c : std::vector<Case>{
             {old, "two ranges", none, ranges({range(2, 3), range(3, 4)}), "1.4 only supports a single revision range"},
             {old, "record only range", [](auto& o) { o.setRecordOnly(true); }, ranges({range(2, 3)}),
              "Record only option is not supported on 1.4"},
             {old, "record only sources", [](auto& o) { o.setRecordOnly(true); }, twoSources,
              "Record only option is not supported on 1.4"},
             {old, "immediates", [](auto& o) { o.setDepth(LuSVNDepthImmediates); }, twoSources, "Invalid depth"},
             {old, "reintegrate", none, reintegrate, "Reintegration merge requires 1.5 or newer"},
             {old, "log", none, log, "Reading log for merge requires 1.5 or newer"},
             {nullptr, "forced reintegration", [](auto& o) { o.setForce(true); }, reintegrate,
              "Invalid force option: Reintegration merges can't be forced"},
             {nullptr, "record-only reintegration", [](auto& o) { o.setRecordOnly(true); }, reintegrate,
              "Invalid recordOnly option: Reintegration merges can't record-only"},
             {nullptr, "shallow reintegration", [](auto& o) { o.setDepth(LuSVNDepthFiles); }, reintegrate,
              "Invalid depth: must be LuSVNDepthInfinity or LuSVNDepthUnknown"},
         }) {
        SCOPED_TRACE(c.name);
        LuSVNMergeOptions options;
        c.change(options);
        const auto context = contextFor(c.bundle);
        auto recorder = std::make_shared<Recorder>();
        context->setNotificationHandler(recorder);
        try {
            c.merge(options, context);
            ADD_FAILURE() << "nothing raised";
        } catch (const LuSVNException& refused) {
            EXPECT_EQ(refused.reason(), c.reason);
        }
        EXPECT_TRUE(recorder->notifications.empty());
        EXPECT_EQ(svnStatus(wc), "");
    }
}

TEST_F(Merging, SuggestionsAndTheMergeLogAgreeWithSvn)
{
    const auto context = contextFor(nullptr);
    LuSVNNode::mergeNodeAtPath(url(trunk), {range(2, 3)}, LuSVNRevision::HEAD(), local(wc), LuSVNMergeOptions(),
                               context);
    const auto suggestions =
        LuSVNNode::suggestMergeSourcesForNodeAtPath(local(wc), LuSVNRevision::WORKING(), context);
    // Subversion 1.14 names the copy source, then again as the source of the
    // merge info.
    ASSERT_EQ(suggestions.size(), 2U);
    EXPECT_EQ(suggestions.front()->string(), trunk);
    EXPECT_EQ(suggestions.back()->string(), trunk);
    EXPECT_TRUE(
        LuSVNNode::suggestMergeSourcesForNodeAtPath(local(wc), LuSVNRevision::WORKING(), contextFor(TESSERA_TEST_BUNDLE_1_4_6))
            .empty());

    // The merge info must be in the repository for the log to read it.
    ASSERT_EQ(svn({"commit", "-q", "-m", "merged r3", wc}).status, 0);
    ASSERT_EQ(svn({"update", "-q", wc}).status, 0);
    for (const bool eligible : {true, false}) {
        SCOPED_TRACE(eligible ? "eligible" : "merged");
        const auto items = LuSVNNode::readLogForNodeAtPath(local(wc), LuSVNRevision::BASE(), url(trunk),
                                                           LuSVNRevision::HEAD(), eligible, nullptr, true, context);
        std::string listed;
        for (const auto& item : items)
            listed += "r" + std::to_string(item->revision()) + "\n";
        EXPECT_EQ(listed, svn({"mergeinfo", "--show-revs", eligible ? "eligible" : "merged", trunk, wc}).output);
        ASSERT_EQ(items.size(), 1U);
        EXPECT_EQ(items.front()->message(), eligible ? "a4\n" : "a3\n");
    }
}

TEST_F(Merging, MergeStoppedByAHandlerIsRepairedAndReverted)
{
    const auto context = contextFor(nullptr);
    auto recorder = std::make_shared<Recorder>();
    recorder->onNotify = [](const LuSVNNotification& notification) {
        if (notification.action() == LuSVNNotifyActionUpdateUpdate)
            throw std::out_of_range("handler gave up");
    };
    context->setNotificationHandler(recorder);
    EXPECT_THROW(LuSVNNode::mergeNodeAtPath(url(trunk), {range(2, 4)}, LuSVNRevision::HEAD(), local(wc),
                                            LuSVNMergeOptions(), context),
                 std::out_of_range);
    EXPECT_EQ(recorder->count(LuSVNNotifyActionMergeFailed), 1U);
    EXPECT_EQ(recorder->count(LuSVNNotifyActionMergeSucceeded), 0U);
    recorder->onNotify = nullptr;
    LuSVNDirectory::cleanUpWorkingCopyAtPath(local(wc), context);
    LuSVNNode::revertNodes({local(wc)}, LuSVNRevertOptions(), context);
    EXPECT_EQ(svnStatus(wc), "");
    EXPECT_EQ(contents(wc + "/a.txt"), "a\n");
}

}  // namespace
