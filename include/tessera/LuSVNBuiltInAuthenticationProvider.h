// A provider of Subversion's own, obtained from the backend, as an object of
// the provider family, so that one list in the authentication stack can mix
// Subversion's providers with providers written in C++.
//
// A subclass names the credential class and returns the backend's provider
// from builtInProviderObjectFromPool (for example entry point 79, the
// "svn.username" provider). Subversion still calls the bridge's trampolines,
// which forward to the wrapped provider: the backend is pushed and the
// thread's retry count kept (0 at the first request, +1 at each next one),
// which the wrapped provider's prompt callbacks read through their baton.
#pragma once

#include <tessera/LuSVNAuthenticationProvider.h>

class TESSERA_EXPORT LuSVNBuiltInAuthenticationProvider : public LuSVNAuthenticationProvider {
public:
    /// The backend's provider, in the pool, through the current backend. Null
    /// here; raises "Invalid parameter not satisfying: pool != NULL" for a
    /// null pool.
    virtual svn_auth_provider_object_t* builtInProviderObjectFromPool(apr_pool_t* pool);

    /// Makes the wrapped provider (builtInProviderObjectFromPool) in the pool
    /// and returns the bridge's provider for this object, whose binding holds
    /// it: every stack wraps a provider of its own. Raises "Invalid parameter
    /// not satisfying: pool != nil" for a null pool.
    svn_auth_provider_object_t* providerObjectFromPool(apr_pool_t* pool) override;

    /// Forwarded to the callbacks of the binding's wrapped provider, with its
    /// own baton; a callback it lacks answers no credentials (save: not
    /// saved) and no error. first sets the thread retry count to 0, next
    /// increments it.
    svn_error_t* firstSVNCredentials(const LuSVNAuthenticationProviderBinding& binding, void** credentials,
                                     void** iterBaton, apr_hash_t* parameters, const char* realm,
                                     apr_pool_t* pool) override;
    svn_error_t* nextSVNCredentials(const LuSVNAuthenticationProviderBinding& binding, void** credentials,
                                    void* iterBaton, apr_hash_t* parameters, const char* realm,
                                    apr_pool_t* pool) override;
    svn_error_t* saveSVNCredentials(const LuSVNAuthenticationProviderBinding& binding, int* saved, void* credentials,
                                    apr_hash_t* parameters, const char* realm, apr_pool_t* pool) override;

protected:
    LuSVNBuiltInAuthenticationProvider() = default;
    /// Copies the delegate only.
    LuSVNBuiltInAuthenticationProvider(const LuSVNBuiltInAuthenticationProvider& other)
        : LuSVNAuthenticationProvider(other)
    {
    }
};
