// "svn.simple" credentials: a user name and a password
// (svn_auth_cred_simple_t).
//
//   auto creds = LuSVNSimpleCredentials::credentialsWithUsername("alice", "secret");
//   creds->description();   // "svn.simple (alice, ******)"
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <utility>

#include <tessera/LuSVNCredentials.h>

struct svn_auth_cred_simple_t;

class TESSERA_EXPORT LuSVNSimpleCredentials : public LuSVNCredentials {
public:
    using SVNStruct = svn_auth_cred_simple_t;

    static const LuSVNCredentialsClass& classObject();

    /// Empty credentials: no user name, no password, maySave() false.
    static std::shared_ptr<LuSVNSimpleCredentials> credentials();
    static std::shared_ptr<LuSVNSimpleCredentials> credentialsWithUsername(std::optional<std::string> username,
                                                                           std::optional<std::string> password);
    /// Credentials from Subversion's structure: null members stay absent;
    /// maySave() only when may_save is exactly 1. Raises "Invalid parameter not
    /// satisfying: creds != nil" for null.
    static std::shared_ptr<LuSVNSimpleCredentials> credentialsFromStruct(const svn_auth_cred_simple_t* creds);

    const std::optional<std::string>& username() const { return username_; }
    void setUsername(std::optional<std::string> username) { username_ = std::move(username); }
    const std::optional<std::string>& password() const { return password_; }
    void setPassword(std::optional<std::string> password) { password_ = std::move(password); }

    const LuSVNCredentialsClass& credentialsClass() const override { return classObject(); }
    /// An svn_auth_cred_simple_t.
    void* convertToStructFromPool(apr_pool_t* pool) const override;
    /// Equal user names and equal passwords (absent equals absent only).
    bool isEqualToCredentials(const std::shared_ptr<const LuSVNCredentials>& other) const override;
    /// "svn.simple (alice, ******)" with one "*" per character of the
    /// password when both are non-empty; "svn.simple (alice)" when only the
    /// user name is; else "svn.simple".
    std::string description() const override;
    std::shared_ptr<LuSVNCredentials> copy() const override;

private:
    std::optional<std::string> username_;
    std::optional<std::string> password_;
};
