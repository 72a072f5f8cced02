// The credentials cache: expiry policies and their chains on a manual clock
// (lookups after the time, and timers removing entries nobody looks up), the
// cache's bookkeeping, and its two providers.
#include <tessera/LuSVNCredentialsCache.h>
#include <tessera/LuSVNCredentialsCacheAuthenticationProvider.h>
#include <tessera/LuSVNDefaultCredentialsAuthenticationProvider.h>
#include <tessera/LuSVNDefinitions.h>
#include <tessera/LuSVNPlatformExceptions.h>
#include <tessera/LuSVNSSLServerTrustCredentials.h>
#include <tessera/LuSVNSimpleCredentials.h>
#include <tessera/LuSVNUsernameCredentials.h>

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <thread>
#include <vector>

namespace {

using namespace std::chrono_literals;
using Creds = std::shared_ptr<LuSVNCredentials>;

const std::string realm = "<svn://127.0.0.1:3690> Test";
const std::string otherRealm = "<https://127.0.0.1:443> Other";

Creds alice()
{
    return LuSVNSimpleCredentials::credentialsWithUsername("alice", "wonderland");
}

const LuSVNCredentialsClass& simple()
{
    return LuSVNSimpleCredentials::classObject();
}

class CredentialsCacheTest : public testing::Test {
protected:
    std::shared_ptr<LuSVNManualClock> clock = LuSVNManualClock::clockAt(std::chrono::system_clock::now());
    std::shared_ptr<LuSVNCredentialsCache> cache = LuSVNCredentialsCache::cacheWithClock(clock);
};

// A policy chain, and what lookups give after moving the clock on.
struct Step {
    std::chrono::seconds advance;
    bool returned;
};
struct PolicyCase {
    const char* name;
    std::function<std::shared_ptr<LuSVNExpiryPolicy>(LuSVNClock::TimePoint now)> policy;
    std::vector<Step> steps;
};

TEST_F(CredentialsCacheTest, PoliciesDecideUntilWhenCredentialsAreReturned)
{
    const std::vector<PolicyCase> cases{
        {"never", [](auto) { return LuSVNExpiryPolicy::policy(); }, {{0s, true}, {100000s, true}, {0s, true}}},
        {"date",
         [](auto now) { return LuSVNDateExpiryPolicy::policyWithExpiryDate(now + 60s); },
         {{59s, true}, {0s, true}, {1s, false}}},
        {"inactivity",
         [](auto) { return LuSVNInactivityExpiryPolicy::policyWithInactivityPeriod(60s); },
         // each return pushes the end to 60 s after it
         {{59s, true}, {59s, true}, {59s, true}, {60s, false}}},
        {"single use", [](auto) { return std::make_shared<LuSVNSingleUseExpiryPolicy>(); }, {{0s, true}, {0s, false}}},
        {"date then single use",
         [](auto now) {
             return LuSVNDateExpiryPolicy::policyWithExpiryDate(now + 60s,
                                                                std::make_shared<LuSVNSingleUseExpiryPolicy>());
         },
         {{10s, true}, {0s, false}}},
        {"single use after the date",
         [](auto now) {
             return LuSVNDateExpiryPolicy::policyWithExpiryDate(now + 60s,
                                                                std::make_shared<LuSVNSingleUseExpiryPolicy>());
         },
         {{60s, false}}},
        {"inactivity then date",
         [](auto now) {
             return LuSVNInactivityExpiryPolicy::policyWithInactivityPeriod(
                 60s, LuSVNDateExpiryPolicy::policyWithExpiryDate(now + 100s));
         },
         {{50s, true}, {49s, true}, {1s, false}}},
    };
    for (const PolicyCase& c : cases) {
        SCOPED_TRACE(c.name);
        const auto credentials = alice();
        cache->setCredentials(credentials, realm, c.policy(clock->now()));
        int step = 0;
        for (const Step& s : c.steps) {
            SCOPED_TRACE("step " + std::to_string(step++));
            clock->advance(s.advance);
            const auto found = cache->credentialsOfKind(simple(), realm);
            EXPECT_EQ(found, s.returned ? credentials : nullptr);
        }
        cache->removeAllCredentials();
    }
}

// A date or inactivity policy that counts how often it is asked.
template <class Policy>
class Counting : public Policy {
public:
    using Policy::Policy;
    std::atomic<int> asked{0};
    bool cacheShouldReturnCredentials(LuSVNCredentialsCache& cache, const Creds& credentials,
                                      const std::string& r) override
    {
        ++asked;
        return Policy::cacheShouldReturnCredentials(cache, credentials, r);
    }
};

TEST_F(CredentialsCacheTest, TimersRemoveEntriesThatNobodyLooksUp)
{
    const auto date = std::make_shared<Counting<LuSVNDateExpiryPolicy>>(clock->now() + 60s);
    const auto inactivity = std::make_shared<Counting<LuSVNInactivityExpiryPolicy>>(30s);
    cache->setCredentials(alice(), realm, date);
    cache->setCredentials(LuSVNUsernameCredentials::credentialsWithUsername("bob"), realm, inactivity);

    clock->advance(29s);
    ASSERT_NE(cache->credentialsOfKind(LuSVNUsernameCredentials::classObject(), realm), nullptr);
    EXPECT_EQ(inactivity->asked, 1);
    clock->advance(30s);  // 59 s: the inactivity timer was moved to 59 s
    clock->advance(1s);   // 60 s: the date

    // Both entries are gone without a lookup having asked their policies.
    EXPECT_EQ(cache->credentialsOfKind(simple(), realm), nullptr);
    EXPECT_EQ(cache->credentialsOfKind(LuSVNUsernameCredentials::classObject(), realm), nullptr);
    EXPECT_EQ(date->asked, 0);
    EXPECT_EQ(inactivity->asked, 1);
}

TEST_F(CredentialsCacheTest, ATimerOfAReplacedEntryLeavesItsSuccessor)
{
    cache->setCredentials(alice(), realm, LuSVNDateExpiryPolicy::policyWithExpiryDate(clock->now() + 10s));
    const auto successor = alice();
    cache->setCredentials(successor, realm);
    clock->advance(20s);
    EXPECT_EQ(cache->credentialsOfKind(simple(), realm), successor);
}

TEST_F(CredentialsCacheTest, ALookupWithoutEntryAsksNoPolicy)
{
    const auto policy = std::make_shared<Counting<LuSVNDateExpiryPolicy>>(clock->now() + 60s);
    cache->setCredentials(alice(), realm, policy);
    EXPECT_EQ(cache->credentialsOfKind(LuSVNUsernameCredentials::classObject(), realm), nullptr);
    EXPECT_EQ(cache->credentialsOfKind(simple(), otherRealm), nullptr);
    EXPECT_EQ(policy->asked, 0);
}

TEST_F(CredentialsCacheTest, RemovalsTakeWhatTheyName)
{
    const auto fill = [&] {
        cache->removeAllCredentials();
        cache->setCredentials(alice(), realm);
        cache->setCredentials(LuSVNUsernameCredentials::credentialsWithUsername("bob"), realm);
        cache->setCredentials(alice(), otherRealm);
    };
    const auto left = [&] {
        std::vector<std::string> entries;
        cache->enumerateCredentials([&](const LuSVNCredentialsCacheEntry& entry, const std::string& r) {
            entries.push_back(r + " " + entry.credentials()->kind());
        });
        return entries;
    };
    const std::vector<std::pair<std::function<void()>, std::vector<std::string>>> cases{
        {[&] { cache->removeCredentials(alice()); },  // equal, but another object
         {otherRealm + " svn.simple", realm + " svn.simple", realm + " svn.username"}},
        {[&] { cache->removeCredentials(cache->credentialsOfKind(simple(), realm)); },
         {otherRealm + " svn.simple", realm + " svn.username"}},
        {[&] { cache->removeCredentialsForRealm(realm); }, {otherRealm + " svn.simple"}},
        {[&] { cache->removeCredentialsOfKind(simple()); }, {realm + " svn.username"}},
        {[&] { cache->removeCredentialsOfKind(simple(), otherRealm); },
         {realm + " svn.simple", realm + " svn.username"}},
        {[&] { cache->removeAllCredentials(); }, {}},
    };
    for (std::size_t i = 0; i < cases.size(); ++i) {
        SCOPED_TRACE(i);
        fill();
        cases[i].first();
        EXPECT_EQ(left(), cases[i].second);
    }
}

TEST_F(CredentialsCacheTest, QueriesByKindAndByRealm)
{
    const auto bob = LuSVNUsernameCredentials::credentialsWithUsername("bob");
    const auto first = alice();
    const auto second = alice();
    cache->setCredentials(first, realm);
    cache->setCredentials(bob, realm);
    cache->setCredentials(second, otherRealm, std::make_shared<LuSVNSingleUseExpiryPolicy>());

    using Found = std::map<std::string, Creds>;
    EXPECT_EQ(cache->credentialsForRealm(realm), (Found{{"svn.simple", first}, {"svn.username", bob}}));
    EXPECT_EQ(cache->credentialsOfKind(simple()), (Found{{otherRealm, second}, {realm, first}}));
    // The single-use entry was handed out by the query above.
    EXPECT_EQ(cache->credentialsOfKind(simple()), (Found{{realm, first}}));
    EXPECT_THROW(cache->enumerateCredentials(nullptr), LuSVNInternalInconsistencyException);
    EXPECT_THROW(cache->setCredentials(nullptr, realm), LuSVNInternalInconsistencyException);
}

TEST_F(CredentialsCacheTest, ACopyHoldsCopiesWithPoliciesStartedAnew)
{
    const auto kept = alice();
    cache->setCredentials(kept, realm, LuSVNInactivityExpiryPolicy::policyWithInactivityPeriod(60s));
    cache->setCredentials(LuSVNUsernameCredentials::credentialsWithUsername("bob"), realm,
                          std::make_shared<LuSVNSingleUseExpiryPolicy>());
    clock->advance(50s);

    const auto copied = cache->copy();
    EXPECT_EQ(copied->clock(), clock);
    // Copying used up the single-use entry of the source, not of the copy.
    EXPECT_EQ(cache->credentialsOfKind(LuSVNUsernameCredentials::classObject(), realm), nullptr);
    EXPECT_NE(copied->credentialsOfKind(LuSVNUsernameCredentials::classObject(), realm), nullptr);

    const auto copy = copied->credentialsOfKind(simple(), realm);
    ASSERT_NE(copy, nullptr);
    EXPECT_NE(copy, kept);
    EXPECT_TRUE(copy->isEqual(kept));
    cache->removeAllCredentials();
    clock->advance(59s);  // 60 s of inactivity would have passed for the original's timer
    EXPECT_EQ(copied->credentialsOfKind(simple(), realm), copy);
}

TEST_F(CredentialsCacheTest, ThreadsShareOneCache)
{
    std::vector<std::thread> threads;
    std::atomic<int> found{0};
    for (int t = 0; t < 8; ++t)
        threads.emplace_back([&, t] {
            const std::string own = realm + std::to_string(t);
            for (int i = 0; i < 200; ++i) {
                cache->setCredentials(alice(), own, LuSVNInactivityExpiryPolicy::policyWithInactivityPeriod(5s));
                found += cache->credentialsOfKind(simple(), own) != nullptr;
                if (t == 0)
                    clock->advance(1s);
                cache->removeCredentialsForRealm(own);
            }
        });
    for (auto& thread : threads)
        thread.join();
    EXPECT_GT(found, 0);
    EXPECT_TRUE(cache->credentialsOfKind(simple()).empty());
}

TEST(ManualClockTest, RefusesToGoBack)
{
    const auto clock = LuSVNManualClock::clockAt({});
    EXPECT_THROW(clock->advance(-1s), LuSVNInvalidArgumentException);
    clock->advance(2s);
    EXPECT_EQ(clock->now(), LuSVNClock::TimePoint(2s));
}

// --- Providers -------------------------------------------------------------

TEST_F(CredentialsCacheTest, CacheProviderAnswersWhatValidates)
{
    const auto trust = LuSVNSSLServerTrustCredentials::credentialsWithAcceptedFailures(0x0C);
    cache->setCredentials(trust, realm);
    const auto provider = LuSVNCredentialsCacheAuthenticationProvider::providerForCredentialsOfClass(
        LuSVNSSLServerTrustCredentials::classObject(), cache);
    std::shared_ptr<void> context;
    const std::vector<std::pair<std::uint32_t, Creds>> cases{{0x08, trust}, {0x0C, trust}, {0x09, nullptr}};
    for (const auto& [failures, expected] : cases) {
        SCOPED_TRACE(failures);
        const LuSVNAuthParameters parameters{{std::string(LuSVNAuthParamSSLServerFailures), failures}};
        EXPECT_EQ(provider->credentialsForRealm(realm, parameters, context), expected);
    }
    EXPECT_EQ(provider->credentialsForRealm(otherRealm, {}, context), nullptr);
    EXPECT_EQ(provider->nextCredentialsForRealm(realm, {}, 1, context), nullptr);
    EXPECT_EQ(
        std::dynamic_pointer_cast<LuSVNCredentialsCacheAuthenticationProvider>(provider->copy())->credentialsCache(),
        cache);
}

TEST_F(CredentialsCacheTest, CacheProviderKeepsWhatIsSavedButNotWhatItAnswered)
{
    const auto provider = LuSVNCredentialsCacheAuthenticationProvider::providerForCredentialsOfClass(simple(), cache);
    std::shared_ptr<void> context;

    // Saved credentials of another provider (a prompt, say) are kept.
    EXPECT_FALSE(provider->saveCredentials(alice(), realm, {}));
    const auto kept = cache->credentialsOfKind(simple(), realm);
    ASSERT_NE(kept, nullptr);
    clock->advance(1000000s);
    EXPECT_EQ(cache->credentialsOfKind(simple(), realm), kept);

    // Its own single-use answer, saved after it worked, stays used up.
    cache->setCredentials(alice(), otherRealm, std::make_shared<LuSVNSingleUseExpiryPolicy>());
    const auto answered = provider->credentialsForRealm(otherRealm, {}, context);
    ASSERT_NE(answered, nullptr);
    // Subversion offers them to the provider that answered, then to every one.
    EXPECT_FALSE(provider->saveCredentials(answered->copy(), otherRealm, {}));
    EXPECT_FALSE(provider->saveCredentials(answered->copy(), otherRealm, {}));
    EXPECT_EQ(cache->credentialsOfKind(simple(), otherRealm), nullptr);
    // What another provider got after that is kept.
    EXPECT_EQ(provider->credentialsForRealm(otherRealm, {}, context), nullptr);
    EXPECT_FALSE(provider->saveCredentials(answered->copy(), otherRealm, {}));
    EXPECT_NE(cache->credentialsOfKind(simple(), otherRealm), nullptr);
}

TEST(DefaultCredentialsProviderTest, AnswersWithTheDefaultParameters)
{
    const std::string user(LuSVNAuthParamDefaultUsername), password(LuSVNAuthParamDefaultPassword),
        mayStore(LuSVNAuthParamDefaultMayStorePassword);
    struct Case {
        LuSVNAuthParameters parameters;
        bool answers;
        bool maySave;
    };
    const std::vector<Case> cases{
        {{{user, std::string("alice")}, {password, std::string("pw")}}, true, false},
        {{{user, std::string("alice")}, {password, std::string("pw")}, {mayStore, true}}, true, true},
        {{{user, std::string("alice")}, {password, std::string("pw")}, {mayStore, false}}, true, false},
        {{{user, std::string("alice")}}, false, false},
        {{{password, std::string("pw")}}, false, false},
        {{}, false, false},
    };
    const auto provider = LuSVNDefaultCredentialsAuthenticationProvider::defaultCredentialsProvider();
    std::shared_ptr<void> context;
    for (std::size_t i = 0; i < cases.size(); ++i) {
        SCOPED_TRACE(i);
        const auto answer = std::dynamic_pointer_cast<LuSVNSimpleCredentials>(
            provider->credentialsForRealm(realm, cases[i].parameters, context));
        ASSERT_EQ(answer != nullptr, cases[i].answers);
        if (!answer)
            continue;
        EXPECT_EQ(answer->username(), "alice");
        EXPECT_EQ(answer->password(), "pw");
        EXPECT_EQ(answer->maySave(), cases[i].maySave);
    }
    EXPECT_THROW(provider->credentialsForRealm(std::nullopt, {}, context), LuSVNInternalInconsistencyException);
}

}  // namespace
