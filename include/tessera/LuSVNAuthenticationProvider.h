// Authentication providers: objects that answer Subversion's requests for
// credentials.
//
// Subversion asks the providers of one credential kind, in the order of the
// authentication stack (LuSVNAuthenticationStack.h), for first credentials,
// for next ones after a refusal, and to save the ones that worked. A provider
// written in C++ derives from LuSVNAuthenticationProvider and overrides
//
//   credentialsClass()          the kind it serves (required)
//   credentialsForRealm()       first credentials, or null to pass
//   nextCredentialsForRealm()   another try after a refusal, or null
//   saveCredentials()           true when it stored the credentials
//
// and copy(). The bridge turns the object into Subversion's provider
// (providerObjectFromPool) whose C callbacks, the trampolines below, call
// these operations with the backend of the asking stack pushed.
//
// A provider may sit in any number of authentication stacks at once, those
// of contexts on other threads included: each stack has its own Subversion
// provider for it, made in the stack's pool, and the provider keeps nothing
// of any stack. Its operations may thus be called on several threads at
// once; a provider with state of its own guards it.
//
//   class Answer : public LuSVNAuthenticationProvider {
//       const LuSVNCredentialsClass& credentialsClass() const override
//       { return LuSVNSimpleCredentials::classObject(); }
//       std::shared_ptr<LuSVNCredentials> credentialsForRealm(const std::optional<std::string>&,
//           const LuSVNAuthParameters&, std::shared_ptr<void>&) override
//       { return LuSVNSimpleCredentials::credentialsWithUsername("alice", "secret"); }
//       std::shared_ptr<LuSVNAuthenticationProvider> copy() const override
//       { return std::make_shared<Answer>(*this); }
//   };
//
// Exceptions: an exception raised by an operation of a provider never
// enters Subversion. The trampoline keeps it and returns error 20014
// "Authentication provider raised an exception (first credentials)" (or
// "(next credentials)", "(save credentials)"), with which Subversion fails
// the operation; the library's operation then raises the provider's own
// exception. Credentials of another class than credentialsClass() are
// ignored with a warning in the log.
//
// Subversion's own providers are wrapped as objects of the same family by
// LuSVNBuiltInAuthenticationProvider.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include <tessera/LuSVNAuthParameters.h>
#include <tessera/LuSVNBundleProxy.h>
#include <tessera/LuSVNCredentials.h>
#include <tessera/LuSVNExport.h>

struct apr_hash_t;
struct apr_pool_t;
struct svn_auth_provider_object_t;
struct svn_error_t;

class LuSVNAuthenticationProvider;
class LuSVNKeychainCertificatePasswordProvider;
class LuSVNKeychainSimpleProvider;
class LuSVNSSLClientCertificatePasswordPromptProvider;
class LuSVNSSLClientCertificatePasswordProvider;
class LuSVNSSLClientCertificatePromptProvider;
class LuSVNSSLClientCertificateProvider;
class LuSVNSSLServerTrustPromptProvider;
class LuSVNSSLServerTrustProvider;
class LuSVNSimplePromptProvider;
class LuSVNSimpleProvider;
class LuSVNUsernamePromptProvider;
class LuSVNUsernameProvider;
class LuSVNSimpleCredentials;
class LuSVNUsernameCredentials;
class LuSVNSSLClientCertificateCredentials;
class LuSVNSSLClientCertificatePasswordCredentials;

/// The listener of a provider, which providers that ask the user (the prompt
/// providers, LuSVNPromptProviders.h) consult. Not retained by the provider.
///
/// Every operation is optional: one that is not overridden answers nullopt,
/// "not implemented", and the provider behaves as its description says for
/// a missing listener. An answer of true goes on with the credentials as the
/// listener filled them in, false cancels. The retry count is 0 at the first
/// question of a request on this thread, then 1, 2, ... The operations are
/// called on the thread of the Subversion operation; a listener with a user
/// interface on another thread marshals itself.
class TESSERA_EXPORT LuSVNAuthenticationProviderDelegate {
public:
    virtual ~LuSVNAuthenticationProviderDelegate();

