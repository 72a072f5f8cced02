#include <tessera/LuSVNAuthenticationIterator.h>
#include <tessera/LuSVNAuthenticationProvider.h>
#include <tessera/LuSVNBundleStack.h>
#include <tessera/LuSVNDebug.h>
#include <tessera/LuSVNException.h>
#include <tessera/LuSVNPool.h>
#include <tessera/LuSVNStrings.h>


#include <cstdlib>
#include <typeinfo>
#include <unordered_map>
#include <utility>

#include "LuSVNAssert.h"
#include "LuSVNBackendFrame.h"
#include "LuSVNBundlePushed.h"
#include "LuSVNObjectDescription.h"
#include "LuSVNPoolCopies.h"
#include "LuSVNProviderException.h"

using namespace tessera_private;

namespace {

struct KeptProviderException {
    std::exception_ptr exception;
    const svn_error_t* error = nullptr;
};

thread_local KeptProviderException keptProviderException;

// Per provider (by description) and per thread, so that one provider list
// can serve operations on several threads.
thread_local std::unordered_map<std::string, std::int32_t> threadRetryCounts;

// Credentials of another class than the provider declares are ignored.
bool isDeclaredClass(const LuSVNAuthenticationProvider& provider, const LuSVNCredentials& creds, const char* request)
{
    const LuSVNCredentialsClass& declared = provider.credentialsClass();
    if (declared.isInstance(creds))
        return true;
    LuSVNDebug::logAtLevel(LuSVNLogLevelNormal, "Warning: Ignoring %s credentials. %s is not declared type (%s)",
                           request, creds.credentialsClass().name, declared.name);
    return false;
}

// The error that stands for a provider's exception in Subversion; the
// exception is kept for the operation. Null only when no backend is there
// to make an error with.
svn_error_t* errorForProviderException(std::exception_ptr exception, const char* message) noexcept
{
    try {
        svn_error_t* error = LuSVNCreateError(LuSVNGenericErrorStatus, message, __FILE__, __LINE__);
        LuSVNKeepProviderException(std::move(exception), error);
        return error;
    } catch (...) {
        return nullptr;
    }
}

// One request of Subversion to a provider: preconditions, then the
// provider's operation with its backend pushed. No exception leaves.
template <class Check, class Call>
svn_error_t* providerRequest(const char* message, void* providerBaton, Check check, Call call) noexcept
{
    try {
        check();
        const auto& binding = *static_cast<const LuSVNAuthenticationProviderBinding*>(providerBaton);
        LuSVNBundlePushed pushed(binding.bundle);
        try {
            return call(*binding.provider, binding);
        } catch (...) {
            // Made while the provider's backend is still pushed.
            return errorForProviderException(std::current_exception(), message);
        }
    } catch (...) {
        return errorForProviderException(std::current_exception(), message);
    }
}

}  // namespace

namespace tessera_private {

void LuSVNKeepProviderException(std::exception_ptr exception, const svn_error_t* error)
{
    keptProviderException = {std::move(exception), error};
}

std::exception_ptr LuSVNTakeProviderException(const svn_error_t* error)
{
    const KeptProviderException kept = std::exchange(keptProviderException, {});
    if (!kept.exception)
        return nullptr;
    // Subversion may have wrapped the error; the kept pointer is compared,
    // never read, since Subversion may have freed it.
    for (const svn_error_t* link = error; link; link = link->child)
        if (link == kept.error && link->apr_err == LuSVNGenericErrorStatus)
            return kept.exception;
    return nullptr;
}

svn_error_t* LuSVNRethrowProviderException(svn_error_t* error)
{
    if (std::exception_ptr exception = LuSVNTakeProviderException(error)) {
        LuSVNEntry<30>()(error);
        std::rethrow_exception(exception);
    }
    return error;
}

}  // namespace tessera_private

LuSVNAuthenticationProvider::~LuSVNAuthenticationProvider() = default;

std::string LuSVNAuthenticationProvider::description() const
{
    return LuSVNGenericDescription(*this);
}

std::shared_ptr<LuSVNCredentials> LuSVNAuthenticationProvider::credentialsForRealm(
    const std::optional<std::string>& realm, const LuSVNAuthParameters&, std::shared_ptr<void>&)
{
    LUSVN_PARAMETER_ASSERT(realm.has_value(), "realm != nil");
    return nullptr;
}

std::shared_ptr<LuSVNCredentials> LuSVNAuthenticationProvider::nextCredentialsForRealm(
    const std::optional<std::string>& realm, const LuSVNAuthParameters&, std::int32_t, const std::shared_ptr<void>&)
{
    LUSVN_PARAMETER_ASSERT(realm.has_value(), "realm != nil");
    return nullptr;
}

