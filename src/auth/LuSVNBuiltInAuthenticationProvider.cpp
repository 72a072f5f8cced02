#include <tessera/LuSVNBuiltInAuthenticationProvider.h>

#include "LuSVNAssert.h"
#include "LuSVNSubversion.h"

svn_auth_provider_object_t* LuSVNBuiltInAuthenticationProvider::builtInProviderObjectFromPool(apr_pool_t* pool)
{
    LUSVN_PARAMETER_ASSERT(pool != nullptr, "pool != NULL");
    return nullptr;
}

svn_auth_provider_object_t* LuSVNBuiltInAuthenticationProvider::providerObjectFromPool(apr_pool_t* pool)
{
    LUSVN_PARAMETER_ASSERT(pool != nullptr, "pool != nil");
    providerObject_ = builtInProviderObjectFromPool(pool);
    return LuSVNAuthenticationProvider::providerObjectFromPool(pool);
}

svn_error_t* LuSVNBuiltInAuthenticationProvider::firstSVNCredentials(void** credentials, void** iterBaton,
                                                                     apr_hash_t* parameters, const char* realm,
                                                                     apr_pool_t* pool)
{
    LUSVN_PARAMETER_ASSERT(credentials != nullptr, "credentials != NULL");
    LUSVN_PARAMETER_ASSERT(iterBaton != nullptr, "iter_baton != NULL");
    LUSVN_PARAMETER_ASSERT(parameters != nullptr, "parameters != NULL");
    LUSVN_PARAMETER_ASSERT(pool != nullptr, "pool != NULL");
    *credentials = nullptr;
    *iterBaton = nullptr;
    setThreadRetryCount(0);
    if (!providerObject_ || !providerObject_->vtable->first_credentials)
        return nullptr;
    return providerObject_->vtable->first_credentials(credentials, iterBaton, providerObject_->provider_baton,
                                                      parameters, realm, pool);
}

svn_error_t* LuSVNBuiltInAuthenticationProvider::nextSVNCredentials(void** credentials, void* iterBaton,
                                                                    apr_hash_t* parameters, const char* realm,
                                                                    apr_pool_t* pool)
{
    LUSVN_PARAMETER_ASSERT(credentials != nullptr, "credentials != NULL");
    LUSVN_PARAMETER_ASSERT(parameters != nullptr, "parameters != NULL");
    LUSVN_PARAMETER_ASSERT(pool != nullptr, "pool != NULL");
    *credentials = nullptr;
    setThreadRetryCount(threadRetryCount() + 1);
    if (!providerObject_ || !providerObject_->vtable->next_credentials)
        return nullptr;
    return providerObject_->vtable->next_credentials(credentials, iterBaton, providerObject_->provider_baton,
                                                     parameters, realm, pool);
}

svn_error_t* LuSVNBuiltInAuthenticationProvider::saveSVNCredentials(int* saved, void* credentials,
                                                                    apr_hash_t* parameters, const char* realm,
                                                                    apr_pool_t* pool)
{
    LUSVN_PARAMETER_ASSERT(saved != nullptr, "saved != NULL");
    LUSVN_PARAMETER_ASSERT(credentials != nullptr, "credentials != NULL");
    LUSVN_PARAMETER_ASSERT(parameters != nullptr, "parameters != NULL");
    LUSVN_PARAMETER_ASSERT(pool != nullptr, "pool != NULL");
    *saved = 0;
    if (!providerObject_ || !providerObject_->vtable->save_credentials)
        return nullptr;
    return providerObject_->vtable->save_credentials(saved, credentials, providerObject_->provider_baton, parameters,
                                                     realm, pool);
}