    /// User name and password; the user name is preset when Subversion
    /// proposes one, maySave() as Subversion allows.
    virtual std::optional<bool> promptForSimpleCredentials(LuSVNAuthenticationProvider& provider,
                                                           LuSVNSimpleCredentials& credentials,
                                                           const std::optional<std::string>& realm,
                                                           std::int32_t retryCount);
    /// A user name.
    virtual std::optional<bool> promptForUsernameCredentials(LuSVNAuthenticationProvider& provider,
                                                             LuSVNUsernameCredentials& credentials,
                                                             const std::optional<std::string>& realm,
                                                             std::int32_t retryCount);
    /// The path of a client certificate.
    virtual std::optional<bool> promptForSSLClientCertificateCredentials(
        LuSVNAuthenticationProvider& provider, LuSVNSSLClientCertificateCredentials& credentials,
        const std::optional<std::string>& realm, std::int32_t retryCount);
    /// The passphrase of a client certificate.
    virtual std::optional<bool> promptForSSLClientCertificatePasswordCredentials(
        LuSVNAuthenticationProvider& provider, LuSVNSSLClientCertificatePasswordCredentials& credentials,
        const std::optional<std::string>& realm, std::int32_t retryCount);
    /// Whether to trust a server despite the failures (the five defined bits
    /// only); true with permanent set stores the acceptance when mayStore.
    virtual std::optional<bool> promptForAuthenticationErrors(LuSVNAuthenticationProvider& provider,
                                                              std::uint32_t failures,
                                                              const LuSVNCertificate& certificate,
                                                              const std::optional<std::string>& realm,
                                                              bool mayStore, bool& permanent);
    /// Whether Subversion may store a password or passphrase unencrypted in
    /// its configuration directory.
    virtual std::optional<bool> maySavePlainTextCredentialsForRealm(LuSVNAuthenticationProvider& provider,
                                                                    const std::optional<std::string>& realm);
};

/// What one authentication stack made of a provider: the baton of the
/// Subversion provider that providerObjectFromPool makes, living in the same
/// pool, which keeps the binding (and through it the provider) alive.
struct LuSVNAuthenticationProviderBinding {
    /// The provider that the stack holds.
    std::shared_ptr<LuSVNAuthenticationProvider> provider;
    /// The backend of the stack, pushed for every request.
    std::shared_ptr<LuSVNBundleProxy> bundle;
    /// The provider of Subversion's own that a
    /// LuSVNBuiltInAuthenticationProvider forwards to, made in the same pool;
    /// null for other providers.
    svn_auth_provider_object_t* builtInProvider = nullptr;
};

/// Providers are owned by std::shared_ptr: a stack's Subversion provider keeps
/// its provider alive.
class TESSERA_EXPORT LuSVNAuthenticationProvider : public std::enable_shared_from_this<LuSVNAuthenticationProvider> {
public:
    virtual ~LuSVNAuthenticationProvider();

    /// The provider's listener, or null when it is gone; never retained.
    std::shared_ptr<LuSVNAuthenticationProviderDelegate> delegate() const { return delegate_.lock(); }
    /// Sets the listener (kept as a weak reference).
    void setDelegate(std::weak_ptr<LuSVNAuthenticationProviderDelegate> delegate) { delegate_ = std::move(delegate); }

    /// A new provider of the same class with the same delegate and the
    /// subclass's own settings.
    virtual std::shared_ptr<LuSVNAuthenticationProvider> copy() const = 0;

    // --- Subversion's own providers (LuSVNStorageProviders.h, LuSVNPromptProviders.h)

