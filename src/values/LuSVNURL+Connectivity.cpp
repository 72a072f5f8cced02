#include <tessera/LuSVNException.h>
#include <tessera/LuSVNPlatformExceptions.h>
#include <tessera/LuSVNURL.h>

#include <fcntl.h>
#include <netdb.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cmath>
#include <memory>
#include <string>

namespace {

// Closes the socket on every path, an exception included.
class SocketCloser {
public:
    explicit SocketCloser(int socket) : socket_(socket) {}
    ~SocketCloser() { close(socket_); }
    SocketCloser(const SocketCloser&) = delete;
    SocketCloser& operator=(const SocketCloser&) = delete;

private:
    int socket_;
};

// Whole seconds as milliseconds for poll; fractions are dropped, and a
// negative or absurd timeout does not wait at all or waits a day.
int pollMilliseconds(double timeout)
{
    if (!(timeout >= 1.0))
        return 0;
    return static_cast<int>(std::min(std::trunc(timeout), 86400.0)) * 1000;
}

bool becomesWritable(int socket, int milliseconds)
{
    using Clock = std::chrono::steady_clock;
    const Clock::time_point deadline = Clock::now() + std::chrono::milliseconds(milliseconds);
    for (;;) {
        pollfd entry{socket, POLLOUT, 0};
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count();
        const int ready = poll(&entry, 1, left > 0 ? static_cast<int>(left) : 0);
        // Linux reports a refused connection, even to the loopback address,
        // only after connect() has answered "in progress": as writable with
        // an error or hang-up beside it. That counts as not writable, so a
        // closed port is unreachable as it is where the refusal is immediate.
        if (ready >= 0 || errno != EINTR)
            return ready > 0 && entry.revents == POLLOUT;
    }
}

}  // namespace

bool LuSVNURL::connectToAddress(const struct sockaddr* address, int family, int socketType, double timeout)
{
    const int socket = ::socket(family, socketType, 0);
    if (socket < 0)
        throw LuSVNGenericException("Failed to open stream");
    SocketCloser closer(socket);
    const int flags = fcntl(socket, F_GETFL, 0);
    if (flags < 0)
        throw LuSVNGenericException("fcntl(F_GETFL) failed for socket");
    if (fcntl(socket, F_SETFL, flags | O_NONBLOCK) < 0)
        throw LuSVNGenericException("fcntl(F_SETFL) failed for socket");
    // Sixteen bytes whatever the family, as designed: an IPv6 address does not
    // fit and so never connects.
    if (connect(socket, address, 16) == 0)
        return true;
    if (errno != EINPROGRESS)
        return false;
    return becomesWritable(socket, pollMilliseconds(timeout));
}

bool LuSVNURL::isReachableWithinTimeout(double seconds) const
{
    const std::string scheme = this->scheme();
    if (scheme == "file" || schemeUsesTunnel())
        return true;
    const std::string service = port_ ? std::to_string(*port_) : scheme;
    addrinfo hints{};
    hints.ai_family = AF_UNSPEC;
    hints.ai_socktype = SOCK_STREAM;
    addrinfo* found = nullptr;
    if (getaddrinfo(host_.c_str(), service.c_str(), &hints, &found) != 0)
        return false;
    const std::unique_ptr<addrinfo, decltype(&freeaddrinfo)> addresses(found, freeaddrinfo);
    for (const addrinfo* address = addresses.get(); address; address = address->ai_next) {
        if (connectToAddress(address->ai_addr, address->ai_family, address->ai_socktype, seconds))
            return true;
    }
    return false;
}

void LuSVNURL::testConnectivity(double seconds) const
{
    if (!isReachableWithinTimeout(seconds))
        throw LuSVNCommunicationException(hostAndScheme() + " is currently unreachable");
}
