// Library operations (info, property, status against the repository) on a
// real svnserve whose authz file lets anonymous users read all but /private,
// with every kind of provider: prompts retried up to their limit, Subversion's
// own store, the caller's defaults, the keyring in front of them, and the
// credentials cache expiring while a session goes on. Eight pooled contexts
// authenticate at once; the verbose log of a session never shows the
// password.
#include <tessera/LuSVNBundleLoader.h>
#include <tessera/LuSVNContext.h>
#include <tessera/LuSVNContextPool.h>
#include <tessera/LuSVNCredentialsCacheAuthenticationProvider.h>
#include <tessera/LuSVNDefaultCredentialsAuthenticationProvider.h>
#include <tessera/LuSVNDefinitions.h>
#include <tessera/LuSVNDirectory.h>
#include <tessera/LuSVNException.h>
#include <tessera/LuSVNNode.h>
#include <tessera/LuSVNPromptProviders.h>
#include <tessera/LuSVNRevisionSpec.h>
#include <tessera/LuSVNStorageProviders.h>
#include <tessera/LuSVNUsernameProvider.h>

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <mutex>
#include <sstream>
#include <thread>

#include "LuSVNAuthTestSupport.h"
#include "TesseraSvnserve.h"

namespace {

using namespace std::chrono_literals;
using tessera_test::Svnserve;
using tessera_test::SvnserveContent;
using Providers = std::vector<LuSVNAuthenticationStack::Provider>;

// Types passwords: the one scripted for each retry count, the right one
// after the script. Records the retry counts it was asked with. Thread-safe.
class Typist : public LuSVNAuthenticationProviderDelegate {
public:
    std::vector<std::string> script;
    bool allowPlaintext = true;

    std::optional<bool> promptForSimpleCredentials(LuSVNAuthenticationProvider&, LuSVNSimpleCredentials& creds,
                                                   const std::optional<std::string>&, std::int32_t retry) override
    {
        std::lock_guard lock(mutex_);
        asked_.push_back(retry);
        creds.setUsername(Svnserve::username);
        creds.setPassword(static_cast<std::size_t>(retry) < script.size() ? script[static_cast<std::size_t>(retry)]
                                                                          : Svnserve::password);
        return true;
    }
    std::optional<bool> maySavePlainTextCredentialsForRealm(LuSVNAuthenticationProvider&,
                                                            const std::optional<std::string>&) override
    {
        return allowPlaintext;
    }
    std::vector<std::int32_t> asked()
    {
        std::lock_guard lock(mutex_);
        return std::exchange(asked_, {});
    }

private:
    std::mutex mutex_;
    std::vector<std::int32_t> asked_;
};

class SvnserveScenarioTest : public testing::Test {
protected:
    static void SetUpTestSuite()
    {
        server = new Svnserve(SvnserveContent::Layout, true);
        directory = new tessera_test::TemporaryDirectory();
        const auto result =
            tessera_test::svn({"checkout", "-q", "--username", Svnserve::username, "--password", Svnserve::password,
                               "--no-auth-cache", server->url() + "/private", *directory / "wc"});
        ASSERT_EQ(result.status, 0) << result.output;
    }
    static void TearDownTestSuite()
    {
        delete directory;
        delete server;
    }

    // A context whose stack holds the providers; Subversion's stores use
    // its configuration directory, the test's unless given.
    std::shared_ptr<LuSVNContext> contextWith(Providers providers,
                                              std::optional<std::string> configDirectory = std::nullopt)
    {
        const std::string directory = configDirectory.value_or(config.path());
        auto context =
            LuSVNContext::contextWithBundle(LuSVNBundleLoader::sharedInstance()->newestBundle(), {}, directory);
        for (auto& provider : providers)
            provider->setDelegate(typist);
        context->authenticationStack()->setProviders(std::move(providers));
        context->authenticationStack()->setValue(directory, LuSVNAuthParamConfigDirectory);
        return context;
    }

    static LuSVNPath::Path remote(const std::string& path)
    {
        return LuSVNPath::pathWithString(server->url() + "/" + path);
    }

