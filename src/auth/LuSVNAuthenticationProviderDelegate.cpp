#include <tessera/LuSVNAuthenticationProvider.h>

// Nothing is implemented until a listener says otherwise.

LuSVNAuthenticationProviderDelegate::~LuSVNAuthenticationProviderDelegate() = default;

std::optional<bool> LuSVNAuthenticationProviderDelegate::promptForSimpleCredentials(
    LuSVNAuthenticationProvider&, LuSVNSimpleCredentials&, const std::optional<std::string>&, std::int32_t)
{
    return std::nullopt;
}

std::optional<bool> LuSVNAuthenticationProviderDelegate::promptForUsernameCredentials(
    LuSVNAuthenticationProvider&, LuSVNUsernameCredentials&, const std::optional<std::string>&, std::int32_t)
{
    return std::nullopt;
}

std::optional<bool> LuSVNAuthenticationProviderDelegate::promptForSSLClientCertificateCredentials(
    LuSVNAuthenticationProvider&, LuSVNSSLClientCertificateCredentials&, const std::optional<std::string>&,
    std::int32_t)
{
    return std::nullopt;
}

std::optional<bool> LuSVNAuthenticationProviderDelegate::promptForSSLClientCertificatePasswordCredentials(
    LuSVNAuthenticationProvider&, LuSVNSSLClientCertificatePasswordCredentials&, const std::optional<std::string>&,
    std::int32_t)
{
    return std::nullopt;
}

std::optional<bool> LuSVNAuthenticationProviderDelegate::promptForAuthenticationErrors(
    LuSVNAuthenticationProvider&, std::uint32_t, const LuSVNCertificate&, const std::optional<std::string>&, bool,
    bool&)
{
    return std::nullopt;
}

std::optional<bool> LuSVNAuthenticationProviderDelegate::maySavePlainTextCredentialsForRealm(
    LuSVNAuthenticationProvider&, const std::optional<std::string>&)
{
    return std::nullopt;
}
