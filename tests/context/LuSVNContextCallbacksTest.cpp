// The context's callbacks driven by real operations on local repositories:
// log messages for commits, notifications, cancellation. Each result is
// checked against what the svn client sees in the same repository.
#include <tessera/LuSVNNotificationFilter.h>
#include <tessera/LuSVNSimpleLogMessageProvider.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <regex>

#include "LuSVNContextTestSupport.h"

namespace {

using context_test::ContextTest;
using context_test::Recorder;
using context_test::RecordingProvider;

// Cancels once the handler has seen enough additions; or raises instead of
// answering.
class Delegate : public LuSVNContextDelegate {
public:
    void contextQueryContinue(LuSVNContext&, bool& shouldContinue) override
    {
        ++asked;
        if (raises)
            throw std::runtime_error("delegate failed");
        if (recorder && recorder->count(LuSVNNotifyActionUpdateAdd) >= cancelAfterAdditions)
            shouldContinue = false;
    }

    std::shared_ptr<Recorder> recorder;
    std::size_t cancelAfterAdditions = 0;
    bool raises = false;
    int asked = 0;
};

svn_error_t* checkout(const std::string& url, const std::string& path, svn_client_ctx_t* ctx, apr_pool_t* pool)
{
    svn_opt_revision_t head{};
    head.kind = svn_opt_revision_head;
    svn_revnum_t revision = 0;
    return LuSVNEntry<42>()(&revision, url.c_str(), path.c_str(), &head, &head, svn_depth_infinity, false, false, ctx,
                            pool);
}

std::string attribute(const std::string& element, const std::string& name)
{
    std::smatch match;
    const std::regex pattern(" " + name + "=\"([^\"]*)\"");
    return std::regex_search(element, match, pattern) ? match[1].str() : std::string();
}

std::string logMessage(const std::string& url, int revision)
{
    const auto result = tessera_test::svn({"log", "--xml", "-r", std::to_string(revision), url});
    std::smatch match;
    std::regex_search(result.output, match, std::regex("<msg>([^<]*)</msg>"));
    return match[1];
}

// The commit items against the changed paths that "svn log -v --xml" shows
// for the revision they made. `workingCopy` is the directory that holds the
// repository's root, empty for commits of URLs (whose items have no path).
void expectItemsAsCommitted(const std::vector<LuSVNCommitItem>& items, const std::string& repositoryURL,
                            int revision, const std::string& workingCopy)
{
    const auto log = tessera_test::svn({"log", "-v", "--xml", "-r", std::to_string(revision), repositoryURL});
    const std::regex element("<path([^>]*)>([^<]*)</path>");
    std::size_t paths = 0;
    for (std::sregex_iterator it(log.output.begin(), log.output.end(), element), end; it != end; ++it, ++paths) {
        const std::string attributes = (*it)[1];
        const std::string path = (*it)[2];
        const auto item = std::find_if(items.begin(), items.end(), [&](const LuSVNCommitItem& item) {
            return item.URL() && item.URL()->string() == repositoryURL + path;
        });
        ASSERT_NE(item, items.end()) << path;
        const std::string action = attribute(attributes, "action");
        const std::string copyFrom = attribute(attributes, "copyfrom-path");
        const std::int32_t actions =
            (action == "A" || action == "R" ? LuSVNCommitActionAdd : 0) |
            (action == "D" || action == "R" ? LuSVNCommitActionDelete : 0) |
            (copyFrom.empty() ? 0 : LuSVNCommitActionCopy) |
            (attribute(attributes, "text-mods") == "true" ? LuSVNCommitActionModification : 0) |
            (attribute(attributes, "prop-mods") == "true" ? LuSVNCommitActionPropertyModification : 0);
        EXPECT_EQ(LuSVNStringForCommitActions(item->actions()), LuSVNStringForCommitActions(actions)) << path;
        EXPECT_FALSE(item->isLocked());
        if (workingCopy.empty()) {
            EXPECT_EQ(item->path(), nullptr);
        } else {
            ASSERT_NE(item->path(), nullptr);
            EXPECT_EQ(item->path()->string(), workingCopy + path);
            EXPECT_EQ(item->nodeKind(), attribute(attributes, "kind") == "dir" ? svn_node_dir : svn_node_file);
        }
        if (copyFrom.empty()) {
            EXPECT_EQ(item->copySource(), nullptr) << path;
        } else {
            ASSERT_NE(item->copySource(), nullptr) << path;
            EXPECT_EQ(item->copySource()->path()->string(), repositoryURL + copyFrom);
            EXPECT_EQ(std::to_string(item->copySource()->revision()->number()), attribute(attributes, "copyfrom-rev"));
        }
    }
    EXPECT_EQ(paths, items.size());
}

TEST_F(ContextTest, CommitsAskTheProviderForTheItemsSvnRecords)
{
    auto provider = std::make_shared<RecordingProvider>("first directories");
    context->setLogMessageProvider(provider);
    run(*context, [&](svn_client_ctx_t* ctx, apr_pool_t* pool) {
        return makeDirectories({repositoryURL + "/trunk/sub", repositoryURL + "/trunk/other"}, ctx, pool);
    });
    ASSERT_EQ(provider->asked.size(), 1u);
    EXPECT_EQ(youngestRevision(), "1");
    expectItemsAsCommitted(provider->asked[0], repositoryURL, 1, "");
    EXPECT_EQ(logMessage(repositoryURL, 1), "first directories");

    // A working-copy commit of every kind of change.
    const std::string wc = directory / "wc";
    tessera_test::checkout(repositoryURL, wc);
    tessera_test::writeFile(wc + "/trunk/a.txt", "a\n");
    tessera_test::writeFile(wc + "/trunk/b.txt", "b\n");
    ASSERT_EQ(tessera_test::svn({"add", wc + "/trunk/a.txt", wc + "/trunk/b.txt"}).status, 0);
    ASSERT_EQ(tessera_test::svn({"commit", "-m", "files", wc}).status, 0);
    tessera_test::writeFile(wc + "/trunk/a.txt", "changed\n");
    tessera_test::writeFile(wc + "/trunk/c.txt", "c\n");
    for (const std::vector<std::string>& change : std::vector<std::vector<std::string>>{
             {"add", wc + "/trunk/c.txt"},
             {"propset", "color", "blue", wc + "/trunk/sub"},
             {"rm", wc + "/trunk/b.txt"},
             {"cp", wc + "/trunk/a.txt", wc + "/trunk/d.txt"},
             {"cp", wc + "/trunk/sub", wc + "/trunk/copied"},
             {"propset", "color", "red", wc + "/trunk/copied"},
         })
        ASSERT_EQ(tessera_test::svn(change).status, 0);

    provider->answer = "every change";
    run(*context, [&](svn_client_ctx_t* ctx, apr_pool_t* pool) {
        svn_commit_info_t* info = nullptr;
        return LuSVNEntry<45>()(&info, textArray({wc}, pool), svn_depth_infinity, false, false, nullptr, nullptr, ctx,
                                pool);
    });
    ASSERT_EQ(provider->asked.size(), 2u);
    EXPECT_EQ(youngestRevision(), "3");
    expectItemsAsCommitted(provider->asked[1], repositoryURL, 3, wc);
    EXPECT_EQ(logMessage(repositoryURL, 3), "every change");
    EXPECT_EQ(tessera_test::svn({"propget", "--revprop", "-r", "3", "svn:author", repositoryURL}).output,
              context_test::author + "\n");
}

TEST_F(ContextTest, ProvidersDecideWhetherTheCommitHappens)
{
    const auto makeTrunk = [&] {
        run(*context, [&](svn_client_ctx_t* ctx, apr_pool_t* pool) {
            return makeDirectories({repositoryURL + "/trunk"}, ctx, pool);
        });
    };
    // A chain without answer abandons the commit, without an error.
    auto provider = std::make_shared<RecordingProvider>(std::nullopt);
    context->setLogMessageProvider(LuSVNSimpleLogMessageProvider::providerWithMessage(std::nullopt, provider));
    EXPECT_NO_THROW(makeTrunk());
    EXPECT_EQ(provider->asked.size(), 1u);
    EXPECT_EQ(youngestRevision(), "0");

    // A provider's exception is raised once Subversion has returned.
    provider->failure = std::runtime_error("provider failed");
    try {
        makeTrunk();
        ADD_FAILURE() << "the provider's exception was lost";
    } catch (const std::runtime_error& e) {
        EXPECT_STREQ(e.what(), "provider failed");
        EXPECT_EQ(dynamic_cast<const LuSVNException*>(&e), nullptr);
    }
    EXPECT_EQ(provider->asked.size(), 2u);
    EXPECT_EQ(youngestRevision(), "0");

    // Without provider the commit goes ahead with an empty message.
    context->setLogMessageProvider(nullptr);
    makeTrunk();
    EXPECT_EQ(youngestRevision(), "1");
    EXPECT_EQ(logMessage(repositoryURL, 1), "");
}

TEST_F(ContextTest, OlderBackendsHandOverTheirOwnRecords)
{
    // Backends before 1.5 give the log-message callback Subversion's older
    // commit records, and before 1.6 notify records without URLs.
    struct Row {
        const char* bundle;
        bool notifiesURLs;
    };
    int revision = 0;
    for (const Row& row : {Row{TESSERA_TEST_BUNDLE_1_4_6, false}, Row{TESSERA_TEST_BUNDLE_1_5_9, false},
                           Row{TESSERA_TEST_BUNDLE_1_6_23, true}}) {
        const auto older = makeContext(LuSVNBundleLoader::sharedInstance()->loadBundleAtPath(row.bundle));
        auto provider = std::make_shared<RecordingProvider>(row.bundle);
        auto recorder = std::make_shared<Recorder>();
        older->setLogMessageProvider(provider);
        older->setNotificationHandler(recorder);
        const std::string url = repositoryURL + "/directory" + std::to_string(++revision);
        run(*older, [&](svn_client_ctx_t* ctx, apr_pool_t* pool) {
            svn_commit_info_t* info = nullptr;
            // The 1.4 backend has only the older form of the function.
            return older->bundleVersion() < LuSVNVersion::version1_5()
                       ? LuSVNEntry<59>()(&info, textArray({url}, pool), ctx, pool)
                       : LuSVNEntry<60>()(&info, textArray({url}, pool), false, nullptr, ctx, pool);
        });
        ASSERT_EQ(provider->asked.size(), 1u) << row.bundle;
        expectItemsAsCommitted(provider->asked[0], repositoryURL, revision, "");
        EXPECT_EQ(logMessage(repositoryURL, revision), row.bundle);
        ASSERT_FALSE(recorder->notifications.empty()) << row.bundle;
        const bool anyURL = std::any_of(recorder->notifications.begin(), recorder->notifications.end(),
                                        [](const LuSVNNotification& n) { return n.URL() != nullptr; });
        EXPECT_EQ(anyURL, row.notifiesURLs) << row.bundle;
    }
}

// "A    <path>" lines of svn checkout, the paths relative to the working copy.
std::vector<std::string> svnCheckoutAdditions(const std::string& url, const std::string& path, std::string& revision)
{
    const auto result = tessera_test::svn({"checkout", url, path});
    EXPECT_EQ(result.status, 0) << result.output;
    std::vector<std::string> additions;
    const std::regex line("(?:^|\n)A    " + path + "(/[^\n]*)");
    for (std::sregex_iterator it(result.output.begin(), result.output.end(), line), end; it != end; ++it)
        additions.push_back((*it)[1]);
    std::smatch match;
    std::regex_search(result.output, match, std::regex("Checked out revision ([0-9]+)\\."));
    revision = match[1];
    return additions;
}

TEST_F(ContextTest, CheckoutNotifiesTheAdditionsSvnPrintsThroughTheFilters)
{
    const std::string tree = directory / "tree";
    std::filesystem::create_directories(tree + "/lib/deep");
    for (const char* file : {"README", "lib/a.c", "lib/deep/b.c", "lib/deep/c.h"})
        tessera_test::writeFile(tree + "/" + file, file);
    ASSERT_EQ(tessera_test::svn({"import", "-m", "tree", tree, repositoryURL + "/trunk"}).status, 0);

    // Everything reaches the head; the filter passes additions and the end.
    auto passed = std::make_shared<Recorder>();
    auto filter = LuSVNNotificationFilter::filterWithPredicate([](const LuSVNNotification& n) {
        return n.action() == LuSVNNotifyActionUpdateAdd || n.action() == LuSVNNotifyActionUpdateCompleted;
    });
    filter->setNextHandler(passed);
    auto all = std::make_shared<Recorder>(filter);
    context->setNotificationHandler(all);
    const std::string wc = directory / "wc";
    run(*context, [&](svn_client_ctx_t* ctx, apr_pool_t* pool) {
        return checkout(repositoryURL + "/trunk", wc, ctx, pool);
    });

    std::string svnRevision;
    auto expected = svnCheckoutAdditions(repositoryURL + "/trunk", directory / "svn-wc", svnRevision);
    std::vector<std::string> notified;
    for (const LuSVNNotification& n : passed->notifications) {
        if (n.action() == LuSVNNotifyActionUpdateAdd)
            notified.push_back(n.path()->substr(wc.size()));
    }
    std::sort(expected.begin(), expected.end());
    std::sort(notified.begin(), notified.end());
    EXPECT_EQ(notified, expected);
    EXPECT_EQ(expected.size(), 6u);
    ASSERT_EQ(passed->notifications.back().action(), LuSVNNotifyActionUpdateCompleted);
    EXPECT_EQ(std::to_string(passed->notifications.back().revision()), svnRevision);

    // The filter held back exactly the other actions.
    std::size_t others = 0;
    for (const LuSVNNotification& n : all->notifications)
        others += n.action() != LuSVNNotifyActionUpdateAdd && n.action() != LuSVNNotifyActionUpdateCompleted;
    EXPECT_GT(others, 0u);
    EXPECT_EQ(all->notifications.size(), passed->notifications.size() + others);
}

// A repository of a few thousand files, loaded once from a generated dump:
// one directory of files and many copies of it, since writing each file into
// a repository is slow and a copy is not.
class LongCheckoutTest : public ContextTest {
protected:
    static constexpr int files = 50;
    static constexpr int copies = 60;

