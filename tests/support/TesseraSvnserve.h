// A real svnserve on 127.0.0.1 for the tests that authenticate over the
// network.
#pragma once

#include <sys/types.h>

#include <atomic>
#include <memory>
#include <optional>
#include <string>

#include <tessera/LuSVNAuthenticationProvider.h>
#include <tessera/LuSVNSimpleCredentials.h>

#include "TesseraTestSupport.h"

namespace tessera_test {

/// svnserve for one repository, "repo", with user "alice", password
/// "wonderland" and anonymous access refused, on a free port of 127.0.0.1.
/// Killed when the object goes, and by the kernel should the test process die
/// first.
class Svnserve {
public:
    static constexpr const char* realmName = "Tessera Test Realm";

    Svnserve();
    ~Svnserve();
    Svnserve(const Svnserve&) = delete;
    Svnserve& operator=(const Svnserve&) = delete;

    std::string url() const { return "svn://127.0.0.1:" + std::to_string(port_) + "/repo"; }
    std::string realm() const { return "<svn://127.0.0.1:" + std::to_string(port_) + "> " + realmName; }
    /// The repository's directory, for svnadmin.
    std::string repositoryPath() const { return root / "repo"; }
    /// Ends the server at once with SIGKILL, as a crash would, and reaps it.
    void kill();

private:
    void stop();

    TemporaryDirectory root;
    int port_ = 0;
    pid_t pid_ = -1;
};

/// Answers user "alice" with its password to every request of simple
/// credentials, counting the requests.
class SvnservePasswordProvider : public LuSVNAuthenticationProvider {
public:
    explicit SvnservePasswordProvider(std::string password = "wonderland") : password_(std::move(password)) {}

    const LuSVNCredentialsClass& credentialsClass() const override { return LuSVNSimpleCredentials::classObject(); }
    std::shared_ptr<LuSVNCredentials> credentialsForRealm(const std::optional<std::string>&, const LuSVNAuthParameters&,
                                                          std::shared_ptr<void>&) override
    {
        ++asked;
        return LuSVNSimpleCredentials::credentialsWithUsername("alice", password_);
    }
    std::shared_ptr<LuSVNAuthenticationProvider> copy() const override
    {
        return std::make_shared<SvnservePasswordProvider>(password_);
    }

    std::atomic<int> asked = 0;

private:
    std::string password_;
};

}  // namespace tessera_test
