// A "svn.simple" provider that answers with the default user name and
// password parameters of the stack (LuSVNAuthParamDefaultUsername,
// LuSVNAuthParamDefaultPassword), as given on a command line.
//
//   stack->addProvider(LuSVNDefaultCredentialsAuthenticationProvider::defaultCredentialsProvider());
//   stack->setValue(std::string("alice"), LuSVNAuthParamDefaultUsername);
//   stack->setValue(std::string("secret"), LuSVNAuthParamDefaultPassword);
#pragma once

#include <tessera/LuSVNAuthenticationProvider.h>

/// Simple credentials from the default user name and password parameters.
class TESSERA_EXPORT LuSVNDefaultCredentialsAuthenticationProvider : public LuSVNAuthenticationProvider {
public:
    /// A new provider.
    static std::shared_ptr<LuSVNDefaultCredentialsAuthenticationProvider> defaultCredentialsProvider();

    /// LuSVNSimpleCredentials.
    const LuSVNCredentialsClass& credentialsClass() const override;
    /// The user name and password parameters as simple credentials, which
    /// may be saved when the parameter LuSVNAuthParamDefaultMayStorePassword
    /// is true; null unless both are there.
    std::shared_ptr<LuSVNCredentials> credentialsForRealm(const std::optional<std::string>& realm,
                                                          const LuSVNAuthParameters& parameters,
                                                          std::shared_ptr<void>& contextInfo) override;
    std::shared_ptr<LuSVNAuthenticationProvider> copy() const override;
};
