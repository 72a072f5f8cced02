#include <tessera/LuSVNSSLClientCertificatePasswordCredentials.h>
#include <tessera/LuSVNPromptProviders.h>

#include "LuSVNBackendFrame.h"
#include "LuSVNPromptCallbacks.h"

using namespace tessera_private;

namespace {

svn_error_t* clientCertificatePasswordPrompt(svn_auth_cred_ssl_client_cert_pw_t** creds, void* baton, const char* realm,
                                             svn_boolean_t may_save, apr_pool_t* pool)
{
    return LuSVNAskDelegate(
        reinterpret_cast<void**>(creds), baton, realm, pool, "SSL client certificate password", false,
        [&] {
            auto credentials = LuSVNSSLClientCertificatePasswordCredentials::credentials();
            credentials->setMaySave(may_save != 0);
            return credentials;
        },
        [](LuSVNAuthenticationProviderDelegate& delegate, LuSVNAuthenticationProvider& provider,
           LuSVNSSLClientCertificatePasswordCredentials& asked, const std::optional<std::string>& realmText,
           std::int32_t retryCount) {
            return delegate.promptForSSLClientCertificatePasswordCredentials(provider, asked, realmText, retryCount);
        });
}

}  // namespace

const LuSVNCredentialsClass& LuSVNSSLClientCertificatePasswordPromptProvider::credentialsClass() const
{
    return LuSVNSSLClientCertificatePasswordCredentials::classObject();
}

svn_auth_provider_object_t* LuSVNSSLClientCertificatePasswordPromptProvider::builtInProviderObjectFromPool(
    apr_pool_t* pool)
{
    LuSVNBuiltInAuthenticationProvider::builtInProviderObjectFromPool(pool);
    svn_auth_provider_object_t* provider = nullptr;
    // The baton is this provider, which the binding in the same pool keeps.
    LuSVNEntry<85>()(&provider, clientCertificatePasswordPrompt, this, retryLimitForBuild(), pool);
    return provider;
}

std::shared_ptr<LuSVNAuthenticationProvider> LuSVNSSLClientCertificatePasswordPromptProvider::copy() const
{
    return std::make_shared<LuSVNSSLClientCertificatePasswordPromptProvider>(*this);
}
