// Subversion's own credential stores as providers.
//
//   LuSVNSimpleProvider                         "svn.simple"
//   LuSVNSSLServerTrustProvider                 "svn.ssl.server"
//   LuSVNSSLClientCertificateProvider           "svn.ssl.client-cert"
//   LuSVNSSLClientCertificatePasswordProvider   "svn.ssl.client-passphrase"
//   LuSVNKeychainSimpleProvider                 "svn.simple"
//   LuSVNKeychainCertificatePasswordProvider    "svn.ssl.client-passphrase"
//
// The first four read and write the files of Subversion's configuration
// directory (the parameter LuSVNAuthParamConfigDirectory, else ~/.subversion)
// as the svn client does, and read the run-time configuration's defaults:
// the client certificate file of a server group, for one. The simple and the
// passphrase store ask the provider's delegate
// (maySavePlainTextCredentialsForRealm) before they store a secret
// unencrypted; without a delegate they may.
//
// The keychain providers keep passwords in the system's keyring. On Linux
// that is the freedesktop Secret Service (GNOME Keyring) or else KWallet,
// reached through the optional keyring modules of the installed Subversion.
// Put them in a stack only when the application wants keyring storage, in
// front of the file stores. Where neither module is installed they answer
// nothing and store nothing, so the next provider of the kind is asked. With
// a module but no keyring daemon (no D-Bus session, as on a server) the
// module finds no keyring: nothing is read from it, and the file store
// behind it keeps what Subversion saves.
//
//   stack->setProviders({LuSVNAuthenticationProvider::keychainSimpleProvider(),
//                        LuSVNAuthenticationProvider::simpleProvider(),
//                        LuSVNAuthenticationProvider::simplePromptProviderWithRetryLimit(2)});
#pragma once

#include <tessera/LuSVNBuiltInAuthenticationProvider.h>

/// Passwords in the files of Subversion's configuration directory.
class TESSERA_EXPORT LuSVNSimpleProvider : public LuSVNBuiltInAuthenticationProvider {
public:
    /// LuSVNSimpleCredentials.
    const LuSVNCredentialsClass& credentialsClass() const override;
    /// Entry point 78, asking the delegate about plaintext storage, or 77 on
    /// releases without it.
    svn_auth_provider_object_t* builtInProviderObjectFromPool(apr_pool_t* pool) override;
    std::shared_ptr<LuSVNAuthenticationProvider> copy() const override;
};

/// Server certificates accepted permanently, from the configuration
/// directory.
class TESSERA_EXPORT LuSVNSSLServerTrustProvider : public LuSVNBuiltInAuthenticationProvider {
public:
    /// LuSVNSSLServerTrustCredentials.
    const LuSVNCredentialsClass& credentialsClass() const override;
    /// Entry point 80.
    svn_auth_provider_object_t* builtInProviderObjectFromPool(apr_pool_t* pool) override;
    std::shared_ptr<LuSVNAuthenticationProvider> copy() const override;
};

/// The client certificate that the run-time configuration names for the
/// server (ssl-client-cert-file).
class TESSERA_EXPORT LuSVNSSLClientCertificateProvider : public LuSVNBuiltInAuthenticationProvider {
public:
    /// LuSVNSSLClientCertificateCredentials.
    const LuSVNCredentialsClass& credentialsClass() const override;
    /// Entry point 81.
    svn_auth_provider_object_t* builtInProviderObjectFromPool(apr_pool_t* pool) override;
    std::shared_ptr<LuSVNAuthenticationProvider> copy() const override;
};

/// Client certificate passphrases from the run-time configuration
/// (ssl-client-cert-password) and the configuration directory.
class TESSERA_EXPORT LuSVNSSLClientCertificatePasswordProvider : public LuSVNBuiltInAuthenticationProvider {
public:
    /// LuSVNSSLClientCertificatePasswordCredentials.
    const LuSVNCredentialsClass& credentialsClass() const override;
    /// Entry point 83, asking the delegate about plaintext storage, or 82 on
    /// releases without it.
    svn_auth_provider_object_t* builtInProviderObjectFromPool(apr_pool_t* pool) override;
    std::shared_ptr<LuSVNAuthenticationProvider> copy() const override;
};

/// Passwords in the system's keyring.
class TESSERA_EXPORT LuSVNKeychainSimpleProvider : public LuSVNBuiltInAuthenticationProvider {
public:
    /// LuSVNSimpleCredentials.
    const LuSVNCredentialsClass& credentialsClass() const override;
    /// Entry point 75.
    svn_auth_provider_object_t* builtInProviderObjectFromPool(apr_pool_t* pool) override;
    std::shared_ptr<LuSVNAuthenticationProvider> copy() const override;
};

/// Client certificate passphrases in the system's keyring.
class TESSERA_EXPORT LuSVNKeychainCertificatePasswordProvider : public LuSVNBuiltInAuthenticationProvider {
public:
    /// LuSVNSSLClientCertificatePasswordCredentials.
    const LuSVNCredentialsClass& credentialsClass() const override;
    /// Entry point 76.
    svn_auth_provider_object_t* builtInProviderObjectFromPool(apr_pool_t* pool) override;
    std::shared_ptr<LuSVNAuthenticationProvider> copy() const override;
};
