// Authentication against a real svnserve on 127.0.0.1, started and stopped
// by the tests: Subversion's client asks the stack's providers through the
// bridge for the password of a repository that refuses anonymous access.
#include <tessera/LuSVNBuiltInAuthenticationProvider.h>
#include <tessera/LuSVNBundleLoader.h>
#include <tessera/LuSVNBundleStack.h>
#include <tessera/LuSVNDefinitions.h>
#include <tessera/LuSVNException.h>

#include <gtest/gtest.h>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <thread>

#include "LuSVNAuthTestSupport.h"
#include "LuSVNBackendFrame.h"
#include "LuSVNProviderException.h"
#include "TesseraTestSupport.h"

using namespace auth_test;

namespace {

constexpr const char* realmName = "Tessera Test Realm";

int freeLoopbackPort()
{
    const int socket = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    if (bind(socket, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0 ||
        getsockname(socket, reinterpret_cast<sockaddr*>(&address), &length) != 0)
        throw std::runtime_error("no free port on 127.0.0.1");
    close(socket);
    return ntohs(address.sin_port);
}

bool acceptsConnections(int port)
{
    const int socket = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    const bool connected = connect(socket, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0;
    close(socket);
    return connected;
}

// svnserve for one repository with user "alice", password "wonderland";
// anonymous access refused. Killed when the object goes, and by the kernel
// should the test process die first.
class Svnserve {
public:
    Svnserve()
    {
        const std::string repository = root / "repo";
        tessera_test::makeRepository(repository);
        tessera_test::writeFile(repository + "/conf/svnserve.conf",
                                "[general]\nanon-access = none\nauth-access = write\npassword-db = passwd\n"
                                "realm = " + std::string(realmName) + "\n");
        tessera_test::writeFile(repository + "/conf/passwd", "[users]\nalice = wonderland\n");
        const std::string svnserve =
            (std::filesystem::path(TESSERA_SVNADMIN_PROGRAM).parent_path() / "svnserve").string();
        port_ = freeLoopbackPort();
        const std::vector<std::string> arguments{svnserve, "-d", "--foreground", "--threads", "--listen-host",
                                                 "127.0.0.1", "--listen-port", std::to_string(port_), "-r",
                                                 root.path()};
        pid_ = fork();
        if (pid_ == 0) {
            prctl(PR_SET_PDEATHSIG, SIGKILL);
            std::vector<char*> argv;
            for (const auto& argument : arguments)
                argv.push_back(const_cast<char*>(argument.c_str()));
            argv.push_back(nullptr);
            execv(argv[0], argv.data());
            _exit(127);
        }
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
        while (!acceptsConnections(port_)) {
            if (waitpid(pid_, nullptr, WNOHANG) == pid_) {
                pid_ = -1;
                throw std::runtime_error("svnserve exited at start");
            }
            if (std::chrono::steady_clock::now() > deadline) {
                stop();
                throw std::runtime_error("svnserve did not listen within 10 s");
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
    }
    ~Svnserve() { stop(); }
    Svnserve(const Svnserve&) = delete;
    Svnserve& operator=(const Svnserve&) = delete;

    std::string url() const { return "svn://127.0.0.1:" + std::to_string(port_) + "/repo"; }
    std::string realm() const { return "<svn://127.0.0.1:" + std::to_string(port_) + "> " + realmName; }

private:
    void stop()
    {
        if (pid_ <= 0)
            return;
        kill(pid_, SIGTERM);
        for (int i = 0; i < 100 && waitpid(pid_, nullptr, WNOHANG) == 0; ++i)
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        if (kill(pid_, SIGKILL) == 0)
            waitpid(pid_, nullptr, 0);
        pid_ = -1;
    }

    tessera_test::TemporaryDirectory root;
    int port_ = 0;
    pid_t pid_ = -1;
};

// Subversion's "svn.simple" provider (entry point 78) as an object: it
// answers from the default user name and password parameters.
class WrappedSimpleProvider : public LuSVNBuiltInAuthenticationProvider {
public:
    const LuSVNCredentialsClass& credentialsClass() const override { return LuSVNSimpleCredentials::classObject(); }
    svn_auth_provider_object_t* builtInProviderObjectFromPool(apr_pool_t* pool) override
    {
        svn_auth_provider_object_t* provider = nullptr;
        LuSVNEntry<78>()(&provider, nullptr, nullptr, pool);
        return provider;
    }
    std::shared_ptr<LuSVNAuthenticationProvider> copy() const override
    {
        return std::make_shared<WrappedSimpleProvider>(*this);
    }
};

// A client context made as the library's context makes it, whose baton is
// kept up to date by the stack's delegate. A watchdog ends the process
// should Subversion ever hang on the server.
class SvnserveAuthenticationTest : public testing::Test {
protected:
    SvnserveAuthenticationTest()
    {
        signal(SIGALRM, [](int) {
            constexpr char message[] = "svnserve authentication test timed out\n";
            [[maybe_unused]] auto written = write(STDERR_FILENO, message, sizeof message - 1);
            _exit(2);
        });
        alarm(60);
        LuSVNThrowIfError(LuSVNEntry<47>()(&context, frame.pool()));
        LuSVNThrowIfError(LuSVNEntry<38>()(&context->config, configDirectory.path().c_str(), frame.pool()));
        recorder->context = context;
        stack->setDelegate(recorder);
        context->auth_baton = stack->baton();
    }
    ~SvnserveAuthenticationTest() override { alarm(0); }

    // Lists the repository's root; the raw error, or null on success.
    svn_error_t* list()
    {
        svn_opt_revision_t head{};
        head.kind = svn_opt_revision_head;
        auto ignore = [](void*, const char*, const svn_dirent_t*, const svn_lock_t*, const char*,
                         apr_pool_t*) -> svn_error_t* { return nullptr; };
        return LuSVNEntry<56>()(server.url().c_str(), &head, &head, false, SVN_DIRENT_KIND, false, ignore, nullptr,
                                context, frame.pool());
    }

    static std::shared_ptr<LuSVNCredentials> alice(const char* password)
    {
        return LuSVNSimpleCredentials::credentialsWithUsername("alice", password);
    }

    Svnserve server;
    tessera_test::TemporaryDirectory configDirectory;
    const std::shared_ptr<LuSVNBundleProxy> backend = LuSVNBundleLoader::sharedInstance()->newestBundle();
    LuSVNBackendFrame frame{backend};
    svn_client_ctx_t* context = nullptr;
    std::shared_ptr<LuSVNAuthenticationStack> stack = LuSVNAuthenticationStack::stackWithBundle(backend, frame.pool());
    std::shared_ptr<BatonRecorder> recorder = std::make_shared<BatonRecorder>();
};

TEST_F(SvnserveAuthenticationTest, WrongPasswordThenTheRightOneOnRetry)
{
    auto provider = std::make_shared<ScriptedProvider>();
    provider->first = [](const LuSVNAuthParameters&, std::shared_ptr<void>&) { return alice("looking-glass"); };
    provider->next = [](std::int32_t retryCount, const std::shared_ptr<void>&) {
        return retryCount == 1 ? alice("wonderland") : nullptr;
    };
    provider->saves = true;  // else Subversion offers the credentials to every provider of the kind
    stack->addProvider(provider);
    ASSERT_EQ(context->auth_baton, stack->baton());

    LuSVNThrowIfError(list());
    EXPECT_EQ(provider->requests, (Requests{"first " + server.realm(), "next " + server.realm() + " 1",
                                            "save svn.simple (alice, **********)"}));
}

TEST_F(SvnserveAuthenticationTest, ProviderExceptionIsRaisedAfterSubversionReturns)
{
    auto provider = std::make_shared<ScriptedProvider>();
    provider->first = [](const LuSVNAuthParameters&, std::shared_ptr<void>&) -> std::shared_ptr<LuSVNCredentials> {
        throw ProviderFailure(42);
    };
    stack->addProvider(provider);
    svn_error_t* error = list();
    ASSERT_NE(error, nullptr);
    bool found = false;
    for (const svn_error_t* link = error; link; link = link->child)
        found = found || (link->apr_err == LuSVNGenericErrorStatus && link->message &&
                          std::string(link->message) == "Authentication provider raised an exception (first credentials)");
    EXPECT_TRUE(found);
    EXPECT_EQ(LuSVNBundleCurrent(), backend);
    try {
        LuSVNThrowIfError(tessera_private::LuSVNRethrowProviderException(error));
        ADD_FAILURE() << "nothing raised";
    } catch (const ProviderFailure& failure) {
        EXPECT_EQ(failure.serial, 42);
    }
}

TEST_F(SvnserveAuthenticationTest, SubversionsOwnProviderAnswersFromTheParameters)
{
    stack->setProviders({std::make_shared<WrappedSimpleProvider>()});
    // After the change of providers: parameters belong to the new baton.
    stack->setValue(std::string("alice"), LuSVNAuthParamDefaultUsername);
    stack->setValue(std::string("wonderland"), LuSVNAuthParamDefaultPassword);
    stack->setValue(std::string(configDirectory.path()), LuSVNAuthParamConfigDirectory);
    stack->setValue(true, LuSVNAuthParamNoCache);
    EXPECT_EQ(context->auth_baton, stack->baton());
    LuSVNThrowIfError(list());

    // A change of providers drops them: the server refuses.
    stack->addProvider(std::make_shared<ScriptedProvider>());
    EXPECT_THROW(LuSVNThrowIfError(list()), LuSVNException);
}

}  // namespace
