#include <tessera/LuSVNStorageProviders.h>
#include <tessera/LuSVNSSLClientCertificatePasswordCredentials.h>

#include "LuSVNBackendFrame.h"
#include "LuSVNEntryPoints+Typed.h"
#include "LuSVNPromptCallbacks.h"

using namespace tessera_private;

const LuSVNCredentialsClass& LuSVNSSLClientCertificatePasswordProvider::credentialsClass() const
{
    return LuSVNSSLClientCertificatePasswordCredentials::classObject();
}

svn_auth_provider_object_t* LuSVNSSLClientCertificatePasswordProvider::builtInProviderObjectFromPool(apr_pool_t* pool)
{
    LuSVNBuiltInAuthenticationProvider::builtInProviderObjectFromPool(pool);
    svn_auth_provider_object_t* provider = nullptr;
    if (LuSVNCurrentHasEntryPoint(83))
        LuSVNEntry<83>()(&provider, LuSVNPlaintextPromptFunc, this, pool);
    else
        LuSVNEntry<82>()(&provider, pool);
    return provider;
}

std::shared_ptr<LuSVNAuthenticationProvider> LuSVNSSLClientCertificatePasswordProvider::copy() const
{
    return std::make_shared<LuSVNSSLClientCertificatePasswordProvider>(*this);
}
