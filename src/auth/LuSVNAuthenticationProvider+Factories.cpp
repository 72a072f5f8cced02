#include <tessera/LuSVNPromptProviders.h>
#include <tessera/LuSVNStorageProviders.h>
#include <tessera/LuSVNUsernameProvider.h>

namespace {

template <class Provider>
std::shared_ptr<Provider> withRetryLimit(std::int32_t retryLimit)
{
    auto provider = std::make_shared<Provider>();
    provider->setRetryLimit(retryLimit);
    return provider;
}

}  // namespace

std::shared_ptr<LuSVNSimpleProvider> LuSVNAuthenticationProvider::simpleProvider()
{
    return std::make_shared<LuSVNSimpleProvider>();
}

std::shared_ptr<LuSVNSimplePromptProvider> LuSVNAuthenticationProvider::simplePromptProviderWithRetryLimit(
    std::int32_t retryLimit)
{
    return withRetryLimit<LuSVNSimplePromptProvider>(retryLimit);
}

std::shared_ptr<LuSVNUsernameProvider> LuSVNAuthenticationProvider::usernameProvider()
{
    return std::make_shared<LuSVNUsernameProvider>();
}

std::shared_ptr<LuSVNUsernamePromptProvider> LuSVNAuthenticationProvider::usernamePromptProviderWithRetryLimit(
    std::int32_t retryLimit)
{
    return withRetryLimit<LuSVNUsernamePromptProvider>(retryLimit);
}

std::shared_ptr<LuSVNKeychainSimpleProvider> LuSVNAuthenticationProvider::keychainSimpleProvider()
{
    return std::make_shared<LuSVNKeychainSimpleProvider>();
}

std::shared_ptr<LuSVNKeychainCertificatePasswordProvider>
LuSVNAuthenticationProvider::keychainCertificatePasswordProvider()
{
    return std::make_shared<LuSVNKeychainCertificatePasswordProvider>();
}

std::shared_ptr<LuSVNSSLServerTrustProvider> LuSVNAuthenticationProvider::SSLServerTrustProvider()
{
    return std::make_shared<LuSVNSSLServerTrustProvider>();
}

std::shared_ptr<LuSVNSSLServerTrustPromptProvider> LuSVNAuthenticationProvider::SSLServerTrustPromptProvider()
{
    return std::make_shared<LuSVNSSLServerTrustPromptProvider>();
}

std::shared_ptr<LuSVNSSLClientCertificateProvider> LuSVNAuthenticationProvider::SSLClientCertificateProvider()
{
    return std::make_shared<LuSVNSSLClientCertificateProvider>();
}

std::shared_ptr<LuSVNSSLClientCertificatePromptProvider>
LuSVNAuthenticationProvider::SSLClientCertificatePromptProviderWithRetryLimit(std::int32_t retryLimit)
{
    return withRetryLimit<LuSVNSSLClientCertificatePromptProvider>(retryLimit);
}

std::shared_ptr<LuSVNSSLClientCertificatePasswordProvider>
LuSVNAuthenticationProvider::SSLClientCertificatePasswordProvider()
{
    return std::make_shared<LuSVNSSLClientCertificatePasswordProvider>();
}

std::shared_ptr<LuSVNSSLClientCertificatePasswordPromptProvider>
LuSVNAuthenticationProvider::SSLClientCertificatePasswordPromptProviderWithRetryLimit(std::int32_t retryLimit)
{
    return withRetryLimit<LuSVNSSLClientCertificatePasswordPromptProvider>(retryLimit);
}