    // The operations of a session, each needing the password.
    using Operation = std::function<void(const std::shared_ptr<LuSVNContext>&)>;
    static std::vector<std::pair<const char*, Operation>> operations()
    {
        return {
            {"info",
             [](const auto& context) {
                 EXPECT_EQ(
                     LuSVNNode::kindOfNodeAtPath(remote("private/secret.txt"), LuSVNRevisionSpec::HEAD(), context),
                     LuSVNNodeKindFile);
             }},
            {"propget",
             [](const auto& context) {
                 const auto value = LuSVNNode::propertyWithName("color", remote("private/secret.txt"),
                                                                LuSVNRevisionSpec::HEAD(), context);
                 EXPECT_EQ(value, std::optional<LuSVNPropertyValue>(std::string("blue")));
             }},
            {"status -u",
             [](const auto& context) {
                 auto options = LuSVNStatusOptions::defaults();
                 options.setCompareAgainstRepository(1);
                 options.setIncludeNormalFiles(1);
                 const auto nodes = LuSVNDirectory::statusForNodesInDirectoryAtPath(
                     LuSVNLocalPath::pathWithString(*directory / "wc"), options, context);
                 EXPECT_FALSE(nodes.empty());
             }},
        };
    }

    static std::shared_ptr<LuSVNCredentials> alice()
    {
        return LuSVNSimpleCredentials::credentialsWithUsername(Svnserve::username, Svnserve::password);
    }

