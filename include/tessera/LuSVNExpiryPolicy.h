// When a cached credential may still be handed out, and when it goes.
//
// Every entry of a LuSVNCredentialsCache has a chain of policies. The cache
// tells the first one of each insertion and each return of the entry and
// asks it before every return; each policy decides what it decides and hands
// the rest on to its next policy:
//
//   LuSVNExpiryPolicy             never expires (the end of every chain)
//   LuSVNDateExpiryPolicy         gone at a date
//   LuSVNInactivityExpiryPolicy   gone after a period without use
//   LuSVNSingleUseExpiryPolicy    gone once returned
//
//   // handed out once, and only within the next ten minutes
//   cache->setCredentials(creds, realm,
//       LuSVNDateExpiryPolicy::policyWithExpiryDate(clock->now() + 10min,
//                                                   std::make_shared<LuSVNSingleUseExpiryPolicy>()));
//
// Dates are those of the cache's clock (LuSVNClock.h). A date or inactivity
// policy also removes its entry when its time comes, from the library's
// timer thread "tessera-timers", so that a credential no longer lies in
// memory after its time. Until then a lookup after the time already finds
// nothing. A policy serves one entry of one cache: give every entry its own.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <utility>

#include <tessera/LuSVNClock.h>
#include <tessera/LuSVNExport.h>

class LuSVNCredentials;
class LuSVNCredentialsCache;

/// The end of every chain: never expires; hands everything on.
class TESSERA_EXPORT LuSVNExpiryPolicy {
public:
    /// A policy that never expires and has no next policy.
    static std::shared_ptr<LuSVNExpiryPolicy> policy();
    /// One that never expires and hands everything on to the next policy.
    static std::shared_ptr<LuSVNExpiryPolicy> policyWithNextPolicy(std::shared_ptr<LuSVNExpiryPolicy> nextPolicy);

    /// A policy handing on to the next one (null: none).
    explicit LuSVNExpiryPolicy(std::shared_ptr<LuSVNExpiryPolicy> nextPolicy = nullptr);
    virtual ~LuSVNExpiryPolicy();

    /// The next policy of the chain, or null.
    std::shared_ptr<LuSVNExpiryPolicy> nextPolicy() const;
    /// Sets the next policy (null ends the chain here).
    void setNextPolicy(std::shared_ptr<LuSVNExpiryPolicy> nextPolicy);

    /// The credentials were stored in the cache. Handed on here.
    virtual void cacheDidInsertCredentials(LuSVNCredentialsCache& cache,
                                           const std::shared_ptr<LuSVNCredentials>& credentials,
                                           const std::string& realm);
    /// Whether the cache may return the credentials now; the next policy's
    /// answer here, true at the end of the chain. Raises "Invalid parameter
    /// not satisfying: creds != nil" for null credentials.
    virtual bool cacheShouldReturnCredentials(LuSVNCredentialsCache& cache,
                                              const std::shared_ptr<LuSVNCredentials>& credentials,
                                              const std::string& realm);
    /// The cache returned the credentials. Handed on here.
    virtual void cacheDidReturnCredentials(LuSVNCredentialsCache& cache,
                                           const std::shared_ptr<LuSVNCredentials>& credentials,
                                           const std::string& realm);

    /// A copy of the whole chain (the next policy copied, not shared) that
    /// has not yet seen any credentials.
    virtual std::shared_ptr<LuSVNExpiryPolicy> copy() const;

protected:
    /// Copies the chain behind the policy.
    LuSVNExpiryPolicy(const LuSVNExpiryPolicy& other);
    LuSVNExpiryPolicy& operator=(const LuSVNExpiryPolicy&) = delete;

    /// Guards the policy's own fields.
    mutable std::recursive_mutex mutex_;

private:
    std::shared_ptr<LuSVNExpiryPolicy> nextPolicy_;
};

/// Expires at a date: returned before it, removed at it.
class TESSERA_EXPORT LuSVNDateExpiryPolicy : public LuSVNExpiryPolicy {
public:
    /// A policy expiring at the date (by the cache's clock).
    static std::shared_ptr<LuSVNDateExpiryPolicy> policyWithExpiryDate(
        LuSVNClock::TimePoint expiryDate, std::shared_ptr<LuSVNExpiryPolicy> nextPolicy = nullptr);

    /// Use policyWithExpiryDate.
    explicit LuSVNDateExpiryPolicy(LuSVNClock::TimePoint expiryDate,
                                   std::shared_ptr<LuSVNExpiryPolicy> nextPolicy = nullptr);
    /// Cancels the timer.
    ~LuSVNDateExpiryPolicy() override;

