// Credentials: the answers that authentication providers give Subversion.
//
// One concrete class per credential kind, each converting to and from the
// C structure Subversion uses for that kind:
//
//   LuSVNSimpleCredentials                        "svn.simple"
//   LuSVNUsernameCredentials                      "svn.username"
//   LuSVNSSLClientCertificateCredentials          "svn.ssl.client-cert"
//   LuSVNSSLClientCertificatePasswordCredentials  "svn.ssl.client-passphrase"
//   LuSVNSSLServerTrustCredentials                "svn.ssl.server"
//
// Credentials are mutable objects shared as std::shared_ptr; copy() makes an
// independent one. Equality compares the content and never maySave().
// description() is meant for logs and never shows a secret.
//
// A kind is also a value, LuSVNCredentialsClass (LuSVNSimpleCredentials::
// classObject()), so that providers and the authentication stack can name
// the kind they serve and make credentials of it at run time.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include <tessera/LuSVNAuthParameters.h>
#include <tessera/LuSVNExport.h>

struct apr_pool_t;
class LuSVNCredentials;

/// A credential class as a value.
struct TESSERA_EXPORT LuSVNCredentialsClass {
    /// The class name, for logs: "LuSVNSimpleCredentials".
    const char* name;
    /// Subversion's kind: "svn.simple".
    const char* kind;
    /// New empty credentials of the class.
    std::shared_ptr<LuSVNCredentials> (*credentials)();
    /// New credentials from a pointer to the kind's Subversion structure.
    std::shared_ptr<LuSVNCredentials> (*credentialsFromStruct)(const void* creds);
    /// Whether the credentials are of the class or of a subclass of it.
    bool (*isInstance)(const LuSVNCredentials& credentials);

    /// The class object of a concrete class T, which has static credentials()
    /// and credentialsFromStruct(const typename T::SVNStruct*).
    template <class T>
    static LuSVNCredentialsClass of(const char* name, const char* kind)
    {
        return {name, kind, [] { return std::shared_ptr<LuSVNCredentials>(T::credentials()); },
                [](const void* creds) {
                    return std::shared_ptr<LuSVNCredentials>(
                        T::credentialsFromStruct(static_cast<const typename T::SVNStruct*>(creds)));
                },
                [](const LuSVNCredentials& object) { return dynamic_cast<const T*>(&object) != nullptr; }};
    }
};

class TESSERA_EXPORT LuSVNCredentials {
public:
    /// Bit 0 of state(): Subversion may store the credentials.
    static constexpr std::uint32_t maySaveFlag = 1;

    virtual ~LuSVNCredentials();

    /// The class of these credentials.
    virtual const LuSVNCredentialsClass& credentialsClass() const = 0;
    /// Its kind, "svn.simple" for example.
    std::string kind() const { return credentialsClass().kind; }

    /// The flags: maySaveFlag or 0.
    std::uint32_t state() const { return state_; }
    /// Whether Subversion may store the credentials; false for new ones.
    bool maySave() const { return (state_ & maySaveFlag) != 0; }
    void setMaySave(bool maySave) { state_ = maySave ? maySaveFlag : 0; }

    /// A new structure of the kind in the pool (entry points 3 and 4 of the
    /// current backend): zeroed, strings copied (absent ones null), may_save
    /// 1 exactly when maySave(). Raises "Invalid parameter not satisfying:
    /// pool != NULL" for a null pool.
    virtual void* convertToStructFromPool(apr_pool_t* pool) const = 0;

    /// Content equality with credentials of the same kind; maySave() does not
    /// count. False for null.
    virtual bool isEqualToCredentials(const std::shared_ptr<const LuSVNCredentials>& other) const = 0;
    /// False for null and for credentials that are not of this object's class
    /// (or a subclass of it); else isEqualToCredentials.
    bool isEqual(const std::shared_ptr<const LuSVNCredentials>& other) const;

    /// The kind; subclasses add their non-secret content.
    virtual std::string description() const;

    /// Whether the credentials answer the situation the parameters describe.
    /// True here; server-trust credentials check the server's failures.
    virtual bool validateWithParameters(const LuSVNAuthParameters& parameters) const;

    /// New credentials of the same class with the same content and maySave().
    virtual std::shared_ptr<LuSVNCredentials> copy() const = 0;

protected:
    LuSVNCredentials() = default;
    LuSVNCredentials(const LuSVNCredentials&) = default;
    LuSVNCredentials& operator=(const LuSVNCredentials&) = default;

    /// One "*" per character (code point) of the secret.
    static std::string maskedSecret(std::string_view secret);

private:
    std::uint32_t state_ = 0;
};
