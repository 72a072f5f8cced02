// The bridge between Subversion's provider callbacks and provider objects,
// called the way Subversion calls it, and the realm parser.
#include <tessera/LuSVNAuthParameters.h>
#include <tessera/LuSVNAuthenticationIterator.h>
#include <tessera/LuSVNBundleLoader.h>
#include <tessera/LuSVNBundleStack.h>
#include <tessera/LuSVNException.h>
#include <tessera/LuSVNPlatformExceptions.h>

#include <gtest/gtest.h>

#include "LuSVNAuthTestSupport.h"
#include "LuSVNBackendFrame.h"
#include "LuSVNProviderException.h"
#include "TesseraTestSupport.h"

using namespace auth_test;

namespace {

TEST(ParseRealmTest, NetworkRealms)
{
    struct Case {
        std::string realm;
        bool parsed;
        std::optional<std::string> url, name;
    };
    const Case cases[] = {
        {"<svn://host:3690> Project ", true, "svn://host:3690", "Project"},
        {"< https://h/r >\n Two words\t", true, "https://h/r", "Two words"},
        {"<svn://h>x", true, "svn://h", "x"},
        {"<svn://h> a > b", true, "svn://h", "a > b"},  // the first ">" ends the URL
        {"<> name", true, "", "name"},
        {"<svn://h>  ", true, "svn://h", ""},
        {"svn://h> name", false, std::nullopt, std::nullopt},
        {" <svn://h> name", false, std::nullopt, std::nullopt},
        {"<svn://h name", false, std::nullopt, std::nullopt},
        {"<svn://h>", false, std::nullopt, std::nullopt},
        {"", false, std::nullopt, std::nullopt},
    };
    for (const Case& c : cases) {
        std::optional<std::string> name = "stale", url = "stale";
        EXPECT_EQ(LuSVNParseRealm(c.realm, name, url), c.parsed) << c.realm;
        EXPECT_EQ(url, c.url) << c.realm;
        EXPECT_EQ(name, c.name) << c.realm;
    }
}

// A provider's Subversion-side object in a pool, called as Subversion does.
class ProviderBridgeTest : public testing::Test {
protected:
    ProviderBridgeTest()
    {
        object = provider->providerObjectFromPool(frame.pool());
        parameters = LuSVNEntry<13>()(frame.pool());
    }

    svn_error_t* first(void** creds, void** iterBaton, const char* realm = "realm")
    {
        return object->vtable->first_credentials(creds, iterBaton, object->provider_baton, parameters, realm,
                                                 frame.pool());
    }

    // Checks the error of a failing request and frees it.
    void expectProviderError(svn_error_t* error, const char* message)
    {
        ASSERT_NE(error, nullptr);
        EXPECT_EQ(error->apr_err, LuSVNGenericErrorStatus);
        EXPECT_STREQ(error->message, message);
        EXPECT_EQ(error->child, nullptr);
        LuSVNEntry<30>()(error);
    }

