#include <tessera/LuSVNCredentialsCache.h>
#include <tessera/LuSVNExpiryPolicy.h>

#include "LuSVNTimerThread.h"

using namespace tessera_private;

namespace tessera_private {

// Timers must not keep the cache alive: the cache holds the policies that
// hold the timers.
std::function<void()> LuSVNExpireCredentialsAction(LuSVNCredentialsCache& cache,
                                                   const std::shared_ptr<LuSVNCredentials>& credentials)
{
    return [weakCache = cache.weak_from_this(), credentials] {
        if (const auto cache = weakCache.lock())
            cache->removeCredentials(credentials);
    };
}

}  // namespace tessera_private

std::shared_ptr<LuSVNDateExpiryPolicy> LuSVNDateExpiryPolicy::policyWithExpiryDate(
    LuSVNClock::TimePoint expiryDate, std::shared_ptr<LuSVNExpiryPolicy> nextPolicy)
{
    return std::make_shared<LuSVNDateExpiryPolicy>(expiryDate, std::move(nextPolicy));
}

LuSVNDateExpiryPolicy::LuSVNDateExpiryPolicy(LuSVNClock::TimePoint expiryDate,
                                             std::shared_ptr<LuSVNExpiryPolicy> nextPolicy)
    : LuSVNExpiryPolicy(std::move(nextPolicy)), expiryDate_(expiryDate)
{
}

LuSVNDateExpiryPolicy::LuSVNDateExpiryPolicy(const LuSVNDateExpiryPolicy& other)
    : LuSVNExpiryPolicy(other), expiryDate_(other.expiryDate_)
{
}

LuSVNDateExpiryPolicy::~LuSVNDateExpiryPolicy()
{
    LuSVNCancelTimer(timer_);
}

void LuSVNDateExpiryPolicy::cacheDidInsertCredentials(LuSVNCredentialsCache& cache,
                                                      const std::shared_ptr<LuSVNCredentials>& credentials,
                                                      const std::string& realm)
{
    {
        std::lock_guard lock(mutex_);
        LuSVNCancelTimer(timer_);
        timer_ = LuSVNScheduleTimer(cache.clock(), expiryDate_, LuSVNExpireCredentialsAction(cache, credentials));
    }
    LuSVNExpiryPolicy::cacheDidInsertCredentials(cache, credentials, realm);
}

bool LuSVNDateExpiryPolicy::cacheShouldReturnCredentials(LuSVNCredentialsCache& cache,
                                                         const std::shared_ptr<LuSVNCredentials>& credentials,
                                                         const std::string& realm)
{
    if (cache.clock()->now() >= expiryDate_) {
        cache.removeCredentials(credentials);
        return false;
    }
    return LuSVNExpiryPolicy::cacheShouldReturnCredentials(cache, credentials, realm);
}

std::shared_ptr<LuSVNExpiryPolicy> LuSVNDateExpiryPolicy::copy() const
{
    return std::shared_ptr<LuSVNExpiryPolicy>(new LuSVNDateExpiryPolicy(*this));
}
