// The authentication stack: one new baton and one notification per change
// of the provider list, parameters that do not survive a change, and
// Subversion's credential iteration driven from objects.
#include <tessera/LuSVNBundleLoader.h>
#include <tessera/LuSVNBundleStack.h>
#include <tessera/LuSVNBuiltInAuthenticationProvider.h>
#include <tessera/LuSVNUsernameProvider.h>
#include <tessera/LuSVNDefinitions.h>
#include <tessera/LuSVNPlatformExceptions.h>
#include <tessera/LuSVNUsernameCredentials.h>

#include <gtest/gtest.h>

#include <set>

#include "LuSVNAuthTestSupport.h"
#include "LuSVNBackendFrame.h"
#include "TesseraTestSupport.h"

using namespace auth_test;

namespace {

using tessera_test::expectParameterAssertion;

class AuthenticationStackTest : public testing::Test {
protected:
    AuthenticationStackTest() { stack->setDelegate(recorder); }

    static std::shared_ptr<ScriptedProvider> provider() { return std::make_shared<ScriptedProvider>(); }

    const std::shared_ptr<LuSVNBundleProxy> backend = LuSVNBundleLoader::sharedInstance()->newestBundle();
    LuSVNBackendFrame frame{backend};
    std::shared_ptr<LuSVNAuthenticationStack> stack = LuSVNAuthenticationStack::stackWithBundle(backend);
    std::shared_ptr<BatonRecorder> recorder = std::make_shared<BatonRecorder>();
};

TEST_F(AuthenticationStackTest, NewStackHasABatonOfNoProviders)
{
    EXPECT_NE(stack->baton(), nullptr);
    EXPECT_TRUE(stack->providers().empty());
    EXPECT_EQ(stack->bundle(), backend);
    EXPECT_NE(stack->pool(), nullptr);
    EXPECT_TRUE(recorder->batons.empty());
    svn_auth_iterstate_t* iterator = nullptr;
    EXPECT_EQ(stack->credentialsOfKind(LuSVNSimpleCredentials::classObject(), "realm", iterator), nullptr);
    EXPECT_EQ(iterator, nullptr);
}

TEST_F(AuthenticationStackTest, EveryChangeBuildsOneBatonAndTellsTheDelegateOnce)
{
    auto a = provider(), b = provider(), c = provider(), d = provider();
    std::set<svn_auth_baton_t*> batons{stack->baton()};
    using Stack = LuSVNAuthenticationStack;
    using Expected = std::vector<std::shared_ptr<LuSVNAuthenticationProvider>>;
    const std::pair<std::function<void(Stack&)>, Expected> steps[] = {
        {[&](Stack& s) { s.addProvider(a); }, {a}},
        {[&](Stack& s) { s.addProvider(b); }, {a, b}},  // appended at index n
        {[&](Stack& s) { s.insertObject(c, 0); }, {c, a, b}},
        {[&](Stack& s) { s.insertObject(d, 3); }, {c, a, b, d}},
        {[&](Stack& s) { s.replaceObjectInProvidersAtIndex(1, d); }, {c, d, b, d}},
        {[&](Stack& s) { s.replaceProvider(d, a); }, {c, a, b, d}},  // the first occurrence
        {[&](Stack& s) { s.removeProvider(d); }, {c, a, b}},
        {[&](Stack& s) { s.removeObjectFromProvidersAtIndex(0); }, {a, b}},
        {[&](Stack& s) { s.setProviders({b, c}); }, {b, c}},
        {[&](Stack& s) { s.setProviders({}); }, {}},
    };
    std::size_t notifications = 0;
    for (const auto& [change, expected] : steps) {
        change(*stack);
        EXPECT_EQ(stack->providers(), expected);
        ASSERT_EQ(recorder->batons.size(), ++notifications);
        EXPECT_EQ(recorder->batons.back(), stack->baton());
        EXPECT_TRUE(batons.insert(stack->baton()).second) << "not a new baton";
    }
}

TEST_F(AuthenticationStackTest, RemovingAllProvidersIsOneChangePerProvider)
{
    stack->setProviders({provider(), provider(), provider()});
    recorder->batons.clear();
    stack->removeAllProviders();
    EXPECT_TRUE(stack->providers().empty());
    ASSERT_EQ(recorder->batons.size(), 3u);
    EXPECT_EQ(std::set<svn_auth_baton_t*>(recorder->batons.begin(), recorder->batons.end()).size(), 3u);
    EXPECT_EQ(recorder->batons.back(), stack->baton());
}

TEST_F(AuthenticationStackTest, DelegatesAreOptionalAndNotRetained)
{
    stack->setDelegate(std::make_shared<LuSVNAuthenticationStackDelegate>());  // gone at once
    EXPECT_EQ(stack->delegate(), nullptr);
    stack->addProvider(provider());
    auto silent = std::make_shared<LuSVNAuthenticationStackDelegate>();  // does not implement the operation
    stack->setDelegate(silent);
    EXPECT_NO_THROW(stack->addProvider(provider()));
    EXPECT_EQ(stack->providers().size(), 2u);
    EXPECT_TRUE(recorder->batons.empty());
}

TEST_F(AuthenticationStackTest, ParametersAreUnsetByEveryChange)
{
    stack->setValue(std::string("alice"), LuSVNAuthParamDefaultUsername);
    stack->setValue(true, LuSVNAuthParamNonInteractive);
    stack->setValue(std::uint32_t{8}, LuSVNAuthParamSSLServerFailures);
    stack->setValue(std::string("kept object"), "my:custom");
    EXPECT_EQ(stack->valueForParameterWithName(LuSVNAuthParamDefaultUsername), LuSVNAuthParameterValue("alice"));
    EXPECT_EQ(stack->valueForParameterWithName(LuSVNAuthParamNonInteractive), LuSVNAuthParameterValue(true));
    EXPECT_EQ(stack->valueForParameterWithName(LuSVNAuthParamSSLServerFailures), LuSVNAuthParameterValue(8u));
    EXPECT_EQ(stack->valueForParameterWithName("my:custom"), LuSVNAuthParameterValue("kept object"));
    EXPECT_EQ(stack->valueForParameterWithName(LuSVNAuthParamDefaultPassword), std::nullopt);

    stack->addProvider(provider());
    for (std::string_view name : {LuSVNAuthParamDefaultUsername, LuSVNAuthParamNonInteractive,
                                  LuSVNAuthParamSSLServerFailures, std::string_view("my:custom")})
        EXPECT_EQ(stack->valueForParameterWithName(name), std::nullopt) << name;
}

TEST_F(AuthenticationStackTest, ParametersFromADictionaryAndTheirClearing)
{
    stack->setParametersFromDictionary({{std::string(LuSVNAuthParamDefaultUsername), std::string("alice")},
                                        {std::string(LuSVNAuthParamNoCache), true}});
    EXPECT_EQ(stack->valueForParameterWithName(LuSVNAuthParamNoCache), LuSVNAuthParameterValue(true));
    stack->setParametersFromDictionary({{std::string(LuSVNAuthParamNoCache), std::nullopt}});
    EXPECT_EQ(stack->valueForParameterWithName(LuSVNAuthParamNoCache), std::nullopt);
    EXPECT_EQ(stack->valueForParameterWithName(LuSVNAuthParamDefaultUsername), LuSVNAuthParameterValue("alice"));

    // A boolean is cleared with no value; false has no raw form.
    for (const auto& [name, value] : {std::pair<std::string_view, LuSVNAuthParameterValue>{LuSVNAuthParamNoCache, false},
                                      {"svn:auth:unheard-of", std::string("x")}}) {
        try {
            stack->setValue(value, name);
            ADD_FAILURE() << "no exception for " << name;
        } catch (const LuSVNGenericException& e) {
            EXPECT_EQ(e.reason(), "Authentication parameter value could not be converted");
        }
    }
    // A raw value the library cannot read back.
    LuSVNEntry<90>()(stack->baton(), "svn:auth:unheard-of", "x");
    EXPECT_THROW(stack->valueForParameterWithName("svn:auth:unheard-of"), LuSVNGenericException);
    EXPECT_EQ(LuSVNBundleCurrent(), backend);  // popped on the exceptional path too
}

TEST_F(AuthenticationStackTest, BrokenPreconditions)
{
    const auto p = provider();
    expectParameterAssertion([] { LuSVNAuthenticationStack::stackWithBundle(nullptr); }, "theBundle != nil");
    expectParameterAssertion([&] { stack->addProvider(nullptr); }, "provider != nil");
    expectParameterAssertion([&] { stack->setProviders({p, nullptr}); }, "provider != nil");
    expectParameterAssertion([&] { stack->insertObject(p, 1); }, "index >= 0 && index <= [providers count]");
    expectParameterAssertion([&] { stack->removeObjectFromProvidersAtIndex(0); },
                             "index >= 0 && index < [providers count]");
    expectParameterAssertion([&] { stack->removeProvider(p); }, "index >= 0 && index < [providers count]");
    expectParameterAssertion([&] { stack->replaceProvider(nullptr, p); }, "provider != nil");
    expectParameterAssertion([&] { stack->replaceProvider(p, nullptr); }, "otherProvider != nil");
    EXPECT_THROW(stack->replaceProvider(p, provider()), std::out_of_range);
    EXPECT_THROW(stack->replaceObjectInProvidersAtIndex(0, p), std::out_of_range);
    expectParameterAssertion([&] { stack->nextCredentialsOfKind(LuSVNSimpleCredentials::classObject(), "r", nullptr); },
                             "iterator != nil");
    expectParameterAssertion([&] { stack->saveCredentials(nullptr, "r", nullptr); }, "credentials != nil");
    expectParameterAssertion(
        [&] { stack->saveCredentials(LuSVNSimpleCredentials::credentials(), "r", nullptr); }, "iterator != nil");
    EXPECT_TRUE(stack->providers().empty());
    EXPECT_TRUE(recorder->batons.empty());
}

TEST_F(AuthenticationStackTest, IterationAsksProvidersInOrderWithGrowingRetryCounts)
{
    auto passing = provider();  // answers nothing: the next provider is asked
    auto answering = provider();
    answering->first = [](const LuSVNAuthParameters& parameters, std::shared_ptr<void>& context) {
        context = std::make_shared<std::string>(std::get<std::string>(parameters.at("svn:auth:username")));
        return LuSVNSimpleCredentials::credentialsWithUsername("first", "pw");
    };
    answering->next = [](std::int32_t retryCount, const std::shared_ptr<void>& context) {
        return retryCount > 2 ? nullptr
                              : LuSVNSimpleCredentials::credentialsWithUsername(
                                    *std::static_pointer_cast<std::string>(context) + std::to_string(retryCount), "pw");
    };
    answering->saves = true;
    stack->setProviders({passing, answering});
    stack->setValue(std::string("user"), LuSVNAuthParamDefaultUsername);

    const auto& simple = LuSVNSimpleCredentials::classObject();
    svn_auth_iterstate_t* iterator = nullptr;
    auto creds = stack->credentialsOfKind(simple, "<svn://h> R", iterator);
    ASSERT_NE(iterator, nullptr);
    EXPECT_TRUE(creds->isEqual(LuSVNSimpleCredentials::credentialsWithUsername("first", "pw")));
    for (const char* expected : {"user1", "user2"}) {
        creds = stack->nextCredentialsOfKind(simple, "<svn://h> R", iterator);
        ASSERT_NE(creds, nullptr);
        EXPECT_EQ(std::static_pointer_cast<LuSVNSimpleCredentials>(creds)->username(), expected);
    }
    stack->saveCredentials(creds, "<svn://h> R", iterator);
    EXPECT_EQ(stack->nextCredentialsOfKind(simple, "<svn://h> R", iterator), nullptr);
    EXPECT_EQ(passing->requests, Requests{"first <svn://h> R"});
    EXPECT_EQ(answering->requests, (Requests{"first <svn://h> R", "next <svn://h> R 1", "next <svn://h> R 2",
                                             "save svn.simple (user2, **)", "next <svn://h> R 3"}));
}

TEST_F(AuthenticationStackTest, IterationIgnoresCredentialsOfAnotherClass)
{
    auto wrong = provider();
    wrong->first = [](const LuSVNAuthParameters&, std::shared_ptr<void>&) {
        return LuSVNUsernameCredentials::credentialsWithUsername("not simple");
    };
    auto right = provider();
    right->first = [](const LuSVNAuthParameters&, std::shared_ptr<void>&) {
        return LuSVNSimpleCredentials::credentialsWithUsername("simple", "pw");
    };
    stack->setProviders({wrong, right});
    svn_auth_iterstate_t* iterator = nullptr;
    testing::internal::CaptureStderr();
    auto creds = stack->credentialsOfKind(LuSVNSimpleCredentials::classObject(), "realm", iterator);
    const std::string log = testing::internal::GetCapturedStderr();
    ASSERT_NE(creds, nullptr);
    EXPECT_EQ(std::static_pointer_cast<LuSVNSimpleCredentials>(creds)->username(), "simple");
    EXPECT_NE(log.find("Warning: Ignoring first credentials. LuSVNUsernameCredentials is not declared type "
                       "(LuSVNSimpleCredentials)"),
              std::string::npos)
        << log;
}

TEST_F(AuthenticationStackTest, ProviderExceptionsGiveNoCredentialsButSavingRaisesThem)
{
    auto failing = provider();
    failing->first = [](const LuSVNAuthParameters&, std::shared_ptr<void>&) -> std::shared_ptr<LuSVNCredentials> {
        throw ProviderFailure(1);
    };
    stack->addProvider(failing);
    svn_auth_iterstate_t* iterator = nullptr;
    EXPECT_EQ(stack->credentialsOfKind(LuSVNSimpleCredentials::classObject(), "realm", iterator), nullptr);
    EXPECT_EQ(iterator, nullptr);
    EXPECT_EQ(LuSVNBundleCurrent(), backend);

    // Saving goes to the provider that answered; its exception comes back.
    class FailingSave : public ScriptedProvider {
        bool saveCredentials(const std::shared_ptr<LuSVNCredentials>&, const std::optional<std::string>&,
                             const LuSVNAuthParameters&) override
        {
            throw ProviderFailure(2);
        }
    };
    auto saving = std::make_shared<FailingSave>();
    saving->first = [](const LuSVNAuthParameters&, std::shared_ptr<void>&) {
        return LuSVNSimpleCredentials::credentialsWithUsername("u", "p");
    };
    stack->setProviders({saving});
    auto creds = stack->credentialsOfKind(LuSVNSimpleCredentials::classObject(), "realm", iterator);
    ASSERT_NE(iterator, nullptr);
    try {
        stack->saveCredentials(creds, "realm", iterator);
        ADD_FAILURE() << "the provider's exception was not raised";
    } catch (const ProviderFailure& failure) {
        EXPECT_EQ(failure.serial, 2);
    }
    EXPECT_EQ(LuSVNBundleCurrent(), backend);
}

TEST_F(AuthenticationStackTest, SubversionsOwnProviderWrappedAsAnObject)
{
    auto wrapped = std::make_shared<LuSVNUsernameProvider>();
    EXPECT_EQ(wrapped->builtInProviderObjectFromPool(frame.pool())->vtable->next_credentials,
              nullptr);  // the case tested below
    stack->addProvider(wrapped);
    stack->setValue(std::string("carol"), LuSVNAuthParamDefaultUsername);

    const auto& username = LuSVNUsernameCredentials::classObject();
    svn_auth_iterstate_t* iterator = nullptr;
    auto creds = stack->credentialsOfKind(username, "<svn://h> R", iterator);
    ASSERT_NE(creds, nullptr);
    EXPECT_TRUE(creds->isEqual(LuSVNUsernameCredentials::credentialsWithUsername("carol")));
    EXPECT_EQ(wrapped->threadRetryCount(), 0);
    // Subversion's provider has no next callback: no credentials, no error,
    // and the thread's count still moves on.
    EXPECT_EQ(stack->nextCredentialsOfKind(username, "<svn://h> R", iterator), nullptr);
    EXPECT_EQ(wrapped->threadRetryCount(), 1);
    EXPECT_EQ(wrapped->threadRetryCountKey(), wrapped->description() + ":retryCount");
    EXPECT_NE(wrapped->description().find("LuSVNUsernameProvider: 0x"), std::string::npos) << wrapped->description();
    wrapped->setThreadRetryCount(0);
}

}  // namespace
