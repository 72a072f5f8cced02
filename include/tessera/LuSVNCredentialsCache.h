// Credentials kept in memory, by realm and by kind, each with its expiry
// policies (LuSVNExpiryPolicy.h).
//
// A cache serves any number of authentication stacks and threads at once
// through LuSVNCredentialsCacheAuthenticationProvider: every operation holds
// the cache's lock, and the policies are asked under it.
//
//   auto cache = LuSVNCredentialsCache::cache();
//   cache->setCredentials(LuSVNSimpleCredentials::credentialsWithUsername("alice", "secret"),
//                         "<svn://host:3690> Project",
//                         LuSVNInactivityExpiryPolicy::policyWithInactivityPeriod(std::chrono::minutes(15)));
//   stack->addProvider(LuSVNCredentialsCacheAuthenticationProvider::providerForCredentialsOfClass(
//       LuSVNSimpleCredentials::classObject(), cache));
//
// At most one entry is kept per realm and kind; a new one replaces the old.
//
// Subversion's authentication baton keeps the credentials that worked for a
// realm for as long as it lives, and asks no provider again for them: expiry
// reaches the contexts made, or whose providers were changed, after it.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>

#include <tessera/LuSVNClock.h>
#include <tessera/LuSVNCredentials.h>
#include <tessera/LuSVNExpiryPolicy.h>

/// One cached credential and its policies.
class TESSERA_EXPORT LuSVNCredentialsCacheEntry {
public:
    /// An entry of the credentials under the policy chain.
    static std::shared_ptr<LuSVNCredentialsCacheEntry> entryWithCredentials(
        std::shared_ptr<LuSVNCredentials> credentials, std::shared_ptr<LuSVNExpiryPolicy> expiryPolicy);

    /// Use entryWithCredentials.
    LuSVNCredentialsCacheEntry(std::shared_ptr<LuSVNCredentials> credentials,
                               std::shared_ptr<LuSVNExpiryPolicy> expiryPolicy);

    /// The credentials themselves (not a copy).
    std::shared_ptr<LuSVNCredentials> credentials() const;
    /// Replaces the credentials.
    void setCredentials(std::shared_ptr<LuSVNCredentials> credentials);
    /// The first policy of the entry's chain.
    std::shared_ptr<LuSVNExpiryPolicy> expiryPolicy() const;
    /// Replaces the policy chain.
    void setExpiryPolicy(std::shared_ptr<LuSVNExpiryPolicy> expiryPolicy);

private:
    mutable std::mutex mutex_;
    std::shared_ptr<LuSVNCredentials> credentials_;
    std::shared_ptr<LuSVNExpiryPolicy> expiryPolicy_;
};

/// Thread-safe store of credentials by realm and kind.
class TESSERA_EXPORT LuSVNCredentialsCache : public std::enable_shared_from_this<LuSVNCredentialsCache> {
public:
    /// Called with each entry that may be returned and its realm.
    using EntryBlock = std::function<void(const LuSVNCredentialsCacheEntry& entry, const std::string& realm)>;

    /// An empty cache on the system clock.
    static std::shared_ptr<LuSVNCredentialsCache> cache();
    /// An empty cache whose policies read the given clock.
    static std::shared_ptr<LuSVNCredentialsCache> cacheWithClock(std::shared_ptr<LuSVNClock> clock);

    /// Use the factories.
    explicit LuSVNCredentialsCache(std::shared_ptr<LuSVNClock> clock);

    /// The clock the policies of the entries read.
    const std::shared_ptr<LuSVNClock>& clock() const { return clock_; }

    /// Stores the credentials for the realm under their kind, replacing an
    /// entry of that kind, and tells the policy. Raises "Invalid parameter
    /// not satisfying: creds != nil" or "... expiryPolicy != nil".
    void setCredentials(const std::shared_ptr<LuSVNCredentials>& credentials, const std::string& realm,
                        const std::shared_ptr<LuSVNExpiryPolicy>& expiryPolicy);
    /// Stores credentials that never expire.
    void setCredentials(const std::shared_ptr<LuSVNCredentials>& credentials, const std::string& realm);

    /// The credentials of the kind for the realm when their policy lets them
    /// be returned (and it is told of the return), else null.
    std::shared_ptr<LuSVNCredentials> credentialsOfKind(const LuSVNCredentialsClass& kind, const std::string& realm);

    /// Calls the block with every entry that its policy lets be returned,
    /// each counting as returned. Raises "Invalid parameter not satisfying:
    /// block != NULL" for an empty block.
    void enumerateCredentials(const EntryBlock& block);
    /// The same for the entries whose credentials are of the class (or a
    /// subclass of it).
    void enumerateCredentialsOfKind(const LuSVNCredentialsClass& kind, const EntryBlock& block);
    /// The same for the entries of the realm.
    void enumerateCredentialsForRealm(const std::string& realm, const EntryBlock& block);

    /// The returnable credentials of the kind, by realm.
    std::map<std::string, std::shared_ptr<LuSVNCredentials>> credentialsOfKind(const LuSVNCredentialsClass& kind);
    /// The returnable credentials of the realm, by kind ("svn.simple").
    std::map<std::string, std::shared_ptr<LuSVNCredentials>> credentialsForRealm(const std::string& realm);

    /// Removes, in every realm, the entry holding these very credentials (an
    /// equal object is not enough). Raises "Invalid parameter not
    /// satisfying: creds != nil".
    void removeCredentials(const std::shared_ptr<LuSVNCredentials>& credentials);
    /// Removes every entry of the realm.
    void removeCredentialsForRealm(const std::string& realm);
    /// Removes the entries of the kind in every realm.
    void removeCredentialsOfKind(const LuSVNCredentialsClass& kind);
    /// Removes the entry of the kind for the realm.
    void removeCredentialsOfKind(const LuSVNCredentialsClass& kind, const std::string& realm);
    /// Empties the cache.
    void removeAllCredentials();

    /// A new cache on the same clock with copies of the credentials and of
    /// the policy chains of every entry that may be returned; the copies
    /// start anew, and the entries copied count as returned here (a
    /// single-use entry is used up by copying).
    std::shared_ptr<LuSVNCredentialsCache> copy();

private:
    // realm -> kind -> entry
    using Entries = std::map<std::string, std::map<std::string, std::shared_ptr<LuSVNCredentialsCacheEntry>>>;

    void enumerate(const std::function<bool(const std::shared_ptr<LuSVNCredentials>&, const std::string&)>& filter,
                   const EntryBlock& block);

    std::recursive_mutex mutex_;
    const std::shared_ptr<LuSVNClock> clock_;
    Entries credentials_;
};
