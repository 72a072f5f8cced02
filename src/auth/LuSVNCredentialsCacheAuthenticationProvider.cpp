#include <tessera/LuSVNCredentialsCacheAuthenticationProvider.h>

#include "LuSVNAssert.h"

std::shared_ptr<LuSVNCredentialsCacheAuthenticationProvider>
LuSVNCredentialsCacheAuthenticationProvider::providerForCredentialsOfClass(
    const LuSVNCredentialsClass& credentialsClass, std::shared_ptr<LuSVNCredentialsCache> cache)
{
    return std::make_shared<LuSVNCredentialsCacheAuthenticationProvider>(std::move(cache), credentialsClass);
}

LuSVNCredentialsCacheAuthenticationProvider::LuSVNCredentialsCacheAuthenticationProvider(
    std::shared_ptr<LuSVNCredentialsCache> cache, const LuSVNCredentialsClass& credentialsClass)
    : cache_(std::move(cache)), credentialsClass_(credentialsClass)
{
    LUSVN_PARAMETER_ASSERT(cache_ != nullptr, "cache != nil");
}

LuSVNCredentialsCacheAuthenticationProvider::LuSVNCredentialsCacheAuthenticationProvider(
    const LuSVNCredentialsCacheAuthenticationProvider& other)
    : LuSVNAuthenticationProvider(other), cache_(other.credentialsCache()), credentialsClass_(other.credentialsClass_)
{
}

std::shared_ptr<LuSVNCredentialsCache> LuSVNCredentialsCacheAuthenticationProvider::credentialsCache() const
{
    std::lock_guard lock(mutex_);
    return cache_;
}

void LuSVNCredentialsCacheAuthenticationProvider::setCredentialsCache(std::shared_ptr<LuSVNCredentialsCache> cache)
{
    LUSVN_PARAMETER_ASSERT(cache != nullptr, "cache != nil");
    std::lock_guard lock(mutex_);
    cache_ = std::move(cache);
    answered_.clear();
}

std::shared_ptr<LuSVNCredentials> LuSVNCredentialsCacheAuthenticationProvider::credentialsForRealm(
    const std::optional<std::string>& realm, const LuSVNAuthParameters& parameters, std::shared_ptr<void>&)
{
    LUSVN_PARAMETER_ASSERT(realm.has_value(), "realm != nil");
    auto credentials = credentialsCache()->credentialsOfKind(credentialsClass_, *realm);
    if (credentials && !credentials->validateWithParameters(parameters))
        credentials = nullptr;
    std::lock_guard lock(mutex_);
    if (credentials)
        answered_[*realm] = credentials;
    else
        answered_.erase(*realm);
    return credentials;
}

bool LuSVNCredentialsCacheAuthenticationProvider::saveCredentials(const std::shared_ptr<LuSVNCredentials>& credentials,
                                                                  const std::optional<std::string>& realm,
                                                                  const LuSVNAuthParameters&)
{
    LUSVN_PARAMETER_ASSERT(credentials != nullptr, "credentials != nil");
    LUSVN_PARAMETER_ASSERT(realm.has_value(), "realm != nil");
    // Subversion offers what worked to the provider that answered, then to
    // every provider of the kind: this one is asked twice for its own answer.
    std::shared_ptr<LuSVNCredentials> answered;
    {
        std::lock_guard lock(mutex_);
        if (const auto found = answered_.find(*realm); found != answered_.end())
            answered = found->second;
    }
    if (!answered || !answered->isEqual(credentials))
        credentialsCache()->setCredentials(credentials, *realm);
    return false;
}

std::shared_ptr<LuSVNAuthenticationProvider> LuSVNCredentialsCacheAuthenticationProvider::copy() const
{
    return std::shared_ptr<LuSVNAuthenticationProvider>(new LuSVNCredentialsCacheAuthenticationProvider(*this));
}
