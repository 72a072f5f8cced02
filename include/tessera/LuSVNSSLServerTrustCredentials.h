// "svn.ssl.server" credentials: the SSL failures (LuSVNSSLFailures.h) that
// the user accepts for a server certificate
// (svn_auth_cred_ssl_server_trust_t).
#pragma once

#include <cstdint>
#include <memory>

#include <tessera/LuSVNCredentials.h>
#include <tessera/LuSVNSSLFailures.h>

struct svn_auth_cred_ssl_server_trust_t;

class TESSERA_EXPORT LuSVNSSLServerTrustCredentials : public LuSVNCredentials {
public:
    using SVNStruct = svn_auth_cred_ssl_server_trust_t;

    static const LuSVNCredentialsClass& classObject();

    /// Credentials accepting no failure, maySave() false.
    static std::shared_ptr<LuSVNSSLServerTrustCredentials> credentials();
    static std::shared_ptr<LuSVNSSLServerTrustCredentials> credentialsWithAcceptedFailures(
        std::uint32_t acceptedFailures);
    /// Credentials from Subversion's structure (maySave() only when may_save
    /// is exactly 1). Raises "Invalid parameter not satisfying: creds != nil"
    /// for null.
    static std::shared_ptr<LuSVNSSLServerTrustCredentials> credentialsFromStruct(
        const svn_auth_cred_ssl_server_trust_t* creds);

    std::uint32_t acceptedFailures() const { return acceptedFailures_; }
    void setAcceptedFailures(std::uint32_t failures) { acceptedFailures_ = failures; }

    const LuSVNCredentialsClass& credentialsClass() const override { return classObject(); }
    /// An svn_auth_cred_ssl_server_trust_t.
    void* convertToStructFromPool(apr_pool_t* pool) const override;
    /// Server-trust credentials accepting the same failures.
    bool isEqualToCredentials(const std::shared_ptr<const LuSVNCredentials>& other) const override;
    /// "svn.ssl.server (Expired, HostMismatch)": the kind and
    /// LuSVNStringFromSSLError of the accepted failures.
    std::string description() const override;
    /// Whether every failure of the server (the parameter
    /// LuSVNAuthParamSSLServerFailures, absent counting as none) is accepted.
    bool validateWithParameters(const LuSVNAuthParameters& parameters) const override;
    std::shared_ptr<LuSVNCredentials> copy() const override;

private:
    std::uint32_t acceptedFailures_ = 0;
};
