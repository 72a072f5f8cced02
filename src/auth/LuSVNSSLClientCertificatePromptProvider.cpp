#include <tessera/LuSVNSSLClientCertificateCredentials.h>
#include <tessera/LuSVNPromptProviders.h>

#include "LuSVNBackendFrame.h"
#include "LuSVNPromptCallbacks.h"

using namespace tessera_private;

namespace {

svn_error_t* clientCertificatePrompt(svn_auth_cred_ssl_client_cert_t** creds, void* baton, const char* realm,
                                     svn_boolean_t may_save, apr_pool_t* pool)
{
    return LuSVNAskDelegate(
        reinterpret_cast<void**>(creds), baton, realm, pool, "SSL client certificate", true,
        [&] {
            auto credentials = LuSVNSSLClientCertificateCredentials::credentials();
            credentials->setMaySave(may_save != 0);
            return credentials;
        },
        [](LuSVNAuthenticationProviderDelegate& delegate, LuSVNAuthenticationProvider& provider,
           LuSVNSSLClientCertificateCredentials& asked, const std::optional<std::string>& realmText,
           std::int32_t retryCount) {
            return delegate.promptForSSLClientCertificateCredentials(provider, asked, realmText, retryCount);
        });
}

}  // namespace

const LuSVNCredentialsClass& LuSVNSSLClientCertificatePromptProvider::credentialsClass() const
{
    return LuSVNSSLClientCertificateCredentials::classObject();
}

svn_auth_provider_object_t* LuSVNSSLClientCertificatePromptProvider::builtInProviderObjectFromPool(apr_pool_t* pool)
{
    LuSVNBuiltInAuthenticationProvider::builtInProviderObjectFromPool(pool);
    svn_auth_provider_object_t* provider = nullptr;
    // The baton is this provider, which the binding in the same pool keeps.
    LuSVNEntry<84>()(&provider, clientCertificatePrompt, this, retryLimitForBuild(), pool);
    return provider;
}

std::shared_ptr<LuSVNAuthenticationProvider> LuSVNSSLClientCertificatePromptProvider::copy() const
{
    return std::make_shared<LuSVNSSLClientCertificatePromptProvider>(*this);
}
