// A real svnserve on 127.0.0.1 for the tests that authenticate over the
// network.
#pragma once

#include <atomic>
#include <memory>
#include <optional>
#include <string>

#include <tessera/LuSVNAuthenticationProvider.h>
#include <tessera/LuSVNSimpleCredentials.h>

#include "TesseraServerProcess.h"
#include "TesseraTestSupport.h"

namespace tessera_test {

/// What the repository of an Svnserve holds when it starts.
enum class SvnserveContent {
    Empty,   ///< revision 0 only
    Layout,  ///< trunk/file.txt, private/secret.txt ("color" = "blue"), denied/hidden.txt in revisions 1 and 2
};

/// svnserve for one repository, "repo", with user "alice", password
/// "wonderland", on a free port of 127.0.0.1. Its authz file lets anonymous
/// users read (when anonymousRead) all but /private, alice read and write
/// all but /denied, which nobody reads. Stopped when the object goes.
///
/// The tests may write the repository through file:// too, as root while
/// the server runs as "nobody": the repository shares no representations,
/// so nothing that root writes is a file the server must write in place.
class Svnserve {
public:
    static constexpr const char* realmName = "Tessera Test Realm";
    static constexpr const char* username = "alice";
    static constexpr const char* password = "wonderland";

    explicit Svnserve(SvnserveContent content = SvnserveContent::Empty, bool anonymousRead = false);
    Svnserve(const Svnserve&) = delete;
    Svnserve& operator=(const Svnserve&) = delete;

    /// svn://127.0.0.1:PORT/repo
    std::string url() const { return "svn://127.0.0.1:" + std::to_string(port_) + "/repo"; }
    std::string realm() const { return "<svn://127.0.0.1:" + std::to_string(port_) + "> " + realmName; }
    /// The repository's directory, for svnadmin and file:// access.
    std::string repositoryPath() const { return root / "repo"; }
    /// Ends the server at once with SIGKILL, as a crash would, and reaps it.
    void kill() { process_->kill(); }

private:
    TemporaryDirectory root;
    int port_ = 0;
    std::unique_ptr<ServerProcess> process_;
};

/// Answers user "alice" with its password to every request of simple
/// credentials, counting the requests.
class SvnservePasswordProvider : public LuSVNAuthenticationProvider {
public:
    explicit SvnservePasswordProvider(std::string password = Svnserve::password) : password_(std::move(password)) {}

    const LuSVNCredentialsClass& credentialsClass() const override { return LuSVNSimpleCredentials::classObject(); }
    std::shared_ptr<LuSVNCredentials> credentialsForRealm(const std::optional<std::string>&, const LuSVNAuthParameters&,
                                                          std::shared_ptr<void>&) override
    {
        ++asked;
        return LuSVNSimpleCredentials::credentialsWithUsername(Svnserve::username, password_);
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
