#include <tessera/LuSVNCredentialsCache.h>
#include <tessera/LuSVNExpiryPolicy.h>

#include "LuSVNAssert.h"

void LuSVNSingleUseExpiryPolicy::cacheDidReturnCredentials(LuSVNCredentialsCache& cache,
                                                           const std::shared_ptr<LuSVNCredentials>& credentials,
                                                           const std::string&)
{
    LUSVN_PARAMETER_ASSERT(credentials != nullptr, "creds != nil");
    cache.removeCredentials(credentials);
}

std::shared_ptr<LuSVNExpiryPolicy> LuSVNSingleUseExpiryPolicy::copy() const
{
    return std::shared_ptr<LuSVNExpiryPolicy>(new LuSVNSingleUseExpiryPolicy(*this));
}
