// "svn.username" credentials: a user name only (svn_auth_cred_username_t).
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <utility>

#include <tessera/LuSVNCredentials.h>

struct svn_auth_cred_username_t;

class TESSERA_EXPORT LuSVNUsernameCredentials : public LuSVNCredentials {
public:
    using SVNStruct = svn_auth_cred_username_t;

    static const LuSVNCredentialsClass& classObject();

    /// Empty credentials: no user name, maySave() false.
    static std::shared_ptr<LuSVNUsernameCredentials> credentials();
    static std::shared_ptr<LuSVNUsernameCredentials> credentialsWithUsername(std::optional<std::string> username);
    /// Credentials from Subversion's structure (a null user name stays
    /// absent; maySave() only when may_save is exactly 1). Raises "Invalid
    /// parameter not satisfying: creds != nil" for null.
    static std::shared_ptr<LuSVNUsernameCredentials> credentialsFromStruct(const svn_auth_cred_username_t* creds);

    const std::optional<std::string>& username() const { return username_; }
    void setUsername(std::optional<std::string> username) { username_ = std::move(username); }

    const LuSVNCredentialsClass& credentialsClass() const override { return classObject(); }
    /// An svn_auth_cred_username_t.
    void* convertToStructFromPool(apr_pool_t* pool) const override;
    /// Username credentials with the same user name (absent equals absent only).
    bool isEqualToCredentials(const std::shared_ptr<const LuSVNCredentials>& other) const override;
    /// "svn.username (alice)", or "svn.username" for an empty user name.
    std::string description() const override;
    std::shared_ptr<LuSVNCredentials> copy() const override;

private:
    std::optional<std::string> username_;
};
