// A provider that answers from a LuSVNCredentialsCache and keeps there what
// Subversion saves: one per credential kind, any number sharing one cache.
//
//   auto cache = LuSVNCredentialsCache::cache();
//   stack->addProvider(LuSVNCredentialsCacheAuthenticationProvider::providerForCredentialsOfClass(
//       LuSVNSimpleCredentials::classObject(), cache));
//   stack->addProvider(LuSVNAuthenticationProvider::simplePromptProviderWithRetryLimit(2));
//
// A password typed once at the prompt is then kept in the cache, never
// expiring, for every later operation; credentials the application stored
// with a policy keep that policy (see saveCredentials).
#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <string>

#include <tessera/LuSVNAuthenticationProvider.h>
#include <tessera/LuSVNCredentialsCache.h>

/// Answers Subversion from a credentials cache and saves into it.
class TESSERA_EXPORT LuSVNCredentialsCacheAuthenticationProvider : public LuSVNAuthenticationProvider {
public:
    /// A provider of the kind of the class, answering from the cache.
    static std::shared_ptr<LuSVNCredentialsCacheAuthenticationProvider> providerForCredentialsOfClass(
        const LuSVNCredentialsClass& credentialsClass, std::shared_ptr<LuSVNCredentialsCache> cache);

    /// Use providerForCredentialsOfClass. Raises "Invalid parameter not
    /// satisfying: cache != nil" for no cache.
    LuSVNCredentialsCacheAuthenticationProvider(std::shared_ptr<LuSVNCredentialsCache> cache,
                                                const LuSVNCredentialsClass& credentialsClass);

    /// The cache answered from.
    std::shared_ptr<LuSVNCredentialsCache> credentialsCache() const;
    /// Answers from another cache (required: "cache != nil").
    void setCredentialsCache(std::shared_ptr<LuSVNCredentialsCache> cache);

    /// The class given at creation.
    const LuSVNCredentialsClass& credentialsClass() const override { return credentialsClass_; }

    /// The cache's credentials of the kind for the realm when they validate
    /// against the parameters (server trust: the server's failures), else
    /// null. One answer per realm: no next credentials.
    std::shared_ptr<LuSVNCredentials> credentialsForRealm(const std::optional<std::string>& realm,
                                                          const LuSVNAuthParameters& parameters,
                                                          std::shared_ptr<void>& contextInfo) override;
    /// Stores the credentials for the realm, never expiring, unless they are
    /// those this provider answered at its last request for the realm (their
    /// entry and its policy stay as they are, so a single-use entry stays
    /// used up).
    /// Answers false, so that Subversion offers them to its stores too.
    bool saveCredentials(const std::shared_ptr<LuSVNCredentials>& credentials,
                         const std::optional<std::string>& realm, const LuSVNAuthParameters& parameters) override;

    /// A provider of the same kind sharing the cache.
    std::shared_ptr<LuSVNAuthenticationProvider> copy() const override;

private:
    LuSVNCredentialsCacheAuthenticationProvider(const LuSVNCredentialsCacheAuthenticationProvider& other);

    mutable std::mutex mutex_;
    std::shared_ptr<LuSVNCredentialsCache> cache_;
    const LuSVNCredentialsClass& credentialsClass_;
    // What the last request of each realm answered, if anything.
    std::map<std::string, std::shared_ptr<LuSVNCredentials>> answered_;
};
