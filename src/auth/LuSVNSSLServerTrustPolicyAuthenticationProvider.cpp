#include <tessera/LuSVNDefinitions.h>
#include <tessera/LuSVNSSLServerTrustCredentials.h>
#include <tessera/LuSVNSSLServerTrustPolicy.h>

#include "LuSVNAssert.h"

std::shared_ptr<LuSVNSSLServerTrustPolicyAuthenticationProvider>
LuSVNSSLServerTrustPolicyAuthenticationProvider::providerWithServerTrustPolicy(
    std::shared_ptr<LuSVNSSLServerTrustPolicy> policy, bool acceptPermanently)
{
    return std::make_shared<LuSVNSSLServerTrustPolicyAuthenticationProvider>(std::move(policy), acceptPermanently);
}

LuSVNSSLServerTrustPolicyAuthenticationProvider::LuSVNSSLServerTrustPolicyAuthenticationProvider()
    : policy_(LuSVNSSLServerTrustPolicy::policyAcceptingNoErrors())
{
}

LuSVNSSLServerTrustPolicyAuthenticationProvider::LuSVNSSLServerTrustPolicyAuthenticationProvider(
    std::shared_ptr<LuSVNSSLServerTrustPolicy> policy, bool acceptPermanently)
    : policy_(std::move(policy)), acceptPermanently_(acceptPermanently)
{
    LUSVN_PARAMETER_ASSERT(policy_ != nullptr, "policy != nil");
}

LuSVNSSLServerTrustPolicyAuthenticationProvider::LuSVNSSLServerTrustPolicyAuthenticationProvider(
    const LuSVNSSLServerTrustPolicyAuthenticationProvider& other)
    : LuSVNAuthenticationProvider(other), policy_(other.serverTrustPolicy()),
      acceptPermanently_(other.acceptPermanently())
{
}

std::shared_ptr<LuSVNSSLServerTrustPolicy> LuSVNSSLServerTrustPolicyAuthenticationProvider::serverTrustPolicy() const
{
    std::lock_guard lock(mutex_);
    return policy_;
}

void LuSVNSSLServerTrustPolicyAuthenticationProvider::setServerTrustPolicy(
    std::shared_ptr<LuSVNSSLServerTrustPolicy> policy)
{
    LUSVN_PARAMETER_ASSERT(policy != nullptr, "policy != nil");
    std::lock_guard lock(mutex_);
    policy_ = std::move(policy);
}

const LuSVNCredentialsClass& LuSVNSSLServerTrustPolicyAuthenticationProvider::credentialsClass() const
{
    return LuSVNSSLServerTrustCredentials::classObject();
}

std::shared_ptr<LuSVNCredentials> LuSVNSSLServerTrustPolicyAuthenticationProvider::credentialsForRealm(
    const std::optional<std::string>& realm, const LuSVNAuthParameters& parameters, std::shared_ptr<void>&)
{
    LUSVN_PARAMETER_ASSERT(realm.has_value(), "realm != nil");
    std::uint32_t failures = 0;
    if (const auto found = parameters.find(std::string(LuSVNAuthParamSSLServerFailures)); found != parameters.end())
        if (const auto* value = std::get_if<std::uint32_t>(&found->second))
            failures = *value;
    const auto policy = serverTrustPolicy();
    if (!policy->shouldAcceptErrors(failures, *realm))
        return nullptr;
    auto credentials = LuSVNSSLServerTrustCredentials::credentialsWithAcceptedFailures(
        policy->errorsAcceptedForAllRealms() | policy->errorsAcceptedForRealm(*realm));
    credentials->setMaySave(acceptPermanently());
    return credentials;
}

std::shared_ptr<LuSVNAuthenticationProvider> LuSVNSSLServerTrustPolicyAuthenticationProvider::copy() const
{
    return std::shared_ptr<LuSVNAuthenticationProvider>(new LuSVNSSLServerTrustPolicyAuthenticationProvider(*this));
}
