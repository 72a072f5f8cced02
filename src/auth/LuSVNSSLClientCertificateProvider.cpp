#include <tessera/LuSVNStorageProviders.h>
#include <tessera/LuSVNSSLClientCertificateCredentials.h>

#include "LuSVNBackendFrame.h"

const LuSVNCredentialsClass& LuSVNSSLClientCertificateProvider::credentialsClass() const
{
    return LuSVNSSLClientCertificateCredentials::classObject();
}

svn_auth_provider_object_t* LuSVNSSLClientCertificateProvider::builtInProviderObjectFromPool(apr_pool_t* pool)
{
    LuSVNBuiltInAuthenticationProvider::builtInProviderObjectFromPool(pool);
    svn_auth_provider_object_t* provider = nullptr;
    LuSVNEntry<81>()(&provider, pool);
    return provider;
}

std::shared_ptr<LuSVNAuthenticationProvider> LuSVNSSLClientCertificateProvider::copy() const
{
    return std::make_shared<LuSVNSSLClientCertificateProvider>(*this);
}
