#include <tessera/LuSVNSSLServerTrustPolicy.h>

std::shared_ptr<LuSVNSSLServerTrustPolicy> LuSVNSSLServerTrustPolicy::policyAcceptingErrors(std::uint32_t failures,
                                                                                          const std::string& realm)
{
    auto policy = policyAcceptingNoErrors();
    policy->setErrorsAcceptedForRealm(failures, realm);
    return policy;
}

std::shared_ptr<LuSVNSSLServerTrustPolicy> LuSVNSSLServerTrustPolicy::policyAcceptingErrors(std::uint32_t failures)
{
    auto policy = policyAcceptingNoErrors();
    policy->setErrorsAcceptedForAllRealms(failures);
    return policy;
}

std::shared_ptr<LuSVNSSLServerTrustPolicy> LuSVNSSLServerTrustPolicy::policyAcceptingAllErrorsForRealm(
    const std::string& realm)
{
    return policyAcceptingErrors(0xFFFFFFFF, realm);
}

std::shared_ptr<LuSVNSSLServerTrustPolicy> LuSVNSSLServerTrustPolicy::policyAcceptingAllErrors()
{
    return policyAcceptingErrors(0xFFFFFFFF);
}

std::shared_ptr<LuSVNSSLServerTrustPolicy> LuSVNSSLServerTrustPolicy::policyAcceptingNoErrors()
{
    return std::make_shared<LuSVNSSLServerTrustPolicy>();
}

LuSVNSSLServerTrustPolicy::LuSVNSSLServerTrustPolicy(const LuSVNSSLServerTrustPolicy& other)
    : errorsAcceptedForAllRealms_(other.errorsAcceptedForAllRealms())
{
    std::lock_guard lock(other.mutex_);
    errorsAccepted_ = other.errorsAccepted_;
}

std::uint32_t LuSVNSSLServerTrustPolicy::errorsAcceptedForRealm(const std::string& realm) const
{
    std::lock_guard lock(mutex_);
    const auto found = errorsAccepted_.find(realm);
    return found == errorsAccepted_.end() ? 0 : found->second;
}

void LuSVNSSLServerTrustPolicy::setErrorsAcceptedForRealm(std::uint32_t failures, const std::string& realm)
{
    std::lock_guard lock(mutex_);
    if (failures == 0)
        errorsAccepted_.erase(realm);
    else
        errorsAccepted_[realm] = failures;
}

void LuSVNSSLServerTrustPolicy::acceptErrors(std::uint32_t failures, const std::string& realm)
{
    std::lock_guard lock(mutex_);
    setErrorsAcceptedForRealm(errorsAcceptedForRealm(realm) | failures, realm);
}

bool LuSVNSSLServerTrustPolicy::shouldAcceptErrors(std::uint32_t failures, const std::string& realm) const
{
    const std::uint32_t accepted = errorsAcceptedForAllRealms() | errorsAcceptedForRealm(realm);
    return (failures & accepted) == failures;
}

std::shared_ptr<LuSVNSSLServerTrustPolicy> LuSVNSSLServerTrustPolicy::copy() const
{
    return std::make_shared<LuSVNSSLServerTrustPolicy>(*this);
}
