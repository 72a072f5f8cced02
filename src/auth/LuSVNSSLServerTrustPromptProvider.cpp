#include <tessera/LuSVNPromptProviders.h>
#include <tessera/LuSVNSSLFailures.h>
#include <tessera/LuSVNSSLServerTrustCredentials.h>

#include "LuSVNAssert.h"
#include "LuSVNBackendFrame.h"
#include "LuSVNPoolCopies.h"
#include "LuSVNPromptCallbacks.h"

using namespace tessera_private;

namespace {

std::string text(const char* value)
{
    return value ? value : "";
}

// No answer and a refusal alike leave the server untrusted: Subversion then
// fails the connection with its own error.
svn_error_t* serverTrustPrompt(svn_auth_cred_ssl_server_trust_t** cred, void* baton, const char* realm,
                               apr_uint32_t failures, const svn_auth_ssl_server_cert_info_t* certInfo,
                               svn_boolean_t may_save, apr_pool_t* pool)
{
    try {
        LUSVN_PARAMETER_ASSERT(cred != nullptr, "cred != NULL");
        LUSVN_PARAMETER_ASSERT(baton != nullptr, "baton != nil");
        *cred = nullptr;
        auto& provider = *static_cast<LuSVNAuthenticationProvider*>(baton);
        const auto delegate = provider.delegate();
        if (!delegate)
            return nullptr;
        const LuSVNCertificate certificate =
            certInfo ? LuSVNCertificate(text(certInfo->hostname), text(certInfo->fingerprint),
                                        text(certInfo->valid_from), text(certInfo->valid_until),
                                        text(certInfo->issuer_dname), text(certInfo->ascii_cert))
                     : LuSVNCertificate("", "", "", "", "", "");
        bool permanent = false;
        const auto answer = delegate->promptForAuthenticationErrors(
            provider, LuSVNSSLErrorsFromFailures(failures), certificate, LuSVNOptionalString(realm), may_save != 0,
            permanent);
        if (answer != true)
            return nullptr;
        auto* trust = LuSVNPoolAllocateZeroed<svn_auth_cred_ssl_server_trust_t>(pool);
        trust->accepted_failures = failures;  // as Subversion gave them, bits beyond the five included
        trust->may_save = may_save && permanent;
        *cred = trust;
        return nullptr;
    } catch (...) {
        return LuSVNPromptExceptionError("SSL server trust", std::current_exception());
    }
}

}  // namespace

const LuSVNCredentialsClass& LuSVNSSLServerTrustPromptProvider::credentialsClass() const
{
    return LuSVNSSLServerTrustCredentials::classObject();
}

svn_auth_provider_object_t* LuSVNSSLServerTrustPromptProvider::builtInProviderObjectFromPool(apr_pool_t* pool)
{
    LuSVNBuiltInAuthenticationProvider::builtInProviderObjectFromPool(pool);
    svn_auth_provider_object_t* provider = nullptr;
    // The baton is this provider, which the binding in the same pool keeps.
    LuSVNEntry<88>()(&provider, serverTrustPrompt, this, pool);
    return provider;
}

std::shared_ptr<LuSVNAuthenticationProvider> LuSVNSSLServerTrustPromptProvider::copy() const
{
    return std::make_shared<LuSVNSSLServerTrustPromptProvider>(*this);
}
