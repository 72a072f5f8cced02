#include <tessera/LuSVNUsernameCredentials.h>
#include <tessera/LuSVNUsernameProvider.h>

#include "LuSVNBackendFrame.h"

const LuSVNCredentialsClass& LuSVNUsernameProvider::credentialsClass() const
{
    return LuSVNUsernameCredentials::classObject();
}

svn_auth_provider_object_t* LuSVNUsernameProvider::builtInProviderObjectFromPool(apr_pool_t* pool)
{
    LuSVNBuiltInAuthenticationProvider::builtInProviderObjectFromPool(pool);
    svn_auth_provider_object_t* provider = nullptr;
    LuSVNEntry<79>()(&provider, pool);
    return provider;
}

std::shared_ptr<LuSVNAuthenticationProvider> LuSVNUsernameProvider::copy() const
{
    return std::make_shared<LuSVNUsernameProvider>(*this);
}