    /// Passwords in Subversion's configuration directory.
    static std::shared_ptr<LuSVNSimpleProvider> simpleProvider();
    /// Asks the delegate for a user name and password.
    static std::shared_ptr<LuSVNSimplePromptProvider> simplePromptProviderWithRetryLimit(std::int32_t retryLimit);
    /// The configured user name or the process's user.
    static std::shared_ptr<LuSVNUsernameProvider> usernameProvider();
    /// Asks the delegate for a user name.
    static std::shared_ptr<LuSVNUsernamePromptProvider> usernamePromptProviderWithRetryLimit(std::int32_t retryLimit);
    /// Passwords in the system's keyring.
    static std::shared_ptr<LuSVNKeychainSimpleProvider> keychainSimpleProvider();
    /// Client certificate passphrases in the system's keyring.
    static std::shared_ptr<LuSVNKeychainCertificatePasswordProvider> keychainCertificatePasswordProvider();
    /// Server certificates accepted permanently before.
    static std::shared_ptr<LuSVNSSLServerTrustProvider> SSLServerTrustProvider();
    /// Asks the delegate whether to trust a server.
    static std::shared_ptr<LuSVNSSLServerTrustPromptProvider> SSLServerTrustPromptProvider();
    /// The configured client certificate.
    static std::shared_ptr<LuSVNSSLClientCertificateProvider> SSLClientCertificateProvider();
    /// Asks the delegate for a client certificate.
    static std::shared_ptr<LuSVNSSLClientCertificatePromptProvider> SSLClientCertificatePromptProviderWithRetryLimit(
        std::int32_t retryLimit);
    /// Configured and stored client certificate passphrases.
    static std::shared_ptr<LuSVNSSLClientCertificatePasswordProvider> SSLClientCertificatePasswordProvider();
    /// Asks the delegate for a client certificate's passphrase.
    static std::shared_ptr<LuSVNSSLClientCertificatePasswordPromptProvider>
    SSLClientCertificatePasswordPromptProviderWithRetryLimit(std::int32_t retryLimit);

    /// "<ClassName: 0x...>", unique among the living providers.
    virtual std::string description() const;

    // --- Object level: what providers written in C++ override ---------------

    /// The class of the credentials this provider serves.
    virtual const LuSVNCredentialsClass& credentialsClass() const = 0;

    /// First credentials for the realm (nullopt when Subversion gave none), or
    /// null to let the next provider answer. What is stored in contextInfo is
    /// handed back with every next request of the same iteration. None here;
    /// raises "Invalid parameter not satisfying: realm != nil" for no realm.
    virtual std::shared_ptr<LuSVNCredentials> credentialsForRealm(const std::optional<std::string>& realm,
                                                                  const LuSVNAuthParameters& parameters,
                                                                  std::shared_ptr<void>& contextInfo);

    /// Credentials after the previous ones were refused; retryCount is 1 on the
    /// first such request, then 2, ... None here; raises "Invalid parameter
    /// not satisfying: realm != nil" for no realm.
    virtual std::shared_ptr<LuSVNCredentials> nextCredentialsForRealm(const std::optional<std::string>& realm,
                                                                      const LuSVNAuthParameters& parameters,
                                                                      std::int32_t retryCount,
                                                                      const std::shared_ptr<void>& contextInfo);

    /// Stores credentials that worked; true when stored. False here; raises
    /// "Invalid parameter not satisfying: credentials != nil" or "... realm !=
    /// nil".
    virtual bool saveCredentials(const std::shared_ptr<LuSVNCredentials>& credentials,
                                 const std::optional<std::string>& realm, const LuSVNAuthParameters& parameters);

    // --- Subversion level ---------------------------------------------------

    /// Subversion's provider for this object in one stack, made in the
    /// stack's pool through the current backend: cred_kind is the kind of
    /// credentialsClass(), the callbacks are the trampolines and the baton is
    /// a LuSVNAuthenticationProviderBinding of this provider and the current
    /// backend, which the pool keeps. Raises "Invalid parameter not
    /// satisfying: pool != nil" for a null pool.
    virtual svn_auth_provider_object_t* providerObjectFromPool(apr_pool_t* pool);

