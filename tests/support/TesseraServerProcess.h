// A server program run by the tests on 127.0.0.1: started, waited for until
// it listens, and stopped again.
#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace tessera_test {

/// A port of 127.0.0.1 that nothing listens on now.
int freeLoopbackPort();

/// Runs the program (arguments[0], a path) in the foreground of a child
/// process and returns once it accepts connections on every port, within 10
/// s. Running as root, the child first becomes the user "nobody": servers
/// such as Apache refuse to serve as root, and the tests need none of its
/// rights. Killed when the object goes, and by the kernel should the test
/// process die first.
class ServerProcess {
public:
    ServerProcess(const std::vector<std::string>& arguments, const std::vector<int>& ports);
    ~ServerProcess();
    ServerProcess(const ServerProcess&) = delete;
    ServerProcess& operator=(const ServerProcess&) = delete;

    /// Makes the files below the directory the child's (for a root test
    /// process), so that a server running as "nobody" may use them.
    static void handOver(const std::string& directory);

    /// Ends the server at once with SIGKILL, as a crash would, and reaps it.
    void kill();

private:
    void stop();

    pid_t pid_ = -1;
};

}  // namespace tessera_test
