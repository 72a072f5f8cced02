#include "TesseraServerProcess.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <pwd.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <stdexcept>
#include <thread>

namespace tessera_test {

namespace {

bool acceptsConnections(int port)
{
    const int socket = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    const bool connected = connect(socket, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0;
    close(socket);
    return connected;
}

// The user a root test process hands its servers to; null when not root.
const passwd* unprivilegedUser()
{
    return geteuid() == 0 ? getpwnam("nobody") : nullptr;
}

}  // namespace

int freeLoopbackPort()
{
    const int socket = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    if (bind(socket, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0 ||
        getsockname(socket, reinterpret_cast<sockaddr*>(&address), &length) != 0)
        throw std::runtime_error("no free port on 127.0.0.1");
    close(socket);
    return ntohs(address.sin_port);
}

void ServerProcess::handOver(const std::string& directory)
{
    const passwd* user = unprivilegedUser();
    if (!user)
        return;
    const auto own = [&](const std::filesystem::path& path) {
        if (lchown(path.c_str(), user->pw_uid, user->pw_gid) != 0)
            throw std::runtime_error("cannot hand " + path.string() + " over");
    };
    own(directory);
    for (const auto& entry : std::filesystem::recursive_directory_iterator(directory))
        own(entry.path());
}

ServerProcess::ServerProcess(const std::vector<std::string>& arguments, const std::vector<int>& ports)
{
    const passwd* user = unprivilegedUser();
    pid_ = fork();
    if (pid_ == 0) {
        // A group of its own: the server's worker processes go with it.
        setpgid(0, 0);
        // Not the test's output: a worker that outlives its test would keep
        // ctest waiting on that pipe. The servers log to their own files.
        const int null = open("/dev/null", O_RDWR);
        if (null < 0 || dup2(null, 0) < 0 || dup2(null, 1) < 0 || dup2(null, 2) < 0)
            _exit(125);
        if (user && (setgid(user->pw_gid) != 0 || setuid(user->pw_uid) != 0))
            _exit(126);
        // After the change of user, which clears it.
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        std::vector<char*> argv;
        for (const auto& argument : arguments)
            argv.push_back(const_cast<char*>(argument.c_str()));
        argv.push_back(nullptr);
        execv(argv[0], argv.data());
        _exit(127);
    }
    setpgid(pid_, pid_);  // as the child does, whichever runs first
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    for (int port : ports)
        while (!acceptsConnections(port)) {
            if (waitpid(pid_, nullptr, WNOHANG) == pid_) {
                pid_ = -1;
                throw std::runtime_error(arguments[0] + " exited at start");
            }
            if (std::chrono::steady_clock::now() > deadline) {
                stop();
                throw std::runtime_error(arguments[0] + " did not listen within 10 s");
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
}

ServerProcess::~ServerProcess()
{
    stop();
}

void ServerProcess::kill()
{
    if (pid_ <= 0)
        return;
    ::kill(-pid_, SIGKILL);
    waitpid(pid_, nullptr, 0);
    pid_ = -1;
}

void ServerProcess::stop()
{
    if (pid_ <= 0)
        return;
    ::kill(-pid_, SIGTERM);
    for (int i = 0; i < 250 && waitpid(pid_, nullptr, WNOHANG) == 0; ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    // Workers the server left behind would hold the test's output open.
    if (::kill(-pid_, SIGKILL) == 0)
        waitpid(pid_, nullptr, 0);
    pid_ = -1;
}

}  // namespace tessera_test
