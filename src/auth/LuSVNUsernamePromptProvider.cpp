#include <tessera/LuSVNUsernameCredentials.h>
#include <tessera/LuSVNPromptProviders.h>

#include "LuSVNBackendFrame.h"
#include "LuSVNPromptCallbacks.h"

using namespace tessera_private;

namespace {

svn_error_t* usernamePrompt(svn_auth_cred_username_t** creds, void* baton, const char* realm, svn_boolean_t may_save,
                            apr_pool_t* pool)
{
    return LuSVNAskDelegate(
        reinterpret_cast<void**>(creds), baton, realm, pool, "username", false,
        [&] {
            auto credentials = LuSVNUsernameCredentials::credentials();
            credentials->setMaySave(may_save != 0);
            return credentials;
        },
        [](LuSVNAuthenticationProviderDelegate& delegate, LuSVNAuthenticationProvider& provider,
           LuSVNUsernameCredentials& asked, const std::optional<std::string>& realmText, std::int32_t retryCount) {
            return delegate.promptForUsernameCredentials(provider, asked, realmText, retryCount);
        });
}

}  // namespace

const LuSVNCredentialsClass& LuSVNUsernamePromptProvider::credentialsClass() const
{
    return LuSVNUsernameCredentials::classObject();
}

svn_auth_provider_object_t* LuSVNUsernamePromptProvider::builtInProviderObjectFromPool(apr_pool_t* pool)
{
    LuSVNBuiltInAuthenticationProvider::builtInProviderObjectFromPool(pool);
    svn_auth_provider_object_t* provider = nullptr;
    // The baton is this provider, which the binding in the same pool keeps.
    LuSVNEntry<87>()(&provider, usernamePrompt, this, retryLimitForBuild(), pool);
    return provider;
}

std::shared_ptr<LuSVNAuthenticationProvider> LuSVNUsernamePromptProvider::copy() const
{
    return std::make_shared<LuSVNUsernamePromptProvider>(*this);
}