bool LuSVNAuthenticationProvider::saveCredentials(const std::shared_ptr<LuSVNCredentials>& credentials,
                                                  const std::optional<std::string>& realm, const LuSVNAuthParameters&)
{
    LUSVN_PARAMETER_ASSERT(credentials != nullptr, "credentials != nil");
    LUSVN_PARAMETER_ASSERT(realm.has_value(), "realm != nil");
    return false;
}

svn_auth_provider_object_t* LuSVNAuthenticationProvider::providerObjectFromPool(apr_pool_t* pool)
{
    LUSVN_PARAMETER_ASSERT(pool != nullptr, "pool != nil");
    return bridgeProviderObject(pool, nullptr);
}

svn_auth_provider_object_t* LuSVNAuthenticationProvider::bridgeProviderObject(
    apr_pool_t* pool, svn_auth_provider_object_t* builtInProvider)
{
    // Everything a stack needs of the provider is in its own binding, so the
    // same provider serves any number of stacks.
    auto binding = std::make_shared<LuSVNAuthenticationProviderBinding>(
        LuSVNAuthenticationProviderBinding{shared_from_this(), LuSVNBundleCurrent(), builtInProvider});
    auto* table = LuSVNPoolAllocateZeroed<svn_auth_provider_t>(pool);
    table->cred_kind = LuSVNPoolCopyString(std::string(credentialsClass().kind), pool);
    table->first_credentials = LuSVNAuthenticationProviderFirstCredentialsFunc;
    table->next_credentials = LuSVNAuthenticationProviderNextCredentialsFunc;
    table->save_credentials = LuSVNAuthenticationProviderSaveCredentialsFunc;
    auto* provider = LuSVNPoolAllocateZeroed<svn_auth_provider_object_t>(pool);
    provider->vtable = table;
    provider->provider_baton = LuSVNRetainInPool(std::move(binding), pool).get();
    return provider;
}

svn_error_t* LuSVNAuthenticationProvider::firstSVNCredentials(const LuSVNAuthenticationProviderBinding&,
                                                              void** credentials, void** iterBaton,
                                                              apr_hash_t* parameters, const char* realm,
                                                              apr_pool_t* pool)
{
    LUSVN_PARAMETER_ASSERT(credentials != nullptr, "credentials != NULL");
    LUSVN_PARAMETER_ASSERT(iterBaton != nullptr, "iter_baton != NULL");
    LUSVN_PARAMETER_ASSERT(parameters != nullptr, "parameters != NULL");
    LUSVN_PARAMETER_ASSERT(pool != nullptr, "pool != NULL");
    std::shared_ptr<void> context;
    const auto creds = credentialsForRealm(LuSVNOptionalString(realm), LuSVNAuthDictionaryForParams(parameters, pool, credentialsClass().kind),
                                           context);
    if (!creds || !isDeclaredClass(*this, *creds, "first"))
        return nullptr;
    *credentials = creds->convertToStructFromPool(pool);
    auto iterator = std::make_shared<LuSVNAuthenticationIterator>();
    iterator->context = std::move(context);
    *iterBaton = LuSVNRetainInPool(std::move(iterator), pool).get();
    return nullptr;
}

svn_error_t* LuSVNAuthenticationProvider::nextSVNCredentials(const LuSVNAuthenticationProviderBinding&,
                                                             void** credentials, void* iterBaton,
                                                             apr_hash_t* parameters, const char* realm,
                                                             apr_pool_t* pool)
{
    LUSVN_PARAMETER_ASSERT(credentials != nullptr, "credentials != NULL");
    LUSVN_PARAMETER_ASSERT(parameters != nullptr, "parameters != NULL");
    LUSVN_PARAMETER_ASSERT(pool != nullptr, "pool != NULL");
    // Only first credentials make an iterator; Subversion never asks for next
    // ones without them.
    LUSVN_PARAMETER_ASSERT(iterBaton != nullptr, "iter_baton != NULL");
    auto& iterator = *static_cast<LuSVNAuthenticationIterator*>(iterBaton);
    ++iterator.retryCount;
    const auto creds = nextCredentialsForRealm(LuSVNOptionalString(realm),
                                               LuSVNAuthDictionaryForParams(parameters, pool, credentialsClass().kind), iterator.retryCount,
                                               iterator.context);
    if (!creds || !isDeclaredClass(*this, *creds, "next"))
        return nullptr;
    *credentials = creds->convertToStructFromPool(pool);
    return nullptr;
}

svn_error_t* LuSVNAuthenticationProvider::saveSVNCredentials(const LuSVNAuthenticationProviderBinding&, int* saved,
                                                             void* credentials, apr_hash_t* parameters,
                                                             const char* realm, apr_pool_t* pool)
{
    LUSVN_PARAMETER_ASSERT(saved != nullptr, "saved != NULL");
    LUSVN_PARAMETER_ASSERT(credentials != nullptr, "credentials != NULL");
    LUSVN_PARAMETER_ASSERT(parameters != nullptr, "parameters != NULL");
    LUSVN_PARAMETER_ASSERT(pool != nullptr, "pool != NULL");
    const auto creds = credentialsClass().credentialsFromStruct(credentials);
    if (creds && saveCredentials(creds, LuSVNOptionalString(realm), LuSVNAuthDictionaryForParams(parameters, pool, credentialsClass().kind)))
        *saved = 1;
    return nullptr;
}

