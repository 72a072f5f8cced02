#include <tessera/LuSVNCredentialsCache.h>

#include <vector>

#include "LuSVNAssert.h"

std::shared_ptr<LuSVNCredentialsCache> LuSVNCredentialsCache::cache()
{
    return cacheWithClock(LuSVNClock::systemClock());
}

std::shared_ptr<LuSVNCredentialsCache> LuSVNCredentialsCache::cacheWithClock(std::shared_ptr<LuSVNClock> clock)
{
    LUSVN_PARAMETER_ASSERT(clock != nullptr, "clock != nil");
    return std::make_shared<LuSVNCredentialsCache>(std::move(clock));
}

LuSVNCredentialsCache::LuSVNCredentialsCache(std::shared_ptr<LuSVNClock> clock) : clock_(std::move(clock)) {}

void LuSVNCredentialsCache::setCredentials(const std::shared_ptr<LuSVNCredentials>& credentials,
                                           const std::string& realm,
                                           const std::shared_ptr<LuSVNExpiryPolicy>& expiryPolicy)
{
    LUSVN_PARAMETER_ASSERT(credentials != nullptr, "creds != nil");
    LUSVN_PARAMETER_ASSERT(expiryPolicy != nullptr, "expiryPolicy != nil");
    std::lock_guard lock(mutex_);
    credentials_[realm][credentials->kind()] =
        LuSVNCredentialsCacheEntry::entryWithCredentials(credentials, expiryPolicy);
    expiryPolicy->cacheDidInsertCredentials(*this, credentials, realm);
}

void LuSVNCredentialsCache::setCredentials(const std::shared_ptr<LuSVNCredentials>& credentials,
                                           const std::string& realm)
{
    LUSVN_PARAMETER_ASSERT(credentials != nullptr, "creds != nil");
    setCredentials(credentials, realm, LuSVNExpiryPolicy::policy());
}

std::shared_ptr<LuSVNCredentials> LuSVNCredentialsCache::credentialsOfKind(const LuSVNCredentialsClass& kind,
                                                                           const std::string& realm)
{
    std::lock_guard lock(mutex_);
    const auto inRealm = credentials_.find(realm);
    if (inRealm == credentials_.end())
        return nullptr;
    const auto found = inRealm->second.find(kind.kind);
    if (found == inRealm->second.end())
        return nullptr;
    // The policy may remove the entry: keep it while asking.
    const std::shared_ptr<LuSVNCredentialsCacheEntry> entry = found->second;
    const auto credentials = entry->credentials();
    const auto policy = entry->expiryPolicy();
    if (!policy->cacheShouldReturnCredentials(*this, credentials, realm))
        return nullptr;
    policy->cacheDidReturnCredentials(*this, credentials, realm);
    return credentials;
}

void LuSVNCredentialsCache::enumerate(
    const std::function<bool(const std::shared_ptr<LuSVNCredentials>&, const std::string&)>& filter,
    const EntryBlock& block)
{
    LUSVN_PARAMETER_ASSERT(static_cast<bool>(block), "block != NULL");
    std::lock_guard lock(mutex_);
    // Policies and the block may remove entries: walk a snapshot.
    std::vector<std::pair<std::string, std::shared_ptr<LuSVNCredentialsCacheEntry>>> snapshot;
    for (const auto& [realm, entries] : credentials_)
        for (const auto& [kind, entry] : entries)
            snapshot.emplace_back(realm, entry);
    for (const auto& [realm, entry] : snapshot) {
        const auto credentials = entry->credentials();
        const auto policy = entry->expiryPolicy();
        if (!filter(credentials, realm) || !policy->cacheShouldReturnCredentials(*this, credentials, realm))
            continue;
        block(*entry, realm);
        policy->cacheDidReturnCredentials(*this, credentials, realm);
    }
}

void LuSVNCredentialsCache::enumerateCredentials(const EntryBlock& block)
{
    enumerate([](const auto&, const auto&) { return true; }, block);
}

void LuSVNCredentialsCache::enumerateCredentialsOfKind(const LuSVNCredentialsClass& kind, const EntryBlock& block)
{
    enumerate([&](const auto& credentials, const auto&) { return kind.isInstance(*credentials); }, block);
}

void LuSVNCredentialsCache::enumerateCredentialsForRealm(const std::string& realm, const EntryBlock& block)
{
    enumerate([&](const auto&, const std::string& entryRealm) { return entryRealm == realm; }, block);
}

std::map<std::string, std::shared_ptr<LuSVNCredentials>> LuSVNCredentialsCache::credentialsOfKind(
    const LuSVNCredentialsClass& kind)
{
    std::map<std::string, std::shared_ptr<LuSVNCredentials>> found;
    enumerateCredentialsOfKind(kind, [&](const LuSVNCredentialsCacheEntry& entry, const std::string& realm) {
        found[realm] = entry.credentials();
    });
    return found;
}

std::map<std::string, std::shared_ptr<LuSVNCredentials>> LuSVNCredentialsCache::credentialsForRealm(
    const std::string& realm)
{
    std::map<std::string, std::shared_ptr<LuSVNCredentials>> found;
    enumerateCredentialsForRealm(realm, [&](const LuSVNCredentialsCacheEntry& entry, const std::string&) {
        const auto credentials = entry.credentials();
        found[credentials->kind()] = credentials;
    });
    return found;
}

void LuSVNCredentialsCache::removeCredentials(const std::shared_ptr<LuSVNCredentials>& credentials)
{
    LUSVN_PARAMETER_ASSERT(credentials != nullptr, "creds != nil");
    std::lock_guard lock(mutex_);
    for (auto& [realm, entries] : credentials_) {
        const auto found = entries.find(credentials->kind());
        if (found != entries.end() && found->second->credentials() == credentials)
            entries.erase(found);
    }
}

void LuSVNCredentialsCache::removeCredentialsForRealm(const std::string& realm)
{
    std::lock_guard lock(mutex_);
    credentials_.erase(realm);
}

void LuSVNCredentialsCache::removeCredentialsOfKind(const LuSVNCredentialsClass& kind)
{
    std::lock_guard lock(mutex_);
    for (auto& [realm, entries] : credentials_)
        entries.erase(kind.kind);
}

void LuSVNCredentialsCache::removeCredentialsOfKind(const LuSVNCredentialsClass& kind, const std::string& realm)
{
    std::lock_guard lock(mutex_);
    const auto found = credentials_.find(realm);
    if (found != credentials_.end())
        found->second.erase(kind.kind);
}

void LuSVNCredentialsCache::removeAllCredentials()
{
    std::lock_guard lock(mutex_);
    credentials_.clear();
}

std::shared_ptr<LuSVNCredentialsCache> LuSVNCredentialsCache::copy()
{
    auto copied = cacheWithClock(clock_);
    enumerateCredentials([&](const LuSVNCredentialsCacheEntry& entry, const std::string& realm) {
        copied->setCredentials(entry.credentials()->copy(), realm, entry.expiryPolicy()->copy());
    });
    return copied;
}
