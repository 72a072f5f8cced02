#include <tessera/LuSVNStorageProviders.h>
#include <tessera/LuSVNSSLClientCertificatePasswordCredentials.h>

#include "LuSVNBackendFrame.h"

const LuSVNCredentialsClass& LuSVNKeychainCertificatePasswordProvider::credentialsClass() const
{
    return LuSVNSSLClientCertificatePasswordCredentials::classObject();
}

svn_auth_provider_object_t* LuSVNKeychainCertificatePasswordProvider::builtInProviderObjectFromPool(apr_pool_t* pool)
{
    LuSVNBuiltInAuthenticationProvider::builtInProviderObjectFromPool(pool);
    svn_auth_provider_object_t* provider = nullptr;
    LuSVNEntry<76>()(&provider, pool);
    return provider;
}

std::shared_ptr<LuSVNAuthenticationProvider> LuSVNKeychainCertificatePasswordProvider::copy() const
{
    return std::make_shared<LuSVNKeychainCertificatePasswordProvider>(*this);
}