    /// The requests with Subversion's own arguments, called by the
    /// trampolines with the binding of the asking stack. Here they convert the
    /// realm and the parameters and ask the object-level operations: first
    /// credentials come with a new LuSVNAuthenticationIterator as iteration
    /// baton, kept alive by the pool. The parameters and the pool are
    /// required ("parameters != NULL", "pool != NULL"), as are the out
    /// arguments.
    virtual svn_error_t* firstSVNCredentials(const LuSVNAuthenticationProviderBinding& binding, void** credentials,
                                             void** iterBaton, apr_hash_t* parameters, const char* realm,
                                             apr_pool_t* pool);
    /// The next credentials of an iteration that firstSVNCredentials began.
    virtual svn_error_t* nextSVNCredentials(const LuSVNAuthenticationProviderBinding& binding, void** credentials,
                                            void* iterBaton, apr_hash_t* parameters, const char* realm,
                                            apr_pool_t* pool);
    /// `saved` is Subversion's svn_boolean_t.
    virtual svn_error_t* saveSVNCredentials(const LuSVNAuthenticationProviderBinding& binding, int* saved,
                                            void* credentials, apr_hash_t* parameters, const char* realm,
                                            apr_pool_t* pool);

    // --- How often the provider was asked on this thread ----------------------

    /// description() followed by ":retryCount".
    std::string threadRetryCountKey() const;
    /// The count of the calling thread; 0 when never set.
    std::int32_t threadRetryCount() const;
    /// Sets the count of the calling thread.
    void setThreadRetryCount(std::int32_t count) const;

protected:
    LuSVNAuthenticationProvider() = default;
    /// Copies the delegate only.
    LuSVNAuthenticationProvider(const LuSVNAuthenticationProvider& other)
        : std::enable_shared_from_this<LuSVNAuthenticationProvider>(other), delegate_(other.delegate_)
    {
    }
    LuSVNAuthenticationProvider& operator=(const LuSVNAuthenticationProvider&) = delete;

    /// Subversion's provider calling the trampolines, with a binding of this
    /// provider, the current backend and the given provider of Subversion's
    /// own, kept by the pool.
    svn_auth_provider_object_t* bridgeProviderObject(apr_pool_t* pool, svn_auth_provider_object_t* builtInProvider);

private:
    std::weak_ptr<LuSVNAuthenticationProviderDelegate> delegate_;
};

// The callbacks of every provider the bridge builds, with Subversion's
// signatures; the provider baton is the LuSVNAuthenticationProviderBinding.
// Each pushes the binding's backend, calls the provider's Subversion-level
// operation and pops. They never let an exception through (see above).
/// Subversion's first_credentials callback of every bridged provider.
TESSERA_EXPORT svn_error_t* LuSVNAuthenticationProviderFirstCredentialsFunc(void** credentials, void** iter_baton,
                                                                          void* provider_baton,
                                                                          apr_hash_t* parameters, const char* realm,
                                                                          apr_pool_t* pool);
/// Subversion's next_credentials callback of every bridged provider.
TESSERA_EXPORT svn_error_t* LuSVNAuthenticationProviderNextCredentialsFunc(void** credentials, void* iter_baton,
                                                                         void* provider_baton,
                                                                         apr_hash_t* parameters, const char* realm,
                                                                         apr_pool_t* pool);
/// Subversion's save_credentials callback of every bridged provider.
TESSERA_EXPORT svn_error_t* LuSVNAuthenticationProviderSaveCredentialsFunc(int* saved, void* credentials,
                                                                         void* provider_baton,
                                                                         apr_hash_t* parameters, const char* realm,
                                                                         apr_pool_t* pool);

/// Splits a network realm "<svn://host:3690> Project" into its URL
/// ("svn://host:3690") and its name ("Project"), each trimmed of white space
/// and line ends. False, with both outputs nullopt, when the realm does not
/// begin with "<" or has no ">" before its last character.
TESSERA_EXPORT bool LuSVNParseRealm(const std::string& realm, std::optional<std::string>& name,
                                    std::optional<std::string>& url);
