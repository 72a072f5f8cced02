// "svn.ssl.client-cert" credentials: the path of the client certificate file
// (svn_auth_cred_ssl_client_cert_t).
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <utility>

#include <tessera/LuSVNCredentials.h>

struct svn_auth_cred_ssl_client_cert_t;

class TESSERA_EXPORT LuSVNSSLClientCertificateCredentials : public LuSVNCredentials {
public:
    using SVNStruct = svn_auth_cred_ssl_client_cert_t;

    static const LuSVNCredentialsClass& classObject();

    /// Empty credentials: no path, maySave() false.
    static std::shared_ptr<LuSVNSSLClientCertificateCredentials> credentials();
    static std::shared_ptr<LuSVNSSLClientCertificateCredentials> credentialsWithCertificateAtPath(
        std::optional<std::string> certificatePath);
    /// Credentials from Subversion's structure (a null cert_file stays absent;
    /// maySave() only when may_save is exactly 1). Raises "Invalid parameter
    /// not satisfying: creds != nil" for null.
    static std::shared_ptr<LuSVNSSLClientCertificateCredentials> credentialsFromStruct(
        const svn_auth_cred_ssl_client_cert_t* creds);

    const std::optional<std::string>& certificatePath() const { return certificatePath_; }
    void setCertificatePath(std::optional<std::string> path) { certificatePath_ = std::move(path); }

    const LuSVNCredentialsClass& credentialsClass() const override { return classObject(); }
    /// An svn_auth_cred_ssl_client_cert_t.
    void* convertToStructFromPool(apr_pool_t* pool) const override;
    /// Client-certificate credentials with the same path (absent equals
    /// absent only).
    bool isEqualToCredentials(const std::shared_ptr<const LuSVNCredentials>& other) const override;
    /// "svn.ssl.client-cert (/path/cert.p12)", or the kind for an empty path.
    std::string description() const override;
    std::shared_ptr<LuSVNCredentials> copy() const override;

private:
    std::optional<std::string> certificatePath_;
};