    static Svnserve* server;
    static tessera_test::TemporaryDirectory* directory;
    tessera_test::TemporaryDirectory config;
    std::shared_ptr<Typist> typist = std::make_shared<Typist>();
};

Svnserve* SvnserveScenarioTest::server = nullptr;
tessera_test::TemporaryDirectory* SvnserveScenarioTest::directory = nullptr;

TEST_F(SvnserveScenarioTest, EveryProviderKindAuthenticates)
{
    using P = LuSVNAuthenticationProvider;
    const auto cache = LuSVNCredentialsCache::cache();
    cache->setCredentials(alice(), server->realm());
    struct Case {
        const char* name;
        std::function<Providers()> providers;
        std::function<void(LuSVNAuthenticationStack&)> parameters;
        std::vector<std::int32_t> prompts;  // retry counts the typist was asked with, per context
    };
    const auto defaults = [](LuSVNAuthenticationStack& stack) {
        stack.setValue(std::string(Svnserve::username), LuSVNAuthParamDefaultUsername);
        stack.setValue(std::string(Svnserve::password), LuSVNAuthParamDefaultPassword);
    };
    const auto none = [](LuSVNAuthenticationStack&) {};
    const std::vector<Case> cases{
        {"prompt", [] { return Providers{P::simplePromptProviderWithRetryLimit(2)}; }, none, {0}},
        {"default parameters",
         [] { return Providers{LuSVNDefaultCredentialsAuthenticationProvider::defaultCredentialsProvider()}; },
         defaults,
         {}},
        {"cache",
         [&] {
             return Providers{LuSVNCredentialsCacheAuthenticationProvider::providerForCredentialsOfClass(
                 LuSVNSimpleCredentials::classObject(), cache)};
         },
         none,
         {}},
        // No keyring daemon runs here: the keyring answers nothing and the
        // chain goes on.
        {"keyring, then defaults",
         [] {
             return Providers{P::keychainSimpleProvider(),
                              LuSVNDefaultCredentialsAuthenticationProvider::defaultCredentialsProvider()};
         },
         defaults,
         {}},
        {"Subversion's defaults", [] { return Providers{P::simpleProvider()}; }, defaults, {}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const auto context = contextWith(c.providers());
        c.parameters(*context->authenticationStack());
        for (const auto& [name, operation] : operations()) {
            SCOPED_TRACE(name);
            operation(context);
        }
        EXPECT_EQ(typist->asked(), c.prompts);  // a context's baton keeps what worked
    }
}

TEST_F(SvnserveScenarioTest, WithoutCredentialsOnlyWhatAnonymousUsersMayReadIsRead)
{
    for (const Providers& providers : {Providers{}, Providers{LuSVNAuthenticationProvider::usernameProvider()}}) {
        const auto context = contextWith(providers);
        EXPECT_EQ(LuSVNNode::kindOfNodeAtPath(remote("trunk/file.txt"), LuSVNRevisionSpec::HEAD(), context),
                  LuSVNNodeKindFile);
        EXPECT_THROW(LuSVNNode::kindOfNodeAtPath(remote("private/secret.txt"), LuSVNRevisionSpec::HEAD(), context),
                     LuSVNException);
    }
    // Alice may not read /denied either.
    const auto context = contextWith({LuSVNAuthenticationProvider::simplePromptProviderWithRetryLimit(2)});
    EXPECT_THROW(LuSVNNode::kindOfNodeAtPath(remote("denied/hidden.txt"), LuSVNRevisionSpec::HEAD(), context),
                 LuSVNException);
}

TEST_F(SvnserveScenarioTest, WrongPasswordsAreRetriedUpToTheLimit)
{
    struct Case {
        std::vector<std::string> typed;
        bool succeeds;
        std::vector<std::int32_t> prompts;
    };
    const std::vector<Case> cases{
        {{"looking-glass"}, true, {0, 1}},
        {{"a", "b"}, true, {0, 1, 2}},
        {{"a", "b", "c"}, false, {0, 1, 2}},  // limit 2: three tries in all
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.typed.size());
        typist->script = c.typed;
        const auto context = contextWith({LuSVNAuthenticationProvider::simplePromptProviderWithRetryLimit(2)});
        const auto info = [&] {
            return LuSVNNode::kindOfNodeAtPath(remote("private/secret.txt"), LuSVNRevisionSpec::HEAD(), context);
        };
        if (c.succeeds)
            EXPECT_EQ(info(), LuSVNNodeKindFile);
        else
            EXPECT_THROW(info(), LuSVNException);
        EXPECT_EQ(typist->asked(), c.prompts);
    }
}

TEST_F(SvnserveScenarioTest, SubversionsStoreKeepsWhatThePromptGotWhenAllowed)
{
    for (bool allowPlaintext : {true, false}) {
        SCOPED_TRACE(allowPlaintext);
        tessera_test::TemporaryDirectory ownConfig;
        // Subversion writes into the store's folder but does not make it
        // (svn makes it when it creates the configuration directory).
        std::filesystem::create_directories(ownConfig / "auth/svn.simple");
        typist->allowPlaintext = allowPlaintext;
        operations()[0].second(contextWith({LuSVNAuthenticationProvider::simpleProvider(),
                                            LuSVNAuthenticationProvider::simplePromptProviderWithRetryLimit(2)},
                                           ownConfig.path()));
        EXPECT_EQ(typist->asked(), std::vector<std::int32_t>{0});

        // A later context with the store alone: it answers only if it kept
        // the password.
        const auto later = contextWith({LuSVNAuthenticationProvider::simpleProvider()}, ownConfig.path());
        if (allowPlaintext)
            operations()[1].second(later);
        else
            EXPECT_THROW(operations()[1].second(later), LuSVNException);
    }
}

TEST_F(SvnserveScenarioTest, CachedCredentialsExpireWhileTheSessionGoesOn)
{
    struct Case {
        const char* name;
        std::function<std::shared_ptr<LuSVNExpiryPolicy>(LuSVNClock::TimePoint)> policy;
        std::vector<std::chrono::seconds> operationTimes;
        std::vector<bool> prompted;  // per operation
    };
    const std::vector<Case> cases{
        {"date",
         [](auto now) { return LuSVNDateExpiryPolicy::policyWithExpiryDate(now + 60s); },
         {0s, 30s, 59s, 60s, 90s},
         {false, false, false, true, false}},  // what the prompt got is kept, never expiring
        {"inactivity",
         [](auto) { return LuSVNInactivityExpiryPolicy::policyWithInactivityPeriod(30s); },
         {0s, 29s, 58s, 88s, 200s},
         {false, false, false, true, false}},
        {"single use",
         [](auto) { return std::make_shared<LuSVNSingleUseExpiryPolicy>(); },
         {0s, 1s, 2s},
         {false, true, false}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const auto clock = LuSVNManualClock::clockAt(std::chrono::system_clock::now());
        const auto cache = LuSVNCredentialsCache::cacheWithClock(clock);
        cache->setCredentials(alice(), server->realm(), c.policy(clock->now()));
        auto elapsed = 0s;
        for (std::size_t i = 0; i < c.operationTimes.size(); ++i) {
            SCOPED_TRACE(i);
            clock->advance(c.operationTimes[i] - elapsed);
            elapsed = c.operationTimes[i];
            // Every operation on a context of its own: a context's baton
            // would keep what worked for as long as it lives.
            const auto context =
                contextWith({LuSVNCredentialsCacheAuthenticationProvider::providerForCredentialsOfClass(
                                 LuSVNSimpleCredentials::classObject(), cache),
                             LuSVNAuthenticationProvider::simplePromptProviderWithRetryLimit(2)});
            operations()[i % operations().size()].second(context);
            EXPECT_EQ(!typist->asked().empty(), c.prompted[i]);
        }
    }
}

// The threads share one cache, filled by whichever thread's prompt ran.
class PoolFactory : public LuSVNContextFactory {
public:
    std::function<std::shared_ptr<LuSVNContext>()> make;
    std::shared_ptr<LuSVNContext> createContext() override { return make(); }
};

TEST_F(SvnserveScenarioTest, EightPooledContextsAuthenticateAtOnce)
{
    const auto cache = LuSVNCredentialsCache::cache();
    const auto factory = std::make_shared<PoolFactory>();
    std::mutex making;  // the fixture's helper is not meant for threads
    factory->make = [&] {
        std::lock_guard lock(making);
        return contextWith({LuSVNCredentialsCacheAuthenticationProvider::providerForCredentialsOfClass(
                                LuSVNSimpleCredentials::classObject(), cache),
                            LuSVNAuthenticationProvider::simplePromptProviderWithRetryLimit(2)});
    };
    const auto pool = LuSVNContextPool::poolWithFactory(factory);
    std::atomic<int> failures{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < 8; ++t)
        threads.emplace_back([&] {
            try {
                const auto context = pool->context();
                for (const auto& [name, operation] : operations())
                    operation(context);
            } catch (const LuSVNException& exception) {
                ++failures;
                ADD_FAILURE() << exception.reason();
            }
        });
    for (auto& thread : threads)
        thread.join();
    EXPECT_EQ(failures, 0);
    const auto asked = typist->asked();
    EXPECT_GE(asked.size(), 1u);
    EXPECT_LE(asked.size(), 8u);
    EXPECT_TRUE(cache->credentialsOfKind(LuSVNSimpleCredentials::classObject(), server->realm())->isEqual(alice()));
}

// Run by VerboseLogOfASessionHoldsNoPassword in a process of its own, whose
// log level is verbose from the start.
TEST_F(SvnserveScenarioTest, LoggedSession)
{
    if (!std::getenv("TESSERA_AUTH_LOGGED_SESSION"))
        GTEST_SKIP() << "run by VerboseLogOfASessionHoldsNoPassword";
    typist->script = {"wrong-" + std::string(Svnserve::password)};
    const auto cache = LuSVNCredentialsCache::cache();
    const auto context = contextWith({LuSVNCredentialsCacheAuthenticationProvider::providerForCredentialsOfClass(
                                          LuSVNSimpleCredentials::classObject(), cache),
                                      LuSVNAuthenticationProvider::simplePromptProviderWithRetryLimit(2)});
    context->authenticationStack()->setValue(std::string(Svnserve::password), LuSVNAuthParamDefaultPassword);
    for (const auto& [name, operation] : operations())
        operation(context);
    EXPECT_THROW(LuSVNNode::kindOfNodeAtPath(remote("denied/hidden.txt"), LuSVNRevisionSpec::HEAD(), context),
                 LuSVNException);
}

TEST_F(SvnserveScenarioTest, VerboseLogOfASessionHoldsNoPassword)
{
    const auto result = tessera_test::run({"env", "TesseraLogLevel=verbose", "TESSERA_AUTH_LOGGED_SESSION=1",
                                           std::filesystem::read_symlink("/proc/self/exe").string(),
                                           "--gtest_filter=SvnserveScenarioTest.LoggedSession"});
    ASSERT_EQ(result.status, 0) << result.output;
    EXPECT_NE(result.output.find("[  PASSED  ] 1 test"), std::string::npos) << result.output;
    EXPECT_NE(result.output.find("setValue:forParameterWithName"), std::string::npos) << "not a verbose log";
    EXPECT_EQ(result.output.find(Svnserve::password), std::string::npos) << result.output;
}

}  // namespace
