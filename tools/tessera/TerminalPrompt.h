// svn's questions for credentials, asked on the controlling terminal (or
// standard input and error without one), in svn's words; passwords are read
// without echo.
#pragma once

#include <functional>

#include <tessera/Tessera.h>
#include <tessera/LuSVNAuthenticationProvider.h>

class TesseraTerminalPrompt : public LuSVNAuthenticationProviderDelegate {
public:
    /// The one prompt of the process: providers do not keep their delegate.
    static std::shared_ptr<TesseraTerminalPrompt> shared();

    /// Called before each question, to take away what the terminal's last
    /// line shows (the progress line); none by default.
    void setBeforePrompting(std::function<void()> beforePrompting) { beforePrompting_ = std::move(beforePrompting); }

    std::optional<bool> promptForSimpleCredentials(LuSVNAuthenticationProvider& provider,
                                                   LuSVNSimpleCredentials& credentials,
                                                   const std::optional<std::string>& realm,
                                                   std::int32_t retryCount) override;
    std::optional<bool> promptForUsernameCredentials(LuSVNAuthenticationProvider& provider,
                                                     LuSVNUsernameCredentials& credentials,
                                                     const std::optional<std::string>& realm,
                                                     std::int32_t retryCount) override;
    std::optional<bool> promptForSSLClientCertificateCredentials(LuSVNAuthenticationProvider& provider,
                                                                 LuSVNSSLClientCertificateCredentials& credentials,
                                                                 const std::optional<std::string>& realm,
                                                                 std::int32_t retryCount) override;
    std::optional<bool> promptForSSLClientCertificatePasswordCredentials(
        LuSVNAuthenticationProvider& provider, LuSVNSSLClientCertificatePasswordCredentials& credentials,
        const std::optional<std::string>& realm, std::int32_t retryCount) override;
    std::optional<bool> promptForAuthenticationErrors(LuSVNAuthenticationProvider& provider, std::uint32_t failures,
                                                      const LuSVNCertificate& certificate,
                                                      const std::optional<std::string>& realm, bool mayStore,
                                                      bool& permanent) override;
    std::optional<bool> maySavePlainTextCredentialsForRealm(LuSVNAuthenticationProvider& provider,
                                                            const std::optional<std::string>& realm) override;

private:
    std::function<void()> beforePrompting_;
};

/// svn's question about a server certificate with failures: the failures,
/// the certificate's details and the choices (permanent acceptance only
/// when it may be stored).
std::string serverTrustQuestion(std::uint32_t failures, const LuSVNCertificate& certificate,
                                const std::string& realm, bool mayStore);
