// Authentication against a real svnserve on 127.0.0.1, started and stopped
// by the tests: Subversion's client asks the stack's providers through the
// bridge for the password of a repository that refuses anonymous access.
#include <tessera/LuSVNBuiltInAuthenticationProvider.h>
#include <tessera/LuSVNBundleLoader.h>
#include <tessera/LuSVNBundleStack.h>
#include <tessera/LuSVNDefinitions.h>
#include <tessera/LuSVNException.h>

#include <gtest/gtest.h>

#include <signal.h>
#include <unistd.h>

#include "LuSVNAuthTestSupport.h"
#include "LuSVNBackendFrame.h"
#include "LuSVNProviderException.h"
#include "TesseraSvnserve.h"

using namespace auth_test;

namespace {

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

    tessera_test::Svnserve server;
    tessera_test::TemporaryDirectory configDirectory;
    const std::shared_ptr<LuSVNBundleProxy> backend = LuSVNBundleLoader::sharedInstance()->newestBundle();
    LuSVNBackendFrame frame{backend};
    svn_client_ctx_t* context = nullptr;
    std::shared_ptr<LuSVNAuthenticationStack> stack = LuSVNAuthenticationStack::stackWithBundle(backend);
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
