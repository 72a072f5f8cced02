#include <tessera/LuSVNDefinitions.h>
#include <tessera/LuSVNSSLServerTrustCredentials.h>

#include "LuSVNAssert.h"
#include "LuSVNPoolCopies.h"

using namespace tessera_private;

const LuSVNCredentialsClass& LuSVNSSLServerTrustCredentials::classObject()
{
    static const auto object =
        LuSVNCredentialsClass::of<LuSVNSSLServerTrustCredentials>("LuSVNSSLServerTrustCredentials", "svn.ssl.server");
    return object;
}

std::shared_ptr<LuSVNSSLServerTrustCredentials> LuSVNSSLServerTrustCredentials::credentials()
{
    return std::make_shared<LuSVNSSLServerTrustCredentials>();
}

std::shared_ptr<LuSVNSSLServerTrustCredentials> LuSVNSSLServerTrustCredentials::credentialsWithAcceptedFailures(
    std::uint32_t acceptedFailures)
{
    auto creds = credentials();
    creds->setAcceptedFailures(acceptedFailures);
    return creds;
}

std::shared_ptr<LuSVNSSLServerTrustCredentials> LuSVNSSLServerTrustCredentials::credentialsFromStruct(
    const svn_auth_cred_ssl_server_trust_t* creds)
{
    LUSVN_PARAMETER_ASSERT(creds != nullptr, "creds != nil");
    auto result = credentialsWithAcceptedFailures(creds->accepted_failures);
    result->setMaySave(creds->may_save == 1);
    return result;
}

void* LuSVNSSLServerTrustCredentials::convertToStructFromPool(apr_pool_t* pool) const
{
    LUSVN_PARAMETER_ASSERT(pool != nullptr, "pool != NULL");
    auto* creds = LuSVNPoolAllocateZeroed<svn_auth_cred_ssl_server_trust_t>(pool);
    creds->may_save = maySave();
    creds->accepted_failures = acceptedFailures_;
    return creds;
}

bool LuSVNSSLServerTrustCredentials::isEqualToCredentials(const std::shared_ptr<const LuSVNCredentials>& other) const
{
    const auto* trust = dynamic_cast<const LuSVNSSLServerTrustCredentials*>(other.get());
    return trust && trust->acceptedFailures_ == acceptedFailures_;
}

std::string LuSVNSSLServerTrustCredentials::description() const
{
    return kind() + " (" + LuSVNStringFromSSLError(acceptedFailures_) + ")";
}

bool LuSVNSSLServerTrustCredentials::validateWithParameters(const LuSVNAuthParameters& parameters) const
{
    std::uint32_t failures = 0;
    if (const auto found = parameters.find(std::string(LuSVNAuthParamSSLServerFailures)); found != parameters.end())
        if (const auto* value = std::get_if<std::uint32_t>(&found->second))
            failures = *value;
    return (acceptedFailures_ & failures) == failures;
}

std::shared_ptr<LuSVNCredentials> LuSVNSSLServerTrustCredentials::copy() const
{
    return std::make_shared<LuSVNSSLServerTrustCredentials>(*this);
}
