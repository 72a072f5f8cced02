#include "TesseraSvnserve.h"

#include <arpa/inet.h>
#include <netinet/in.h>
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
#include <vector>

namespace tessera_test {

namespace {

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

}  // namespace

Svnserve::Svnserve(bool anonymousRead)
{
    const std::string repository = root / "repo";
    const std::string fileURL = makeRepository(repository);
    const std::string tree = root / "tree";
    for (const char* file : {"trunk/file.txt", "private/secret.txt", "denied/hidden.txt"}) {
        std::filesystem::create_directories(std::filesystem::path(tree + "/" + file).parent_path());
        writeFile(tree + "/" + file, std::string(file) + "\n");
    }
    for (const auto& arguments : std::vector<std::vector<std::string>>{
             {"import", "-q", "-m", "layout", tree, fileURL},
             {"checkout", "-q", fileURL, root / "wc"},
             {"propset", "-q", "color", "blue", root / "wc/private/secret.txt"},
             {"commit", "-q", "-m", "color", root / "wc"}}) {
        const CommandResult result = svn(arguments);
        if (result.status != 0)
            throw std::runtime_error("svn " + arguments[0] + " failed: " + result.output);
    }
    std::filesystem::remove_all(root / "wc");
    std::filesystem::remove_all(tree);
    writeFile(repository + "/conf/svnserve.conf",
              std::string("[general]\nanon-access = ") + (anonymousRead ? "read" : "none") +
                  "\nauth-access = write\npassword-db = passwd\nauthz-db = authz\nrealm = " + realmName + "\n");
    writeFile(repository + "/conf/passwd", std::string("[users]\n") + username + " = " + password + "\n");
    writeFile(repository + "/conf/authz", "[/]\n$anonymous = r\n$authenticated = rw\n"
                                          "[/private]\n$anonymous =\n"
                                          "[/denied]\n* =\n");
    const std::string svnserve =
        (std::filesystem::path(TESSERA_SVNADMIN_PROGRAM).parent_path() / "svnserve").string();
    port_ = freeLoopbackPort();
    const std::vector<std::string> arguments{svnserve,    "-d", "--foreground", "--threads", "--listen-host",
                                             "127.0.0.1", "--listen-port", std::to_string(port_), "-r", root.path()};
    pid_ = fork();
    if (pid_ == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        std::vector<char*> argv;
        for (const auto& argument : arguments)
            argv.push_back(const_cast<char*>(argument.c_str()));
        argv.push_back(nullptr);
        execv(argv[0], argv.data());
        _exit(127);
    }
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (!acceptsConnections(port_)) {
        if (waitpid(pid_, nullptr, WNOHANG) == pid_) {
            pid_ = -1;
            throw std::runtime_error("svnserve exited at start");
        }
        if (std::chrono::steady_clock::now() > deadline) {
            stop();
            throw std::runtime_error("svnserve did not listen within 10 s");
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
}

Svnserve::~Svnserve()
{
    stop();
}

void Svnserve::stop()
{
    if (pid_ <= 0)
        return;
    kill(pid_, SIGTERM);
    for (int i = 0; i < 100 && waitpid(pid_, nullptr, WNOHANG) == 0; ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    if (kill(pid_, SIGKILL) == 0)
        waitpid(pid_, nullptr, 0);
    pid_ = -1;
}

}  // namespace tessera_test