    /// The date by the cache's clock.
    LuSVNClock::TimePoint expiryDate() const { return expiryDate_; }

    /// Starts the timer that removes the credentials at the date, then hands
    /// the insertion on.
    void cacheDidInsertCredentials(LuSVNCredentialsCache& cache, const std::shared_ptr<LuSVNCredentials>& credentials,
                                   const std::string& realm) override;
    /// At or after the date: removes the credentials and answers false.
    bool cacheShouldReturnCredentials(LuSVNCredentialsCache& cache,
                                      const std::shared_ptr<LuSVNCredentials>& credentials,
                                      const std::string& realm) override;
    /// The same date and a copy of the chain, no timer.
    std::shared_ptr<LuSVNExpiryPolicy> copy() const override;

private:
    LuSVNDateExpiryPolicy(const LuSVNDateExpiryPolicy& other);

    const LuSVNClock::TimePoint expiryDate_;
    std::uint64_t timer_ = 0;
};

/// Expires after a period in which the credentials were not returned.
class TESSERA_EXPORT LuSVNInactivityExpiryPolicy : public LuSVNExpiryPolicy {
public:
    /// A policy expiring after the period without a return.
    static std::shared_ptr<LuSVNInactivityExpiryPolicy> policyWithInactivityPeriod(
        std::chrono::duration<double> inactivityPeriod, std::shared_ptr<LuSVNExpiryPolicy> nextPolicy = nullptr);

    /// Use policyWithInactivityPeriod.
    explicit LuSVNInactivityExpiryPolicy(std::chrono::duration<double> inactivityPeriod,
                                         std::shared_ptr<LuSVNExpiryPolicy> nextPolicy = nullptr);
    /// Cancels the timer.
    ~LuSVNInactivityExpiryPolicy() override;

    /// The period, in seconds.
    std::chrono::duration<double> inactivityPeriod() const { return inactivityPeriod_; }
    /// When the credentials go unless returned before: the last insertion or
    /// return plus the period; the epoch before the first.
    LuSVNClock::TimePoint expiryDate() const;

    /// Sets the date to now plus the period and (re)starts the timer that
    /// removes the credentials then.
    void extendExpiryLifetimeOfCredentials(const std::shared_ptr<LuSVNCredentials>& credentials,
                                           LuSVNCredentialsCache& cache);

    /// Extends, then hands the insertion on.
    void cacheDidInsertCredentials(LuSVNCredentialsCache& cache, const std::shared_ptr<LuSVNCredentials>& credentials,
                                   const std::string& realm) override;
    /// At or after the expiry date: removes the credentials and answers false.
    bool cacheShouldReturnCredentials(LuSVNCredentialsCache& cache,
                                      const std::shared_ptr<LuSVNCredentials>& credentials,
                                      const std::string& realm) override;
    /// Extends, then tells the next policy of an insertion (not of a return):
    /// a policy behind this one starts anew with every use.
    void cacheDidReturnCredentials(LuSVNCredentialsCache& cache, const std::shared_ptr<LuSVNCredentials>& credentials,
                                   const std::string& realm) override;
    /// The same period and a copy of the chain; no date, no timer.
    std::shared_ptr<LuSVNExpiryPolicy> copy() const override;

private:
    LuSVNInactivityExpiryPolicy(const LuSVNInactivityExpiryPolicy& other);

    const std::chrono::duration<double> inactivityPeriod_;
    LuSVNClock::TimePoint expiryDate_{};
    std::uint64_t timer_ = 0;
};

/// Returned once: the first return removes the credentials. Tells the next
/// policy of insertions only.
class TESSERA_EXPORT LuSVNSingleUseExpiryPolicy : public LuSVNExpiryPolicy {
public:
    /// A policy handing insertions on to the next one.
    explicit LuSVNSingleUseExpiryPolicy(std::shared_ptr<LuSVNExpiryPolicy> nextPolicy = nullptr)
        : LuSVNExpiryPolicy(std::move(nextPolicy))
    {
    }

    /// Removes the credentials from the cache.
    void cacheDidReturnCredentials(LuSVNCredentialsCache& cache, const std::shared_ptr<LuSVNCredentials>& credentials,
                                   const std::string& realm) override;
    /// A copy of the chain.
    std::shared_ptr<LuSVNExpiryPolicy> copy() const override;

private:
    LuSVNSingleUseExpiryPolicy(const LuSVNSingleUseExpiryPolicy& other) : LuSVNExpiryPolicy(other) {}
};
