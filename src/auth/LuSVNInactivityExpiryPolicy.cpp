#include <tessera/LuSVNCredentialsCache.h>
#include <tessera/LuSVNExpiryPolicy.h>

#include "LuSVNTimerThread.h"

using namespace tessera_private;

std::shared_ptr<LuSVNInactivityExpiryPolicy> LuSVNInactivityExpiryPolicy::policyWithInactivityPeriod(
    std::chrono::duration<double> inactivityPeriod, std::shared_ptr<LuSVNExpiryPolicy> nextPolicy)
{
    return std::make_shared<LuSVNInactivityExpiryPolicy>(inactivityPeriod, std::move(nextPolicy));
}

LuSVNInactivityExpiryPolicy::LuSVNInactivityExpiryPolicy(std::chrono::duration<double> inactivityPeriod,
                                                         std::shared_ptr<LuSVNExpiryPolicy> nextPolicy)
    : LuSVNExpiryPolicy(std::move(nextPolicy)), inactivityPeriod_(inactivityPeriod)
{
}

LuSVNInactivityExpiryPolicy::LuSVNInactivityExpiryPolicy(const LuSVNInactivityExpiryPolicy& other)
    : LuSVNExpiryPolicy(other), inactivityPeriod_(other.inactivityPeriod_)
{
}

LuSVNInactivityExpiryPolicy::~LuSVNInactivityExpiryPolicy()
{
    LuSVNCancelTimer(timer_);
}

LuSVNClock::TimePoint LuSVNInactivityExpiryPolicy::expiryDate() const
{
    std::lock_guard lock(mutex_);
    return expiryDate_;
}

void LuSVNInactivityExpiryPolicy::extendExpiryLifetimeOfCredentials(
    const std::shared_ptr<LuSVNCredentials>& credentials, LuSVNCredentialsCache& cache)
{
    std::lock_guard lock(mutex_);
    expiryDate_ = cache.clock()->now() +
                  std::chrono::duration_cast<std::chrono::system_clock::duration>(inactivityPeriod_);
    LuSVNCancelTimer(timer_);
    timer_ = LuSVNScheduleTimer(cache.clock(), expiryDate_, LuSVNExpireCredentialsAction(cache, credentials));
}

void LuSVNInactivityExpiryPolicy::cacheDidInsertCredentials(LuSVNCredentialsCache& cache,
                                                            const std::shared_ptr<LuSVNCredentials>& credentials,
                                                            const std::string& realm)
{
    extendExpiryLifetimeOfCredentials(credentials, cache);
    LuSVNExpiryPolicy::cacheDidInsertCredentials(cache, credentials, realm);
}

bool LuSVNInactivityExpiryPolicy::cacheShouldReturnCredentials(LuSVNCredentialsCache& cache,
                                                               const std::shared_ptr<LuSVNCredentials>& credentials,
                                                               const std::string& realm)
{
    if (cache.clock()->now() >= expiryDate()) {
        cache.removeCredentials(credentials);
        return false;
    }
    return LuSVNExpiryPolicy::cacheShouldReturnCredentials(cache, credentials, realm);
}

void LuSVNInactivityExpiryPolicy::cacheDidReturnCredentials(LuSVNCredentialsCache& cache,
                                                            const std::shared_ptr<LuSVNCredentials>& credentials,
                                                            const std::string& realm)
{
    extendExpiryLifetimeOfCredentials(credentials, cache);
    LuSVNExpiryPolicy::cacheDidInsertCredentials(cache, credentials, realm);
}

std::shared_ptr<LuSVNExpiryPolicy> LuSVNInactivityExpiryPolicy::copy() const
{
    return std::shared_ptr<LuSVNExpiryPolicy>(new LuSVNInactivityExpiryPolicy(*this));
}
