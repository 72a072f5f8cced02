#include <tessera/LuSVNSSLClientCertificatePasswordCredentials.h>

#include "LuSVNAssert.h"
#include "LuSVNPoolCopies.h"

using namespace tessera_private;

const LuSVNCredentialsClass& LuSVNSSLClientCertificatePasswordCredentials::classObject()
{
    static const auto object = LuSVNCredentialsClass::of<LuSVNSSLClientCertificatePasswordCredentials>(
        "LuSVNSSLClientCertificatePasswordCredentials", "svn.ssl.client-passphrase");
    return object;
}

std::shared_ptr<LuSVNSSLClientCertificatePasswordCredentials> LuSVNSSLClientCertificatePasswordCredentials::
    credentials()
{
    return std::make_shared<LuSVNSSLClientCertificatePasswordCredentials>();
}

std::shared_ptr<LuSVNSSLClientCertificatePasswordCredentials> LuSVNSSLClientCertificatePasswordCredentials::
    credentialsWithPassword(std::optional<std::string> password)
{
    auto creds = credentials();
    creds->setPassword(std::move(password));
    return creds;
}

std::shared_ptr<LuSVNSSLClientCertificatePasswordCredentials> LuSVNSSLClientCertificatePasswordCredentials::
    credentialsFromStruct(const svn_auth_cred_ssl_client_cert_pw_t* creds)
{
    LUSVN_PARAMETER_ASSERT(creds != nullptr, "creds != nil");
    auto result = credentialsWithPassword(LuSVNOptionalString(creds->password));
    result->setMaySave(creds->may_save == 1);
    return result;
}

void* LuSVNSSLClientCertificatePasswordCredentials::convertToStructFromPool(apr_pool_t* pool) const
{
    LUSVN_PARAMETER_ASSERT(pool != nullptr, "pool != NULL");
    auto* creds = LuSVNPoolAllocateZeroed<svn_auth_cred_ssl_client_cert_pw_t>(pool);
    creds->password = LuSVNPoolCopyString(password_, pool);
    creds->may_save = maySave();
    return creds;
}

bool LuSVNSSLClientCertificatePasswordCredentials::isEqualToCredentials(
    const std::shared_ptr<const LuSVNCredentials>& other) const
{
    const auto* passphrase = dynamic_cast<const LuSVNSSLClientCertificatePasswordCredentials*>(other.get());
    return passphrase && passphrase->password_ == password_;
}

std::string LuSVNSSLClientCertificatePasswordCredentials::description() const
{
    return password_ && !password_->empty() ? kind() + " (" + maskedSecret(*password_) + ")" : kind();
}

std::shared_ptr<LuSVNCredentials> LuSVNSSLClientCertificatePasswordCredentials::copy() const
{
    return std::make_shared<LuSVNSSLClientCertificatePasswordCredentials>(*this);
}
