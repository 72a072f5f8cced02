#include <tessera/LuSVNSimpleCredentials.h>
#include <tessera/LuSVNPromptProviders.h>

#include "LuSVNBackendFrame.h"
#include "LuSVNPromptCallbacks.h"

using namespace tessera_private;

namespace {

svn_error_t* simplePrompt(svn_auth_cred_simple_t** creds, void* baton, const char* realm, const char* username,
                          svn_boolean_t may_save, apr_pool_t* pool)
{
    return LuSVNAskDelegate(
        reinterpret_cast<void**>(creds), baton, realm, pool, "simple", false,
        [&] {
            auto credentials = LuSVNSimpleCredentials::credentials();
            credentials->setMaySave(may_save != 0);
            if (username)
                credentials->setUsername(username);
            return credentials;
        },
        [](LuSVNAuthenticationProviderDelegate& delegate, LuSVNAuthenticationProvider& provider,
           LuSVNSimpleCredentials& asked, const std::optional<std::string>& realmText, std::int32_t retryCount) {
            return delegate.promptForSimpleCredentials(provider, asked, realmText, retryCount);
        });
}

}  // namespace

const LuSVNCredentialsClass& LuSVNSimplePromptProvider::credentialsClass() const
{
    return LuSVNSimpleCredentials::classObject();
}

svn_auth_provider_object_t* LuSVNSimplePromptProvider::builtInProviderObjectFromPool(apr_pool_t* pool)
{
    LuSVNBuiltInAuthenticationProvider::builtInProviderObjectFromPool(pool);
    svn_auth_provider_object_t* provider = nullptr;
    // The baton is this provider, which the binding in the same pool keeps.
    LuSVNEntry<86>()(&provider, simplePrompt, this, retryLimitForBuild(), pool);
    return provider;
}

std::shared_ptr<LuSVNAuthenticationProvider> LuSVNSimplePromptProvider::copy() const
{
    return std::make_shared<LuSVNSimplePromptProvider>(*this);
}
