#include <tessera/LuSVNCredentials.h>
#include <tessera/LuSVNExpiryPolicy.h>

#include "LuSVNAssert.h"

std::shared_ptr<LuSVNExpiryPolicy> LuSVNExpiryPolicy::policy()
{
    return std::make_shared<LuSVNExpiryPolicy>();
}

std::shared_ptr<LuSVNExpiryPolicy> LuSVNExpiryPolicy::policyWithNextPolicy(
    std::shared_ptr<LuSVNExpiryPolicy> nextPolicy)
{
    return std::make_shared<LuSVNExpiryPolicy>(std::move(nextPolicy));
}

LuSVNExpiryPolicy::LuSVNExpiryPolicy(std::shared_ptr<LuSVNExpiryPolicy> nextPolicy) : nextPolicy_(std::move(nextPolicy))
{
}

LuSVNExpiryPolicy::LuSVNExpiryPolicy(const LuSVNExpiryPolicy& other)
    : nextPolicy_(other.nextPolicy() ? other.nextPolicy()->copy() : nullptr)
{
}

LuSVNExpiryPolicy::~LuSVNExpiryPolicy() = default;

std::shared_ptr<LuSVNExpiryPolicy> LuSVNExpiryPolicy::nextPolicy() const
{
    std::lock_guard lock(mutex_);
    return nextPolicy_;
}

void LuSVNExpiryPolicy::setNextPolicy(std::shared_ptr<LuSVNExpiryPolicy> nextPolicy)
{
    std::lock_guard lock(mutex_);
    nextPolicy_ = std::move(nextPolicy);
}

void LuSVNExpiryPolicy::cacheDidInsertCredentials(LuSVNCredentialsCache& cache,
                                                  const std::shared_ptr<LuSVNCredentials>& credentials,
                                                  const std::string& realm)
{
    if (const auto next = nextPolicy())
        next->cacheDidInsertCredentials(cache, credentials, realm);
}

bool LuSVNExpiryPolicy::cacheShouldReturnCredentials(LuSVNCredentialsCache& cache,
                                                     const std::shared_ptr<LuSVNCredentials>& credentials,
                                                     const std::string& realm)
{
    LUSVN_PARAMETER_ASSERT(credentials != nullptr, "creds != nil");
    const auto next = nextPolicy();
    return !next || next->cacheShouldReturnCredentials(cache, credentials, realm);
}

void LuSVNExpiryPolicy::cacheDidReturnCredentials(LuSVNCredentialsCache& cache,
                                                  const std::shared_ptr<LuSVNCredentials>& credentials,
                                                  const std::string& realm)
{
    if (const auto next = nextPolicy())
        next->cacheDidReturnCredentials(cache, credentials, realm);
}

std::shared_ptr<LuSVNExpiryPolicy> LuSVNExpiryPolicy::copy() const
{
    return std::shared_ptr<LuSVNExpiryPolicy>(new LuSVNExpiryPolicy(*this));
}
