#include <tessera/LuSVNDebug.h>
#include <tessera/LuSVNPromptProviders.h>

LuSVNRetryLimitedPromptProvider::LuSVNRetryLimitedPromptProvider(const LuSVNRetryLimitedPromptProvider& other)
    : LuSVNBuiltInAuthenticationProvider(other), retryLimit_(other.retryLimit())
{
}

void LuSVNRetryLimitedPromptProvider::setRetryLimit(std::int32_t retryLimit)
{
    retryLimit_ = retryLimit;
    if (built_)
        LuSVNDebug::logAtLevel(LuSVNLogLevelNormal,
                               "Warning: retry limit changed after creation of provider. Value will be ignored.");
}

std::int32_t LuSVNRetryLimitedPromptProvider::retryLimitForBuild()
{
    built_ = true;
    return retryLimit_;
}