    static void SetUpTestSuite()
    {
        repository = std::make_unique<tessera_test::TemporaryDirectory>();
        const std::string dump = *repository / "dump";
        const char* const noProperties = "Prop-content-length: 10\nContent-length: 10\n\nPROPS-END\n\n";
        std::ofstream out(dump, std::ios::binary);
        out << "SVN-fs-dump-format-version: 2\n\nRevision-number: 1\n" << noProperties
            << "Node-path: d\nNode-kind: dir\nNode-action: add\n" << noProperties;
        for (int f = 0; f < files; ++f) {
            const std::string text = "file " + std::to_string(f) + "\n";
            out << "Node-path: d/f" << f << ".txt\nNode-kind: file\nNode-action: add\nProp-content-length: 10\n"
                << "Text-content-length: " << text.size() << "\nContent-length: " << text.size() + 10
                << "\n\nPROPS-END\n" << text << "\n";
        }
        out << "Revision-number: 2\n" << noProperties;
        for (int c = 0; c < copies; ++c)
            out << "Node-path: c" << c << "\nNode-kind: dir\nNode-action: add\nNode-copyfrom-rev: 1\n"
                << "Node-copyfrom-path: d\n\n";
        out.close();
        url = tessera_test::makeRepository(*repository / "repository");
        const auto result =
            tessera_test::run({TESSERA_SVNADMIN_PROGRAM, "load", "-q", "-F", dump, *repository / "repository"});
        ASSERT_EQ(result.status, 0) << result.output;
    }

