#include <tessera/LuSVNStorageProviders.h>
#include <tessera/LuSVNSimpleCredentials.h>

#include "LuSVNBackendFrame.h"
#include "LuSVNEntryPoints+Typed.h"
#include "LuSVNPromptCallbacks.h"

using namespace tessera_private;

const LuSVNCredentialsClass& LuSVNSimpleProvider::credentialsClass() const
{
    return LuSVNSimpleCredentials::classObject();
}

svn_auth_provider_object_t* LuSVNSimpleProvider::builtInProviderObjectFromPool(apr_pool_t* pool)
{
    LuSVNBuiltInAuthenticationProvider::builtInProviderObjectFromPool(pool);
    svn_auth_provider_object_t* provider = nullptr;
    // The baton is this provider, which the binding in the same pool keeps.
    if (LuSVNCurrentHasEntryPoint(78))
        LuSVNEntry<78>()(&provider, LuSVNPlaintextPromptFunc, this, pool);
    else
        LuSVNEntry<77>()(&provider, pool);
    return provider;
}

std::shared_ptr<LuSVNAuthenticationProvider> LuSVNSimpleProvider::copy() const
{
    return std::make_shared<LuSVNSimpleProvider>(*this);
}
