// "svn.ssl.client-passphrase" credentials: the passphrase of the client
// certificate (svn_auth_cred_ssl_client_cert_pw_t).
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <utility>

#include <tessera/LuSVNCredentials.h>

struct svn_auth_cred_ssl_client_cert_pw_t;

class TESSERA_EXPORT LuSVNSSLClientCertificatePasswordCredentials : public LuSVNCredentials {
public:
    using SVNStruct = svn_auth_cred_ssl_client_cert_pw_t;

    static const LuSVNCredentialsClass& classObject();

    /// Empty credentials: no passphrase, maySave() false.
    static std::shared_ptr<LuSVNSSLClientCertificatePasswordCredentials> credentials();
    static std::shared_ptr<LuSVNSSLClientCertificatePasswordCredentials> credentialsWithPassword(
        std::optional<std::string> password);
    /// Credentials from Subversion's structure (a null password stays absent;
    /// maySave() only when may_save is exactly 1). Raises "Invalid parameter
    /// not satisfying: creds != nil" for null.
    static std::shared_ptr<LuSVNSSLClientCertificatePasswordCredentials> credentialsFromStruct(
        const svn_auth_cred_ssl_client_cert_pw_t* creds);

    const std::optional<std::string>& password() const { return password_; }
    void setPassword(std::optional<std::string> password) { password_ = std::move(password); }

    const LuSVNCredentialsClass& credentialsClass() const override { return classObject(); }
    /// An svn_auth_cred_ssl_client_cert_pw_t.
    void* convertToStructFromPool(apr_pool_t* pool) const override;
    /// Passphrase credentials with the same passphrase (absent equals absent
    /// only).
    bool isEqualToCredentials(const std::shared_ptr<const LuSVNCredentials>& other) const override;
    /// "svn.ssl.client-passphrase (****)" with one "*" per character, or the
    /// kind for an empty passphrase.
    std::string description() const override;
    std::shared_ptr<LuSVNCredentials> copy() const override;

private:
    std::optional<std::string> password_;
};