    static void TearDownTestSuite() { repository.reset(); }

    static inline std::unique_ptr<tessera_test::TemporaryDirectory> repository;
    static inline std::string url;
};

TEST_F(LongCheckoutTest, DelegateCancelsAndTheWorkingCopyCanBeCleanedUp)
{
    auto recorder = std::make_shared<Recorder>();
    auto delegate = std::make_shared<Delegate>();
    delegate->recorder = recorder;
    delegate->cancelAfterAdditions = 100;
    context->setNotificationHandler(recorder);
    context->setDelegate(delegate);

    const std::string wc = directory / "wc";
    EXPECT_THROW(run(*context, [&](svn_client_ctx_t* ctx, apr_pool_t* pool) { return checkout(url, wc, ctx, pool); }),
                 LuSVNOperationCancelledException);
    EXPECT_GE(recorder->count(LuSVNNotifyActionUpdateAdd), 100u);
    EXPECT_LT(recorder->count(LuSVNNotifyActionUpdateAdd), 200u);

    auto result = tessera_test::svn({"cleanup", wc});
    EXPECT_EQ(result.status, 0) << result.output;
    result = tessera_test::svn({"status", wc});
    EXPECT_EQ(result.status, 0) << result.output;
}

TEST_F(LongCheckoutTest, FailingHandlerStopsTheOperationWithItsException)
{
    auto recorder = std::make_shared<Recorder>();
    recorder->failAt = 20;
    context->setNotificationHandler(recorder);
    EXPECT_THROW(run(*context,
                     [&](svn_client_ctx_t* ctx, apr_pool_t* pool) {
                         return checkout(url, directory / "wc", ctx, pool);
                     }),
                 std::out_of_range);
    // No notification reached the handler after its failure.
    EXPECT_EQ(recorder->notifications.size(), 20u);
}

TEST_F(ContextTest, FailingDelegateDoesNotCancel)
{
    const std::string tree = directory / "tree";
    std::filesystem::create_directories(tree);
    for (int f = 0; f < 20; ++f)
        tessera_test::writeFile(tree + "/f" + std::to_string(f), "x");
    ASSERT_EQ(tessera_test::svn({"import", "-m", "tree", tree, repositoryURL}).status, 0);

    auto recorder = std::make_shared<Recorder>();
    auto delegate = std::make_shared<Delegate>();
    delegate->raises = true;
    context->setNotificationHandler(recorder);
    context->setDelegate(delegate);
    run(*context, [&](svn_client_ctx_t* ctx, apr_pool_t* pool) {
        return checkout(repositoryURL, directory / "wc", ctx, pool);
    });
    EXPECT_GT(delegate->asked, 0);
    EXPECT_EQ(recorder->count(LuSVNNotifyActionUpdateAdd), 20u);
    EXPECT_EQ(tessera_test::svn({"status", directory / "wc"}).status, 0);

    // The context does not keep its delegate alive.
    delegate.reset();
    EXPECT_EQ(context->delegate(), nullptr);
}

// The lock of a working-copy file as "svn info --xml" reports it.
std::string lockField(const std::string& path, const std::string& field)
{
    const auto result = tessera_test::svn({"info", "--xml", path});
    std::smatch match;
    std::regex_search(result.output, match, std::regex("<lock>[^]*<" + field + ">([^<]*)</" + field + ">"));
    return match[1];
}

TEST_F(ContextTest, LockNotificationsCarryTheLockSvnReports)
{
    const std::string wc = directory / "wc";
    tessera_test::checkout(repositoryURL, wc);
    tessera_test::writeFile(wc + "/a.txt", "a\n");
    tessera_test::writeFile(wc + "/b.txt", "b\n");
    ASSERT_EQ(tessera_test::svn({"add", wc + "/a.txt", wc + "/b.txt"}).status, 0);
    ASSERT_EQ(tessera_test::svn({"commit", "-m", "files", wc}).status, 0);

    auto recorder = std::make_shared<Recorder>();
    context->setNotificationHandler(recorder);
    const auto before = std::chrono::system_clock::now() - std::chrono::seconds(1);
    for (const auto& [file, comment] : {std::pair<std::string, const char*>{"a.txt", "editing"}, {"b.txt", nullptr}}) {
        const std::string path = wc + "/" + file;
        run(*context, [&](svn_client_ctx_t* ctx, apr_pool_t* pool) {
            return LuSVNEntry<57>()(textArray({path}, pool), comment, false, ctx, pool);
        });
        ASSERT_EQ(recorder->count(LuSVNNotifyActionLocked), 1u) << file;
        const auto locked = std::find_if(recorder->notifications.begin(), recorder->notifications.end(),
                                         [](const auto& n) { return n.action() == LuSVNNotifyActionLocked; });
        EXPECT_EQ(locked->path(), path);
        EXPECT_EQ(locked->lockState(), svn_wc_notify_lock_state_locked);
        const auto& lock = locked->lock();
        ASSERT_NE(lock, nullptr) << file;
        EXPECT_EQ(lock->token(), lockField(path, "token"));
        EXPECT_EQ(lock->owner(), lockField(path, "owner"));
        EXPECT_EQ(lock->owner(), context_test::author);
        EXPECT_EQ(lock->path()->string(), "/" + file);
        EXPECT_EQ(lock->comment(), comment ? std::optional<std::string>(comment) : std::nullopt);
        ASSERT_TRUE(lock->creationDate().has_value());
        EXPECT_GT(*lock->creationDate(), before);
        EXPECT_EQ(lock->expirationDate(), std::nullopt);
        recorder->notifications.clear();
    }
}

}  // namespace
