// The keychain slots (75, 76) outside macOS.
//
// Subversion has keychain providers on macOS only, and the table slots are
// named after them. Elsewhere this backend defines the two functions itself
// and hands out the platform's keyring provider instead: GNOME Keyring
// (libsecret) first, then KWallet. Both live in shared objects that Subversion
// loads on demand and that may be missing; then the provider given out
// answers no credentials and stores nothing, so that the next provider of the
// kind is asked: a stack with keyring storage works wherever the file store
// behind it does.
//
// The keyring providers only reach the keyring for realms whose cached
// credentials name it as their password store, and when saving. Callers that
// must never block should set SVN_AUTH_PARAM_NON_INTERACTIVE on the auth
// baton: the providers then neither unlock nor create a keyring collection.

#include "LuSVNSubversion.h"

#include <initializer_list>

#if !defined(DARWIN)

namespace {

svn_error_t* LuSVNNoKeyringFirstCredentials(void** credentials, void** iter_baton,
    void* /*provider_baton*/, apr_hash_t* /*parameters*/, const char* /*realmstring*/,
    apr_pool_t* /*pool*/)
{
    // An error here would end the whole iteration, providers behind included.
    *credentials = nullptr;
    *iter_baton = nullptr;
    return SVN_NO_ERROR;
}

svn_error_t* LuSVNNoKeyringSaveCredentials(svn_boolean_t* saved, void* /*credentials*/,
    void* /*provider_baton*/, apr_hash_t* /*parameters*/, const char* /*realmstring*/,
    apr_pool_t* /*pool*/)
{
    // Declining lets the next provider in the baton store the credentials.
    *saved = FALSE;
    return SVN_NO_ERROR;
}

const svn_auth_provider_t LuSVNNoKeyringSimple = {
    SVN_AUTH_CRED_SIMPLE, LuSVNNoKeyringFirstCredentials, nullptr, LuSVNNoKeyringSaveCredentials};

const svn_auth_provider_t LuSVNNoKeyringSSLClientCertPassword = {
    SVN_AUTH_CRED_SSL_CLIENT_CERT_PW, LuSVNNoKeyringFirstCredentials, nullptr,
    LuSVNNoKeyringSaveCredentials};

void LuSVNKeyringProvider(svn_auth_provider_object_t** provider, const char* type,
    const svn_auth_provider_t* fallback, apr_pool_t* pool)
{
    for (const char* keyring : {"gnome_keyring", "kwallet"}) {
        svn_auth_provider_object_t* found = nullptr;
        // An error here only means that this keyring cannot be used (e.g. a
        // provider library of another Subversion release).
        svn_error_clear(svn_auth_get_platform_specific_provider(&found, keyring, type, pool));
        if (found) {
            *provider = found;
            return;
        }
    }
    auto* unavailable = static_cast<svn_auth_provider_object_t*>(apr_pcalloc(pool, sizeof(svn_auth_provider_object_t)));
    unavailable->vtable = fallback;
    *provider = unavailable;
}

}  // namespace

extern "C" void svn_auth_get_keychain_simple_provider(svn_auth_provider_object_t** provider, apr_pool_t* pool)
{
    LuSVNKeyringProvider(provider, "simple", &LuSVNNoKeyringSimple, pool);
}

extern "C" void svn_auth_get_keychain_ssl_client_cert_pw_provider(svn_auth_provider_object_t** provider,
    apr_pool_t* pool)
{
    LuSVNKeyringProvider(provider, "ssl_client_cert_pw", &LuSVNNoKeyringSSLClientCertPassword, pool);
}

#endif
