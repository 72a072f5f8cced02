// Operations that fail midway lose nothing: a server that dies, a
// cancellation, a full disk. The working copy is repaired by a clean-up and
// the repository holds whole revisions only.
#include <tessera/LuSVNCheckOutOptions.h>
#include <tessera/LuSVNCommitOptions.h>
#include <tessera/LuSVNSimpleLogMessageProvider.h>
#include <tessera/LuSVNUpdateOptions.h>

#include <gtest/gtest.h>

#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <random>

#include "OperationsTestSupport.h"
#include "TesseraSvnserve.h"

using namespace tessera_operations_test;
using tessera_test::svn;

namespace {

constexpr int fileCount = 12;
constexpr std::size_t fileSize = 512 * 1024;

// Incompressible files, so that the server is still sending (or the client
// still writing) when it is killed: more than the loopback buffers hold.
void writeLargeFiles(const std::string& directory, const std::string& prefix)
{
    std::filesystem::create_directories(directory);
    std::mt19937 random(42);
    for (int index = 0; index < fileCount; ++index) {
        std::ofstream out(directory + "/" + prefix + std::to_string(index), std::ios::binary);
        std::string data(fileSize, '\0');
        for (char& byte : data)
            byte = static_cast<char>(random());
        out << data;
    }
}

// One svnserve per test (some kill it); its repository holds "small" (one
// file) at r1 and "big" (the large files) at r2.
class OperationFaults : public ::testing::Test {
protected:
    static void SetUpTestSuite()
    {
        // A write to a server that is gone must fail, not end the process.
        signal(SIGPIPE, SIG_IGN);
        tree = new tessera_test::TemporaryDirectory();
        writeLargeFiles(*tree / "big", "f");
        tessera_test::writeFile(*tree / "small.txt", "small\n");
    }
    static void TearDownTestSuite()
    {
        delete tree;
        tree = nullptr;
    }

    void SetUp() override
    {
        const std::string local = "file://" + server.repositoryPath();
        ASSERT_EQ(svn({"import", "-q", "-m", "small", *tree / "small.txt", local + "/small/small.txt"}).status, 0);
        ASSERT_EQ(svn({"import", "-q", "-m", "big", *tree / "big", local + "/big"}).status, 0);
        context = contextFor(nullptr);
        context->authenticationStack()->addProvider(std::make_shared<tessera_test::SvnservePasswordProvider>());
        context->setLogMessageProvider(LuSVNSimpleLogMessageProvider::providerWithMessage("interrupted"));
        recorder = std::make_shared<Recorder>();
        context->setNotificationHandler(recorder);
    }

    // Kills the server once the handler has seen `count` notifications of the action.
    void killServerAfter(std::int32_t action, std::size_t count)
    {
        recorder->onNotify = [this, action, count](const LuSVNNotification&) {
            if (recorder->count(action) == count)
                server.kill();
        };
    }

    // The repository is whole: svnadmin verify passes and no revision
    // beyond `youngest` was made.
    void expectWholeRepository(const std::string& youngest)
    {
        const auto verify = tessera_test::run({TESSERA_SVNADMIN_PROGRAM, "verify", "-q", server.repositoryPath()});
        EXPECT_EQ(verify.status, 0) << verify.output;
        const std::string svnlook =
            (std::filesystem::path(TESSERA_SVNADMIN_PROGRAM).parent_path() / "svnlook").string();
        const auto head = tessera_test::run({svnlook, "youngest", server.repositoryPath()});
        EXPECT_EQ(head.output, youngest + "\n");
    }

    // Both the library's and svn's clean-up repair the working copy, after
    // which svn reads it without complaint.
    void expectRepairable(const std::string& wc)
    {
        LuSVNDirectory::cleanUpWorkingCopyAtPath(local(wc), context);
        const auto cleanup = svn({"cleanup", wc});
        EXPECT_EQ(cleanup.status, 0) << cleanup.output;
        const auto status = svn({"status", wc});
        EXPECT_EQ(status.status, 0) << status.output;
    }

