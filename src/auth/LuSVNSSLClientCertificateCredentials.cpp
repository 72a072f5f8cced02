#include <tessera/LuSVNSSLClientCertificateCredentials.h>

#include "LuSVNAssert.h"
#include "LuSVNPoolCopies.h"

using namespace tessera_private;

const LuSVNCredentialsClass& LuSVNSSLClientCertificateCredentials::classObject()
{
    static const auto object = LuSVNCredentialsClass::of<LuSVNSSLClientCertificateCredentials>(
        "LuSVNSSLClientCertificateCredentials", "svn.ssl.client-cert");
    return object;
}

std::shared_ptr<LuSVNSSLClientCertificateCredentials> LuSVNSSLClientCertificateCredentials::credentials()
{
    return std::make_shared<LuSVNSSLClientCertificateCredentials>();
}

std::shared_ptr<LuSVNSSLClientCertificateCredentials> LuSVNSSLClientCertificateCredentials::
    credentialsWithCertificateAtPath(std::optional<std::string> certificatePath)
{
    auto creds = credentials();
    creds->setCertificatePath(std::move(certificatePath));
    return creds;
}

std::shared_ptr<LuSVNSSLClientCertificateCredentials> LuSVNSSLClientCertificateCredentials::credentialsFromStruct(
    const svn_auth_cred_ssl_client_cert_t* creds)
{
    LUSVN_PARAMETER_ASSERT(creds != nullptr, "creds != nil");
    auto result = credentialsWithCertificateAtPath(LuSVNOptionalString(creds->cert_file));
    result->setMaySave(creds->may_save == 1);
    return result;
}

void* LuSVNSSLClientCertificateCredentials::convertToStructFromPool(apr_pool_t* pool) const
{
    LUSVN_PARAMETER_ASSERT(pool != nullptr, "pool != NULL");
    auto* creds = LuSVNPoolAllocateZeroed<svn_auth_cred_ssl_client_cert_t>(pool);
    creds->cert_file = LuSVNPoolCopyString(certificatePath_, pool);
    creds->may_save = maySave();
    return creds;
}

bool LuSVNSSLClientCertificateCredentials::isEqualToCredentials(
    const std::shared_ptr<const LuSVNCredentials>& other) const
{
    const auto* certificate = dynamic_cast<const LuSVNSSLClientCertificateCredentials*>(other.get());
    return certificate && certificate->certificatePath_ == certificatePath_;
}

std::string LuSVNSSLClientCertificateCredentials::description() const
{
    return certificatePath_ && !certificatePath_->empty() ? kind() + " (" + *certificatePath_ + ")" : kind();
}

std::shared_ptr<LuSVNCredentials> LuSVNSSLClientCertificateCredentials::copy() const
{
    return std::make_shared<LuSVNSSLClientCertificateCredentials>(*this);
}
