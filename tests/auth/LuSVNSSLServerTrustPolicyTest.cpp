// The SSL server trust policy and the provider that answers from it.
#include <tessera/LuSVNDefinitions.h>
#include <tessera/LuSVNPlatformExceptions.h>
#include <tessera/LuSVNSSLServerTrustCredentials.h>
#include <tessera/LuSVNSSLServerTrustPolicy.h>

#include <gtest/gtest.h>

#include <optional>
#include <vector>

namespace {

const std::string realm = "https://127.0.0.1:8443";
const std::string other = "https://127.0.0.1:9443";

struct TrustCase {
    const char* name;
    std::shared_ptr<LuSVNSSLServerTrustPolicy> policy;
    std::uint32_t failures;
    const std::string& askedRealm;
    std::optional<std::uint32_t> accepted;  // what the provider's credentials accept; none: no answer
};

TEST(SSLServerTrustPolicyTest, ProviderAcceptsExactlyWhatThePolicyNames)
{
    using P = LuSVNSSLServerTrustPolicy;
    const std::vector<TrustCase> cases{
        {"nothing wrong, nothing accepted", P::policyAcceptingNoErrors(), 0, realm, 0u},
        {"unknown CA everywhere", P::policyAcceptingErrors(0x8), 0x8, realm, 0x8u},
        {"unknown CA but CN mismatch too", P::policyAcceptingErrors(0x8), 0xA, realm, std::nullopt},
        {"realm's own set", P::policyAcceptingErrors(0x4, realm), 0x4, realm, 0x4u},
        {"another realm's set", P::policyAcceptingErrors(0x4, realm), 0x4, other, std::nullopt},
        {"all for the realm", P::policyAcceptingAllErrorsForRealm(realm), 0x4000000F, realm, 0xFFFFFFFFu},
        {"all, bits beyond the five", P::policyAcceptingAllErrors(), 0x80000010, other, 0xFFFFFFFFu},
        {"nothing accepted", P::policyAcceptingNoErrors(), 0x1, realm, std::nullopt},
    };
    for (const TrustCase& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(c.policy->shouldAcceptErrors(c.failures, c.askedRealm), c.accepted.has_value());
        for (bool permanently : {false, true}) {
            const auto provider =
                LuSVNSSLServerTrustPolicyAuthenticationProvider::providerWithServerTrustPolicy(c.policy, permanently);
            std::shared_ptr<void> context;
            const auto answer = std::dynamic_pointer_cast<LuSVNSSLServerTrustCredentials>(provider->credentialsForRealm(
                c.askedRealm, {{std::string(LuSVNAuthParamSSLServerFailures), c.failures}}, context));
            ASSERT_EQ(answer != nullptr, c.accepted.has_value());
            if (answer) {
                EXPECT_EQ(answer->acceptedFailures(), *c.accepted);
                EXPECT_EQ(answer->maySave(), permanently);
            }
        }
    }
}

TEST(SSLServerTrustPolicyTest, RealmSetsAddUpAndZeroForgets)
{
    const auto policy = LuSVNSSLServerTrustPolicy::policyAcceptingNoErrors();
    policy->acceptErrors(0x1, realm);
    policy->acceptErrors(0x4, realm);
    EXPECT_EQ(policy->errorsAcceptedForRealm(realm), 0x5u);
    EXPECT_EQ(policy->errorsAcceptedForRealm(other), 0u);

    const auto copy = policy->copy();
    policy->setErrorsAcceptedForRealm(0, realm);
    EXPECT_EQ(policy->errorsAcceptedForRealm(realm), 0u);
    EXPECT_FALSE(policy->shouldAcceptErrors(0x1, realm));
    EXPECT_EQ(copy->errorsAcceptedForRealm(realm), 0x5u);
}

TEST(SSLServerTrustPolicyTest, ProviderCopiesShareThePolicy)
{
    const auto policy = LuSVNSSLServerTrustPolicy::policyAcceptingNoErrors();
    const auto provider = LuSVNSSLServerTrustPolicyAuthenticationProvider::providerWithServerTrustPolicy(policy, true);
    const auto copy = std::dynamic_pointer_cast<LuSVNSSLServerTrustPolicyAuthenticationProvider>(provider->copy());
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(copy->serverTrustPolicy(), policy);
    EXPECT_TRUE(copy->acceptPermanently());
    EXPECT_FALSE(LuSVNSSLServerTrustPolicyAuthenticationProvider().serverTrustPolicy()->shouldAcceptErrors(0x8, realm));
    EXPECT_THROW(LuSVNSSLServerTrustPolicyAuthenticationProvider(nullptr, false), LuSVNInternalInconsistencyException);
}

}  // namespace
