// The reachability probe, against a listener of the test's own on 127.0.0.1
// and a port that was just closed. No other address is contacted.
#include <tessera/LuSVNException.h>
#include <tessera/LuSVNPlatformExceptions.h>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include "LuSVNPathTestSupport.h"

using namespace path_test;

namespace {

// A socket bound to 127.0.0.1 on a free port, listening when asked.
class LoopbackSocket {
public:
    explicit LoopbackSocket(bool listening)
    {
        socket_ = ::socket(AF_INET, SOCK_STREAM, 0);
        address_.sin_family = AF_INET;
        address_.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t length = sizeof address_;
        EXPECT_EQ(bind(socket_, reinterpret_cast<sockaddr*>(&address_), sizeof address_), 0);
        EXPECT_EQ(getsockname(socket_, reinterpret_cast<sockaddr*>(&address_), &length), 0);
        if (listening) {
            EXPECT_EQ(listen(socket_, 4), 0);
        }
    }
    ~LoopbackSocket() { close(socket_); }

    int port() const { return ntohs(address_.sin_port); }
    const sockaddr_in& address() const { return address_; }

private:
    int socket_;
    sockaddr_in address_{};
};

int closedPort()
{
    return LoopbackSocket(false).port();  // bound, never listening, closed again
}

TEST(LuSVNConnectivityTest, ConnectingToAddresses)
{
    LoopbackSocket listener(true);
    EXPECT_TRUE(LuSVNURL::connectToAddress(reinterpret_cast<const sockaddr*>(&listener.address()), AF_INET,
                                           SOCK_STREAM, 1.0));
    sockaddr_in closed = listener.address();
    closed.sin_port = htons(static_cast<std::uint16_t>(closedPort()));
    EXPECT_FALSE(LuSVNURL::connectToAddress(reinterpret_cast<const sockaddr*>(&closed), AF_INET, SOCK_STREAM, 1.0));
    // The address length is 16 bytes for every family: IPv6 never connects,
    // and fails before anything is sent.
    sockaddr_in6 loopback6{};
    loopback6.sin6_family = AF_INET6;
    loopback6.sin6_addr = in6addr_loopback;
    loopback6.sin6_port = htons(static_cast<std::uint16_t>(listener.port()));
    EXPECT_FALSE(LuSVNURL::connectToAddress(reinterpret_cast<const sockaddr*>(&loopback6), AF_INET6, SOCK_STREAM, 1.0));
    EXPECT_EQ(reasonOf<LuSVNGenericException>([] { LuSVNURL::connectToAddress(nullptr, -1, SOCK_STREAM, 1.0); }),
              "Failed to open stream");
}

TEST(LuSVNConnectivityTest, ReachabilityOfURLs)
{
    LoopbackSocket listener(true);
    const auto open = LuSVNURL::URLWithString("svn://127.0.0.1:" + std::to_string(listener.port()) + "/repo");
    EXPECT_TRUE(open->isReachableWithinTimeout(1.5));
    EXPECT_NO_THROW(open->testConnectivity(1));

    const std::string closedHost = "svn://u@127.0.0.1:" + std::to_string(closedPort());
    const auto closed = LuSVNURL::URLWithString(closedHost + "/repo");
    EXPECT_FALSE(closed->isReachableWithinTimeout(1));
    EXPECT_EQ(reasonOf<LuSVNCommunicationException>([&] { closed->testConnectivity(1); }),
              closedHost + " is currently unreachable");

    // Without a port the scheme names the service; an unknown one does not
    // resolve.
    EXPECT_FALSE(LuSVNURL::URLWithString("nosuchservice://127.0.0.1/r")->isReachableWithinTimeout(1));
    // Local and tunnelled URLs are not probed.
    EXPECT_TRUE(LuSVNURL::URLWithString("file:///nowhere")->isReachableWithinTimeout(0));
    EXPECT_TRUE(LuSVNURL::URLWithString("svn+ssh://127.0.0.1:" + std::to_string(closedPort()) + "/r")
                    ->isReachableWithinTimeout(0));
}

}  // namespace
