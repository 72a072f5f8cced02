#include <tessera/LuSVNCredentialsCache.h>

std::shared_ptr<LuSVNCredentialsCacheEntry> LuSVNCredentialsCacheEntry::entryWithCredentials(
    std::shared_ptr<LuSVNCredentials> credentials, std::shared_ptr<LuSVNExpiryPolicy> expiryPolicy)
{
    return std::make_shared<LuSVNCredentialsCacheEntry>(std::move(credentials), std::move(expiryPolicy));
}

LuSVNCredentialsCacheEntry::LuSVNCredentialsCacheEntry(std::shared_ptr<LuSVNCredentials> credentials,
                                                       std::shared_ptr<LuSVNExpiryPolicy> expiryPolicy)
    : credentials_(std::move(credentials)), expiryPolicy_(std::move(expiryPolicy))
{
}

std::shared_ptr<LuSVNCredentials> LuSVNCredentialsCacheEntry::credentials() const
{
    std::lock_guard lock(mutex_);
    return credentials_;
}

void LuSVNCredentialsCacheEntry::setCredentials(std::shared_ptr<LuSVNCredentials> credentials)
{
    std::lock_guard lock(mutex_);
    credentials_ = std::move(credentials);
}

std::shared_ptr<LuSVNExpiryPolicy> LuSVNCredentialsCacheEntry::expiryPolicy() const
{
    std::lock_guard lock(mutex_);
    return expiryPolicy_;
}

void LuSVNCredentialsCacheEntry::setExpiryPolicy(std::shared_ptr<LuSVNExpiryPolicy> expiryPolicy)
{
    std::lock_guard lock(mutex_);
    expiryPolicy_ = std::move(expiryPolicy);
}
