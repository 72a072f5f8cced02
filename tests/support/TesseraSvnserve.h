// A real svnserve on 127.0.0.1 for the tests that authenticate over the
// network.
#pragma once

#include <sys/types.h>

#include <string>

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

private:
    void stop();

    TemporaryDirectory root;
    int port_ = 0;
    pid_t pid_ = -1;
};

}  // namespace tessera_test
