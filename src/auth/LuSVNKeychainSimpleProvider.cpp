#include <tessera/LuSVNStorageProviders.h>
#include <tessera/LuSVNSimpleCredentials.h>

#include "LuSVNBackendFrame.h"

const LuSVNCredentialsClass& LuSVNKeychainSimpleProvider::credentialsClass() const
{
    return LuSVNSimpleCredentials::classObject();
}

svn_auth_provider_object_t* LuSVNKeychainSimpleProvider::builtInProviderObjectFromPool(apr_pool_t* pool)
{
    LuSVNBuiltInAuthenticationProvider::builtInProviderObjectFromPool(pool);
    svn_auth_provider_object_t* provider = nullptr;
    LuSVNEntry<75>()(&provider, pool);
    return provider;
}

std::shared_ptr<LuSVNAuthenticationProvider> LuSVNKeychainSimpleProvider::copy() const
{
    return std::make_shared<LuSVNKeychainSimpleProvider>(*this);
}