    static inline tessera_test::TemporaryDirectory* tree = nullptr;
    tessera_test::Svnserve server;
    tessera_test::TemporaryDirectory directory;
    std::shared_ptr<LuSVNContext> context;
    std::shared_ptr<Recorder> recorder;
};

TEST_F(OperationFaults, ServerKilledDuringCheckOut)
{
    killServerAfter(LuSVNNotifyActionUpdateAdd, 2);
    const std::string wc = directory / "wc";
    try {
        LuSVNDirectory::checkoutDirectoryAtURL(url(server.url() + "/big"), local(wc), {}, context);
        ADD_FAILURE() << "the check-out outlived its server";
    } catch (const LuSVNException& failure) {
        // The connection closed under the client (SVN_ERR_RA_SVN_CONNECTION_CLOSED).
        EXPECT_EQ(failure.status(), 210002) << failure.reason();
    }
    EXPECT_LT(recorder->count(LuSVNNotifyActionUpdateAdd), static_cast<std::size_t>(fileCount));
    EXPECT_EQ(recorder->notifications.back().action(), LuSVNNotifyActionCheckOutFailed);
    expectRepairable(wc);
    expectWholeRepository("2");
}

TEST_F(OperationFaults, ServerKilledDuringUpdate)
{
    const std::string wc = directory / "wc";
    LuSVNCheckOutOptions atFirst;
    atFirst.setRevision(LuSVNRevisionSpec::revisionWithNumber(1));
    EXPECT_EQ(LuSVNDirectory::checkoutDirectoryAtURL(url(server.url()), local(wc), atFirst, context), 1);
    killServerAfter(LuSVNNotifyActionUpdateAdd, 2);
    try {
        LuSVNNode::updateNodes({local(wc)}, LuSVNRevisionSpec::HEAD(), {}, context);
        ADD_FAILURE() << "the update outlived its server";
    } catch (const LuSVNException& failure) {
        // The connection closed, or the update's second session to fetch
        // the files could not be opened (SVN_ERR_RA_CANNOT_CREATE_SESSION).
        EXPECT_TRUE(failure.status() == 210002 || failure.status() == 170013) << failure.reason();
    }
    EXPECT_EQ(recorder->notifications.back().action(), LuSVNNotifyActionUpdateFailed);
    expectRepairable(wc);
    EXPECT_EQ(svnInfo(wc + "/small/small.txt", "revision"), "1");
    expectWholeRepository("2");
}

TEST_F(OperationFaults, ServerKilledDuringCommit)
{
    const std::string wc = directory / "wc";
    LuSVNCheckOutOptions smallOnly;
    smallOnly.setRevision(LuSVNRevisionSpec::revisionWithNumber(1));
    LuSVNDirectory::checkoutDirectoryAtURL(url(server.url() + "/small"), local(wc), smallOnly, context);
    writeLargeFiles(wc + "/new", "n");
    LuSVNNode::add(local(wc + "/new"), context);
    killServerAfter(LuSVNNotifyActionCommitPostfixTXDelta, 1);
    EXPECT_THROW(LuSVNNode::commitChangesToNodes({local(wc)}, {}, context), LuSVNException);
    EXPECT_EQ(recorder->notifications.back().action(), LuSVNNotifyActionCommitFailed);
    expectRepairable(wc);
    // Every addition is still scheduled, ready for the next try.
    const std::string status = svnStatus(wc);
    EXPECT_EQ(std::count(status.begin(), status.end(), '\n'), fileCount + 1) << status;
    EXPECT_EQ(status.find("A       " + wc + "/new\n"), 0u) << status;
    expectWholeRepository("2");
}

// Cancels once the handler has seen enough additions.
class CancellingDelegate : public LuSVNContextDelegate {
public:
    void contextQueryContinue(LuSVNContext&, bool& shouldContinue) override
    {
        shouldContinue = recorder->count(LuSVNNotifyActionUpdateAdd) < 2;
    }
    std::shared_ptr<Recorder> recorder;
};

TEST_F(OperationFaults, CancelledUpdateIsRepairedAndCanBeRunAgain)
{
    const std::string wc = directory / "wc";
    const std::string repository = "file://" + server.repositoryPath();
    LuSVNCheckOutOptions atFirst;
    atFirst.setRevision(LuSVNRevisionSpec::revisionWithNumber(1));
    LuSVNDirectory::checkoutDirectoryAtURL(url(repository), local(wc), atFirst, context);
    auto delegate = std::make_shared<CancellingDelegate>();
    delegate->recorder = recorder;
    context->setDelegate(delegate);
    EXPECT_THROW(LuSVNNode::updateNodes({local(wc)}, LuSVNRevisionSpec::HEAD(), {}, context),
                 LuSVNOperationCancelledException);
    EXPECT_LT(recorder->count(LuSVNNotifyActionUpdateAdd), static_cast<std::size_t>(fileCount));
    // The clean-up asks the delegate too.
    context->setDelegate(std::weak_ptr<LuSVNContextDelegate>());
    expectRepairable(wc);

    EXPECT_EQ(LuSVNNode::updateNodes({local(wc)}, LuSVNRevisionSpec::HEAD(), {}, context),
              std::vector<std::int32_t>{2});
    EXPECT_EQ(svnStatus(wc), "");
    EXPECT_EQ(svnInfo(wc + "/big/f" + std::to_string(fileCount - 1), "revision"), "2");
}

TEST_F(OperationFaults, FileSizeLimitDuringCheckOutGivesAClearError)
{
    const std::string wc = directory / "wc";
    const std::string repository = "file://" + server.repositoryPath() + "/big";
    int channel[2];
    ASSERT_EQ(pipe(channel), 0);
    const pid_t child = fork();
    ASSERT_NE(child, -1);
    if (child == 0) {
        // Below one file's size: the first large file cannot be written.
        const rlimit limit{fileSize / 2, fileSize / 2};
        signal(SIGXFSZ, SIG_IGN);
        setrlimit(RLIMIT_FSIZE, &limit);
        std::string text = "no error";
        try {
            LuSVNDirectory::checkoutDirectoryAtURL(url(repository), local(wc), {}, context);
        } catch (const LuSVNException& failure) {
            text = failure.reason();
        }
        [[maybe_unused]] auto written = write(channel[1], text.data(), text.size());
        _exit(0);
    }
    close(channel[1]);
    std::string text;
    char buffer[512];
    for (ssize_t got; (got = read(channel[0], buffer, sizeof buffer)) > 0;)
        text.append(buffer, static_cast<std::size_t>(got));
    close(channel[0]);
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    EXPECT_NE(text.find("File too large"), std::string::npos) << text;
    expectRepairable(wc);
}

TEST_F(OperationFaults, ProgressReportsBytesOverTheNetwork)
{
    std::vector<LuSVNProgress> reports;
    context->setProgressHandler([&](const LuSVNProgress& progress) { reports.push_back(progress); });
    LuSVNDirectory::checkoutDirectoryAtURL(url(server.url() + "/big"), local(directory / "wc"), {}, context);
    ASSERT_FALSE(reports.empty());
    std::int64_t bytes = 0;
    for (const auto& report : reports)
        bytes = std::max(bytes, report.bytes);
    EXPECT_GT(bytes, static_cast<std::int64_t>(fileSize));
    // The last report comes after the last file: every item counted.
    EXPECT_EQ(reports.back().items, fileCount + 1);
}

}  // namespace
