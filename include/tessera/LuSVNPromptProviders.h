// Providers that ask the provider's delegate (LuSVNAuthenticationProviderDelegate)
// through Subversion's own prompt providers:
//
//   LuSVNSimplePromptProvider                         "svn.simple"
//   LuSVNUsernamePromptProvider                       "svn.username"
//   LuSVNSSLClientCertificatePromptProvider           "svn.ssl.client-cert"
//   LuSVNSSLClientCertificatePasswordPromptProvider   "svn.ssl.client-passphrase"
//   LuSVNSSLServerTrustPromptProvider                 "svn.ssl.server"
//
// Subversion asks once and, after each refusal by the server, again up to
// the retry limit: a limit of 2 (the svn client's) asks three times at most.
// A change of the limit counts from the next rebuild of the stack's baton.
//
//   class Terminal : public LuSVNAuthenticationProviderDelegate {
//       std::optional<bool> promptForSimpleCredentials(LuSVNAuthenticationProvider&,
//           LuSVNSimpleCredentials& creds, const std::optional<std::string>& realm, std::int32_t) override
//       { creds.setUsername(ask("Username: ")); creds.setPassword(askHidden("Password: ")); return true; }
//   };
//   auto prompt = LuSVNAuthenticationProvider::simplePromptProviderWithRetryLimit(2);
//   prompt->setDelegate(terminal);
//
// A delegate answering false cancels the operation ("User cancelled
// authentication", 200015); a provider without a delegate that answers makes
// it fail with "Delegate not installed" (200015), except the client
// certificate prompt, after which Subversion goes on without a certificate,
// and the server-trust prompt, which then trusts nothing. An exception of the
// delegate is logged and fails the operation with "Delegate raised an
// exception" (20014).
#pragma once

#include <atomic>
#include <cstdint>

#include <tessera/LuSVNBuiltInAuthenticationProvider.h>

/// A prompt provider with Subversion's retry limit.
class TESSERA_EXPORT LuSVNRetryLimitedPromptProvider : public LuSVNBuiltInAuthenticationProvider {
public:
    /// How often Subversion asks again after a refusal; 0 at first.
    std::int32_t retryLimit() const { return retryLimit_; }
    /// Sets the limit; after a baton was built with this provider it counts
    /// from the next rebuild only (a warning says so in the log).
    void setRetryLimit(std::int32_t retryLimit);

protected:
    LuSVNRetryLimitedPromptProvider() = default;
    /// Copies the delegate and the limit.
    LuSVNRetryLimitedPromptProvider(const LuSVNRetryLimitedPromptProvider& other);
    /// The limit to build with; from now on changes warn.
    std::int32_t retryLimitForBuild();

private:
    std::atomic<std::int32_t> retryLimit_{0};
    std::atomic<bool> built_{false};
};

/// Asks for a user name and password.
class TESSERA_EXPORT LuSVNSimplePromptProvider : public LuSVNRetryLimitedPromptProvider {
public:
    /// LuSVNSimpleCredentials.
    const LuSVNCredentialsClass& credentialsClass() const override;
    /// Entry point 86.
    svn_auth_provider_object_t* builtInProviderObjectFromPool(apr_pool_t* pool) override;
    std::shared_ptr<LuSVNAuthenticationProvider> copy() const override;
};

/// Asks for a user name.
class TESSERA_EXPORT LuSVNUsernamePromptProvider : public LuSVNRetryLimitedPromptProvider {
public:
    /// LuSVNUsernameCredentials.
    const LuSVNCredentialsClass& credentialsClass() const override;
    /// Entry point 87.
    svn_auth_provider_object_t* builtInProviderObjectFromPool(apr_pool_t* pool) override;
    std::shared_ptr<LuSVNAuthenticationProvider> copy() const override;
};

/// Asks for the path of a client certificate.
class TESSERA_EXPORT LuSVNSSLClientCertificatePromptProvider : public LuSVNRetryLimitedPromptProvider {
public:
    /// LuSVNSSLClientCertificateCredentials.
    const LuSVNCredentialsClass& credentialsClass() const override;
    /// Entry point 84.
    svn_auth_provider_object_t* builtInProviderObjectFromPool(apr_pool_t* pool) override;
    std::shared_ptr<LuSVNAuthenticationProvider> copy() const override;
};

/// Asks for a client certificate's passphrase.
class TESSERA_EXPORT LuSVNSSLClientCertificatePasswordPromptProvider : public LuSVNRetryLimitedPromptProvider {
public:
    /// LuSVNSSLClientCertificatePasswordCredentials.
    const LuSVNCredentialsClass& credentialsClass() const override;
    /// Entry point 85.
    svn_auth_provider_object_t* builtInProviderObjectFromPool(apr_pool_t* pool) override;
    std::shared_ptr<LuSVNAuthenticationProvider> copy() const override;
};

/// Asks whether to trust a server whose certificate has failures.
class TESSERA_EXPORT LuSVNSSLServerTrustPromptProvider : public LuSVNBuiltInAuthenticationProvider {
public:
    /// LuSVNSSLServerTrustCredentials.
    const LuSVNCredentialsClass& credentialsClass() const override;
    /// Entry point 88.
    svn_auth_provider_object_t* builtInProviderObjectFromPool(apr_pool_t* pool) override;
    std::shared_ptr<LuSVNAuthenticationProvider> copy() const override;
};
