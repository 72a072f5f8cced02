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
#include <cstring>
#include <functional>
#include <random>

#include "OperationsTestSupport.h"
#include "TesseraSvnserve.h"

using namespace tessera_operations_test;
using tessera_test::svn;

namespace {

constexpr int fileCount = 8;
constexpr std::size_t fileSize = 16 * 1024;
constexpr std::size_t largeFileSize = 2 * 1024 * 1024;

// Incompressible files.
void writeRandomFiles(const std::string& directory, const std::string& prefix, int count, std::size_t size)
{
    std::filesystem::create_directories(directory);
    std::mt19937_64 random(42);
    for (int index = 0; index < count; ++index) {
        std::ofstream out(directory + "/" + prefix + std::to_string(index), std::ios::binary);
        std::string data(size, '\0');
        for (std::size_t at = 0; at + 8 <= size; at += 8) {
            const std::uint64_t word = random();
            std::memcpy(data.data() + at, &word, 8);
        }
        out << data;
    }
}

// The most a TCP connection of this machine holds in flight: the largest
// receive buffer of the client and send buffer of the server.
std::size_t bytesInFlight()
{
    std::size_t total = 0;
    for (const char* name : {"/proc/sys/net/ipv4/tcp_rmem", "/proc/sys/net/ipv4/tcp_wmem"}) {
        std::ifstream in(name);
        std::size_t least = 0, initial = 0, most = 0;
        in >> least >> initial >> most;
        total += most;
    }
    return total;
}

// One svnserve per test (some kill it); its repository holds "one/x.txt"
// and "two/y.txt" at r1, both changed at r2, and "big" (small random files)
// at r3.
class OperationFaults : public ::testing::Test {
protected:
    static void SetUpTestSuite()
    {
        // A write to a server that is gone must fail, not end the process.
        signal(SIGPIPE, SIG_IGN);
    }