std::string LuSVNAuthenticationProvider::threadRetryCountKey() const
{
    return description() + ":retryCount";
}

std::int32_t LuSVNAuthenticationProvider::threadRetryCount() const
{
    const auto found = threadRetryCounts.find(threadRetryCountKey());
    return found == threadRetryCounts.end() ? 0 : found->second;
}

void LuSVNAuthenticationProvider::setThreadRetryCount(std::int32_t count) const
{
    // A count back at 0 is the same as none: the table keeps only providers
    // in the middle of an iteration.
    if (count == 0)
        threadRetryCounts.erase(threadRetryCountKey());
    else
        threadRetryCounts[threadRetryCountKey()] = count;
}

svn_error_t* LuSVNAuthenticationProviderFirstCredentialsFunc(void** credentials, void** iter_baton,
                                                           void* provider_baton, apr_hash_t* parameters,
                                                           const char* realm, apr_pool_t* pool)
{
    return providerRequest(
        "Authentication provider raised an exception (first credentials)", provider_baton,
        [&] {
            LUSVN_PARAMETER_ASSERT(credentials != nullptr, "credentials != NULL");
            LUSVN_PARAMETER_ASSERT(iter_baton != nullptr, "iter_baton != NULL");
            LUSVN_PARAMETER_ASSERT(provider_baton != nullptr, "provider_baton != NULL");
            LUSVN_PARAMETER_ASSERT(parameters != nullptr, "parameters != NULL");
            LUSVN_PARAMETER_ASSERT(pool != nullptr, "pool != NULL");
            *credentials = nullptr;
            *iter_baton = nullptr;
        },
        [&](LuSVNAuthenticationProvider& provider, const LuSVNAuthenticationProviderBinding& binding) {
            return provider.firstSVNCredentials(binding, credentials, iter_baton, parameters, realm, pool);
        });
}

svn_error_t* LuSVNAuthenticationProviderNextCredentialsFunc(void** credentials, void* iter_baton,
                                                          void* provider_baton, apr_hash_t* parameters,
                                                          const char* realm, apr_pool_t* pool)
{
    return providerRequest(
        "Authentication provider raised an exception (next credentials)", provider_baton,
        [&] {
            LUSVN_PARAMETER_ASSERT(credentials != nullptr, "credentials != NULL");
            LUSVN_PARAMETER_ASSERT(provider_baton != nullptr, "provider_baton != NULL");
            LUSVN_PARAMETER_ASSERT(parameters != nullptr, "parameters != NULL");
            LUSVN_PARAMETER_ASSERT(pool != nullptr, "pool != NULL");
            *credentials = nullptr;
        },
        [&](LuSVNAuthenticationProvider& provider, const LuSVNAuthenticationProviderBinding& binding) {
            return provider.nextSVNCredentials(binding, credentials, iter_baton, parameters, realm, pool);
        });
}

svn_error_t* LuSVNAuthenticationProviderSaveCredentialsFunc(int* saved, void* credentials, void* provider_baton,
                                                          apr_hash_t* parameters, const char* realm,
                                                          apr_pool_t* pool)
{
    return providerRequest(
        "Authentication provider raised an exception (save credentials)", provider_baton,
        [&] {
            LUSVN_PARAMETER_ASSERT(saved != nullptr, "saved != NULL");
            LUSVN_PARAMETER_ASSERT(credentials != nullptr, "credentials != NULL");
            LUSVN_PARAMETER_ASSERT(provider_baton != nullptr, "provider_baton != NULL");
            LUSVN_PARAMETER_ASSERT(parameters != nullptr, "parameters != NULL");
            LUSVN_PARAMETER_ASSERT(pool != nullptr, "pool != NULL");
            *saved = 0;
        },
        [&](LuSVNAuthenticationProvider& provider, const LuSVNAuthenticationProviderBinding& binding) {
            return provider.saveSVNCredentials(binding, saved, credentials, parameters, realm, pool);
        });
}

bool LuSVNParseRealm(const std::string& realm, std::optional<std::string>& name, std::optional<std::string>& url)
{
    name.reset();
    url.reset();
    if (!realm.starts_with('<'))
        return false;
    const std::size_t close = realm.find('>');
    if (close == std::string::npos || close == realm.size() - 1)
        return false;
    url = LuSVNTrim(realm.substr(1, close - 1));
    name = LuSVNTrim(realm.substr(close + 1));
    return true;
}