    const std::shared_ptr<LuSVNBundleProxy> backend = LuSVNBundleLoader::sharedInstance()->newestBundle();
    LuSVNBackendFrame frame{backend};
    std::shared_ptr<ScriptedProvider> provider = std::make_shared<ScriptedProvider>();
    svn_auth_provider_object_t* object = nullptr;
    apr_hash_t* parameters = nullptr;
};

TEST_F(ProviderBridgeTest, ProviderObjectServesTheDeclaredKindThroughTheTrampolines)
{
    EXPECT_STREQ(object->vtable->cred_kind, "svn.simple");
    EXPECT_EQ(object->vtable->first_credentials, &LuSVNAuthenticationProviderFirstCredentialsFunc);
    EXPECT_EQ(object->vtable->next_credentials, &LuSVNAuthenticationProviderNextCredentialsFunc);
    EXPECT_EQ(object->vtable->save_credentials, &LuSVNAuthenticationProviderSaveCredentialsFunc);
    const auto& binding = *static_cast<LuSVNAuthenticationProviderBinding*>(object->provider_baton);
    EXPECT_EQ(binding.provider, provider);
    EXPECT_EQ(binding.bundle, backend);
    EXPECT_EQ(binding.builtInProvider, nullptr);
    tessera_test::expectParameterAssertion([&] { provider->providerObjectFromPool(nullptr); }, "pool != nil");
}

TEST_F(ProviderBridgeTest, NoCredentialsLeavesBothOutputsNull)
{
    void* creds = &creds;
    void* iterBaton = &iterBaton;
    EXPECT_EQ(first(&creds, &iterBaton, nullptr), nullptr);
    EXPECT_EQ(creds, nullptr);
    EXPECT_EQ(iterBaton, nullptr);
    EXPECT_EQ(provider->requests, Requests{"first (none)"});
}

TEST_F(ProviderBridgeTest, IteratorLivesInThePoolAndCarriesTheContext)
{
    std::weak_ptr<void> context;
    provider->first = [&](const LuSVNAuthParameters&, std::shared_ptr<void>& info) {
        info = std::make_shared<int>(42);
        context = info;
        return LuSVNSimpleCredentials::credentialsWithUsername("u", "p");
    };
    apr_pool_t* pool = LuSVNEntry<19>()(frame.pool(), nullptr);
    void* creds = nullptr;
    void* iterBaton = nullptr;
    EXPECT_EQ(object->vtable->first_credentials(&creds, &iterBaton, object->provider_baton, parameters, "r", pool), nullptr);
    EXPECT_STREQ(static_cast<svn_auth_cred_simple_t*>(creds)->username, "u");
    auto* iterator = static_cast<LuSVNAuthenticationIterator*>(iterBaton);
    EXPECT_EQ(iterator->retryCount, 0);
    EXPECT_EQ(*std::static_pointer_cast<int>(iterator->context), 42);
    EXPECT_FALSE(context.expired());
    LuSVNEntry<20>()(pool);
    EXPECT_TRUE(context.expired());
}

TEST_F(ProviderBridgeTest, ExceptionsBecomeErrorsThatStandForThem)
{
    provider->first = [](const LuSVNAuthParameters&, std::shared_ptr<void>&) -> std::shared_ptr<LuSVNCredentials> {
        throw ProviderFailure(7);
    };
    void* creds = nullptr;
    void* iterBaton = nullptr;
    svn_error_t* error = first(&creds, &iterBaton);
    ASSERT_NE(error, nullptr);
    EXPECT_EQ(error->apr_err, LuSVNGenericErrorStatus);
    EXPECT_STREQ(error->message, "Authentication provider raised an exception (first credentials)");
    EXPECT_EQ(LuSVNBundleCurrent(), backend);  // the trampoline popped what it pushed

    // The operation that receives the error, here wrapped by Subversion,
    // raises the provider's own exception.
    svn_error_t* wrapped = LuSVNEntry<31>()(SVN_ERR_RA_NOT_AUTHORIZED, error, "wrapped");
    try {
        tessera_private::LuSVNRethrowProviderException(wrapped);
        ADD_FAILURE() << "not rethrown";
    } catch (const ProviderFailure& failure) {
        EXPECT_EQ(failure.serial, 7);
    }

    // Another error does not stand for it, and nothing stays kept.
    provider->first = nullptr;
    svn_error_t* other = LuSVNEntry<31>()(LuSVNGenericErrorStatus, nullptr, "other");
    EXPECT_EQ(tessera_private::LuSVNRethrowProviderException(other), other);
    LuSVNEntry<30>()(other);
}

TEST_F(ProviderBridgeTest, EveryRequestHasItsOwnMessage)
{
    class Throwing : public ScriptedProvider {
        bool saveCredentials(const std::shared_ptr<LuSVNCredentials>&, const std::optional<std::string>&,
                             const LuSVNAuthParameters&) override
        {
            throw std::runtime_error("save");
        }
    };
    auto throwing = std::make_shared<Throwing>();
    throwing->next = [](std::int32_t, const std::shared_ptr<void>&) -> std::shared_ptr<LuSVNCredentials> {
        throw std::runtime_error("next");
    };
    void* baton = throwing->providerObjectFromPool(frame.pool())->provider_baton;
    LuSVNAuthenticationIterator iterator;
    void* creds = nullptr;
    expectProviderError(LuSVNAuthenticationProviderNextCredentialsFunc(&creds, &iterator, baton, parameters, "r",
                                                                      frame.pool()),
                        "Authentication provider raised an exception (next credentials)");
    svn_auth_cred_simple_t simple{"u", "p", 0};
    int saved = 1;
    expectProviderError(LuSVNAuthenticationProviderSaveCredentialsFunc(&saved, &simple, baton, parameters, "r",
                                                                      frame.pool()),
                        "Authentication provider raised an exception (save credentials)");
    EXPECT_EQ(saved, 0);
    EXPECT_EQ(LuSVNBundleCurrent(), backend);
}

TEST_F(ProviderBridgeTest, BrokenPreconditionsBecomeErrorsNotCrashes)
{
    void* creds = nullptr;
    expectProviderError(first(&creds, nullptr), "Authentication provider raised an exception (first credentials)");
    // An object provider gives no next credentials without first ones.
    expectProviderError(
        LuSVNAuthenticationProviderNextCredentialsFunc(&creds, nullptr, object->provider_baton, parameters, "r",
                                                       frame.pool()),
        "Authentication provider raised an exception (next credentials)");
    EXPECT_TRUE(provider->requests.empty());
    EXPECT_EQ(LuSVNBundleCurrent(), backend);
}

TEST_F(ProviderBridgeTest, SavingReportsWhatTheProviderDid)
{
    svn_auth_cred_simple_t simple{"u", "pass", 1};
    for (bool saves : {false, true}) {
        provider->saves = saves;
        int saved = 7;
        EXPECT_EQ(object->vtable->save_credentials(&saved, &simple, object->provider_baton, parameters, "r", frame.pool()),
                  nullptr);
        EXPECT_EQ(saved, saves ? 1 : 0);
    }
    EXPECT_EQ(provider->requests, (Requests{"save svn.simple (u, ****)", "save svn.simple (u, ****)"}));
}

TEST(AuthenticationProviderBaseTest, CopiesKeepTheDelegate)
{
    auto original = std::make_shared<ScriptedProvider>();
    auto delegate = std::make_shared<LuSVNAuthenticationProviderDelegate>();
    original->setDelegate(delegate);
    auto copy = original->copy();
    EXPECT_EQ(copy->delegate(), delegate);
    EXPECT_NE(copy->threadRetryCountKey(), original->threadRetryCountKey());
}

}  // namespace
