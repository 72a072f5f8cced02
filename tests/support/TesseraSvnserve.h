// A real svnserve on 127.0.0.1 for the tests that authenticate over the
// network.
#pragma once

#include <memory>
#include <string>

#include "TesseraServerProcess.h"
#include "TesseraTestSupport.h"

namespace tessera_test {

/// svnserve for one repository, "repo", with user "alice", password
/// "wonderland", on a free port of 127.0.0.1. The repository holds
/// trunk/file.txt, private/secret.txt (property "color" = "blue") and
/// denied/hidden.txt; its authz file lets anonymous users read (when
/// anonymousRead) all but /private, alice read and write all but /denied,
/// which nobody reads. Stopped when the object goes.
class Svnserve {
public:
    static constexpr const char* realmName = "Tessera Test Realm";
    static constexpr const char* username = "alice";
    static constexpr const char* password = "wonderland";

    explicit Svnserve(bool anonymousRead = false);
    Svnserve(const Svnserve&) = delete;
    Svnserve& operator=(const Svnserve&) = delete;

    /// svn://127.0.0.1:PORT/repo
    std::string url() const { return "svn://127.0.0.1:" + std::to_string(port_) + "/repo"; }
    std::string realm() const { return "<svn://127.0.0.1:" + std::to_string(port_) + "> " + realmName; }

private:
    TemporaryDirectory root;
    int port_ = 0;
    std::unique_ptr<ServerProcess> process_;
};

}  // namespace tessera_test