    void SetUp() override
    {
        std::filesystem::create_directories(directory / "tree/one");
        std::filesystem::create_directories(directory / "tree/two");
        tessera_test::writeFile(directory / "tree/one/x.txt", "x\n");
        tessera_test::writeFile(directory / "tree/two/y.txt", "y\n");
        writeRandomFiles(directory / "big", "f", fileCount, fileSize);
        ASSERT_EQ(svn({"import", "-q", "-m", "small", directory / "tree", repository}).status, 0);
        tessera_test::checkout(repository, directory / "writer");
        tessera_test::writeFile(directory / "writer/one/x.txt", "x2\n");
        tessera_test::writeFile(directory / "writer/two/y.txt", "y2\n");
        ASSERT_EQ(svn({"commit", "-q", "-m", "change", directory / "writer"}).status, 0);
        ASSERT_EQ(svn({"import", "-q", "-m", "big", directory / "big", repository + "/big"}).status, 0);
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

    // The connection closed under the client (SVN_ERR_RA_SVN_CONNECTION_CLOSED),
    // or a new one could not be made (SVN_ERR_RA_CANNOT_CREATE_SESSION).
    static void expectLostConnection(const std::function<void()>& operation)
    {
        try {
            operation();
            ADD_FAILURE() << "the operation outlived its server";
        } catch (const LuSVNException& failure) {
            EXPECT_TRUE(failure.status() == 210002 || failure.status() == 170013) << failure.reason();
        }
    }

    tessera_test::TemporaryDirectory directory;
    tessera_test::Svnserve server;
    const std::string repository = "file://" + server.repositoryPath();
    std::shared_ptr<LuSVNContext> context;
    std::shared_ptr<Recorder> recorder;
};

// Only more data than the connection holds in flight makes sure that the
// server dies with part of the check-out unsent.
TEST_F(OperationFaults, ServerKilledDuringCheckOut)
{
    const int count = static_cast<int>(bytesInFlight() / largeFileSize) + 3;
    writeRandomFiles(directory / "large", "l", count, largeFileSize);
    ASSERT_EQ(svn({"import", "-q", "-m", "large", directory / "large", repository + "/large"}).status, 0);
    std::filesystem::remove_all(directory / "large");
    killServerAfter(LuSVNNotifyActionUpdateAdd, 1);
    const std::string wc = directory / "wc";
    expectLostConnection(
        [&] { LuSVNDirectory::checkoutDirectoryAtURL(url(server.url() + "/large"), local(wc), {}, context); });
    EXPECT_LT(recorder->count(LuSVNNotifyActionUpdateAdd), static_cast<std::size_t>(count));
    EXPECT_EQ(recorder->notifications.back().action(), LuSVNNotifyActionCheckOutFailed);
    expectRepairable(wc);
    expectWholeRepository("4");
}

// The update of the second target needs the server again, after the first
// target's update completed.
TEST_F(OperationFaults, ServerKilledDuringUpdate)
{
    const std::string wc = directory / "wc";
    LuSVNCheckOutOptions atFirst;
    atFirst.setRevision(LuSVNRevisionSpec::revisionWithNumber(1));
    EXPECT_EQ(LuSVNDirectory::checkoutDirectoryAtURL(url(server.url()), local(wc), atFirst, context), 1);
    recorder->notifications.clear();
    killServerAfter(LuSVNNotifyActionUpdateCompleted, 1);
    expectLostConnection([&] {
        LuSVNNode::updateNodes({local(wc + "/one"), local(wc + "/two")}, LuSVNRevisionSpec::HEAD(), {}, context);
    });
    EXPECT_EQ(recorder->notifications.back().action(), LuSVNNotifyActionUpdateFailed);
    expectRepairable(wc);
    EXPECT_EQ(svnInfo(wc + "/one/x.txt", "revision"), "3");
    EXPECT_EQ(svnInfo(wc + "/two/y.txt", "revision"), "1");
    expectWholeRepository("3");
}

TEST_F(OperationFaults, ServerKilledDuringCommit)
{
    const std::string wc = directory / "wc";
    LuSVNCheckOutOptions smallOnly;  // the commit's answer needs the server, however little is sent
    smallOnly.setRevision(LuSVNRevisionSpec::revisionWithNumber(1));
    LuSVNDirectory::checkoutDirectoryAtURL(url(server.url() + "/one"), local(wc), smallOnly, context);
    writeRandomFiles(wc + "/new", "n", fileCount, fileSize);
    LuSVNNode::add(local(wc + "/new"), context);
    killServerAfter(LuSVNNotifyActionCommitPostfixTXDelta, 1);
    EXPECT_THROW(LuSVNNode::commitChangesToNodes({local(wc)}, {}, context), LuSVNException);
    EXPECT_EQ(recorder->notifications.back().action(), LuSVNNotifyActionCommitFailed);
    expectRepairable(wc);
    // Every addition is still scheduled, ready for the next try.
    const std::string status = svnStatus(wc);
    EXPECT_EQ(std::count(status.begin(), status.end(), '\n'), fileCount + 1) << status;
    EXPECT_EQ(status.find("A       " + wc + "/new\n"), 0u) << status;
    expectWholeRepository("3");
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
              std::vector<std::int32_t>{3});
    EXPECT_EQ(svnStatus(wc), "");
    EXPECT_EQ(svnInfo(wc + "/big/f" + std::to_string(fileCount - 1), "revision"), "3");
}

TEST_F(OperationFaults, FileSizeLimitDuringCheckOutGivesAClearError)
{
    const std::string wc = directory / "wc";
    writeRandomFiles(directory / "huge", "h", 1, largeFileSize);
    ASSERT_EQ(svn({"import", "-q", "-m", "huge", directory / "huge", repository + "/huge"}).status, 0);
    int channel[2];
    ASSERT_EQ(pipe(channel), 0);
    const pid_t child = fork();
    ASSERT_NE(child, -1);
    if (child == 0) {
        // Room for the working copy's database, not for the file.
        const rlimit limit{largeFileSize / 4, largeFileSize / 4};
        signal(SIGXFSZ, SIG_IGN);
        setrlimit(RLIMIT_FSIZE, &limit);
        std::string text = "no error";
        try {
            LuSVNDirectory::checkoutDirectoryAtURL(url(repository + "/huge"), local(wc), {}, context);
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
