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
    return bridgeProviderObject(pool, builtInProviderObjectFromPool(pool));
}

svn_error_t* LuSVNBuiltInAuthenticationProvider::firstSVNCredentials(const LuSVNAuthenticationProviderBinding& binding,
                                                                     void** credentials, void** iterBaton,
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
    const svn_auth_provider_object_t* wrapped = binding.builtInProvider;
    if (!wrapped || !wrapped->vtable->first_credentials)
        return nullptr;
    return wrapped->vtable->first_credentials(credentials, iterBaton, wrapped->provider_baton, parameters, realm, pool);
}

svn_error_t* LuSVNBuiltInAuthenticationProvider::nextSVNCredentials(const LuSVNAuthenticationProviderBinding& binding,
                                                                    void** credentials, void* iterBaton,
                                                                    apr_hash_t* parameters, const char* realm,
                                                                    apr_pool_t* pool)
{
    LUSVN_PARAMETER_ASSERT(credentials != nullptr, "credentials != NULL");
    LUSVN_PARAMETER_ASSERT(parameters != nullptr, "parameters != NULL");
    LUSVN_PARAMETER_ASSERT(pool != nullptr, "pool != NULL");
    *credentials = nullptr;
    setThreadRetryCount(threadRetryCount() + 1);
    const svn_auth_provider_object_t* wrapped = binding.builtInProvider;
    if (!wrapped || !wrapped->vtable->next_credentials)
        return nullptr;
    return wrapped->vtable->next_credentials(credentials, iterBaton, wrapped->provider_baton, parameters, realm, pool);
}

svn_error_t* LuSVNBuiltInAuthenticationProvider::saveSVNCredentials(const LuSVNAuthenticationProviderBinding& binding,
                                                                    int* saved, void* credentials,
                                                                    apr_hash_t* parameters, const char* realm,
                                                                    apr_pool_t* pool)
{
    LUSVN_PARAMETER_ASSERT(saved != nullptr, "saved != NULL");
    LUSVN_PARAMETER_ASSERT(credentials != nullptr, "credentials != NULL");
    LUSVN_PARAMETER_ASSERT(parameters != nullptr, "parameters != NULL");
    LUSVN_PARAMETER_ASSERT(pool != nullptr, "pool != NULL");
    *saved = 0;
    const svn_auth_provider_object_t* wrapped = binding.builtInProvider;
    if (!wrapped || !wrapped->vtable->save_credentials)
        return nullptr;
    return wrapped->vtable->save_credentials(saved, credentials, wrapped->provider_baton, parameters, realm, pool);
}
