// Subversion's own "svn.username" provider (svn_auth_get_username_provider,
// entry point 79): the user name from the run-time configuration or, failing
// that, the name of the user running the process. Repositories reached
// through file:// ask for nothing else, for example when a status walk
// compares against the repository or a commit names its author.
//
//   context->authenticationStack()->addProvider(std::make_shared<LuSVNUsernameProvider>());
#pragma once

#include <tessera/LuSVNBuiltInAuthenticationProvider.h>

class TESSERA_EXPORT LuSVNUsernameProvider : public LuSVNBuiltInAuthenticationProvider {
public:
    LuSVNUsernameProvider() = default;

    /// LuSVNUsernameCredentials.
    const LuSVNCredentialsClass& credentialsClass() const override;
    /// The backend's provider, made in the pool through the current backend.
    svn_auth_provider_object_t* builtInProviderObjectFromPool(apr_pool_t* pool) override;
    std::shared_ptr<LuSVNAuthenticationProvider> copy() const override;
};
