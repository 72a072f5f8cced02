#include <tessera/LuSVNStorageProviders.h>
#include <tessera/LuSVNSSLServerTrustCredentials.h>

#include "LuSVNBackendFrame.h"

const LuSVNCredentialsClass& LuSVNSSLServerTrustProvider::credentialsClass() const
{
    return LuSVNSSLServerTrustCredentials::classObject();
}

svn_auth_provider_object_t* LuSVNSSLServerTrustProvider::builtInProviderObjectFromPool(apr_pool_t* pool)
{
    LuSVNBuiltInAuthenticationProvider::builtInProviderObjectFromPool(pool);
    svn_auth_provider_object_t* provider = nullptr;
    LuSVNEntry<80>()(&provider, pool);
    return provider;
}

std::shared_ptr<LuSVNAuthenticationProvider> LuSVNSSLServerTrustProvider::copy() const
{
    return std::make_shared<LuSVNSSLServerTrustProvider>(*this);
}
