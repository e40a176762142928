#include "serverSocket.h"

#include <arpa/inet.h>
#include <cerrno>
#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <system_error>
#include <unistd.h>

namespace server
{

namespace
{

int descriptor(Socket socket)
{
    return static_cast<int>(socket);
}

int check(int result, const char* call)
{
    if (result < 0) throw std::system_error(errno, std::generic_category(), call);
    return result;
}

int resultOf(ssize_t count)
{
    if (count >= 0) return static_cast<int>(count);
    return errno == EAGAIN || errno == EINTR ? LATER : BROKEN;
}

sockaddr_in loopback(std::uint16_t port)
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
}

// The port is the one that was found.
void bindTo(int socket, sockaddr_in& address)
{
    socklen_t size = sizeof address;
    check(bind(socket, reinterpret_cast<sockaddr*>(&address), size), "bind");
    check(getsockname(socket, reinterpret_cast<sockaddr*>(&address), &size), "getsockname");
}

} // namespace

void startNetwork() {}

Socket listenOn(std::uint16_t& port)
{
    const int socket =
        check(::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0), "socket");
    // A port whose last connections are still fading can be taken.
    const int yes = 1;
    check(setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes), "setsockopt");
    // So much waits for a client that doesn't read.
    const int room = MOST_WAITING;
    check(setsockopt(socket, SOL_SOCKET, SO_SNDBUF, &room, sizeof room), "setsockopt");
    sockaddr_in address = loopback(port);
    bindTo(socket, address);
    check(listen(socket, SOMAXCONN), "listen");
    port = ntohs(address.sin_port);
    return socket;
}

Socket acceptFrom(Socket listener)
{
    return accept4(descriptor(listener), nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC);
}

Socket connectTo(std::uint16_t port)
{
    const int socket = check(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0), "socket");
    const sockaddr_in address = loopback(port);
    if (connect(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0)
        return socket;
    close(socket);
    return NO_SOCKET;
}

// It sends to itself, which works alike on both platforms.
Socket makeBell()
{
    const int socket =
        check(::socket(AF_INET, SOCK_DGRAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0), "socket");
    sockaddr_in address = loopback(0);
    bindTo(socket, address);
    check(connect(socket, reinterpret_cast<sockaddr*>(&address), sizeof address), "connect");
    return socket;
}

void ring(Socket bell)
{
    const int former = errno;
    // If there is no room it has rung already.
    (void)send(bell, "!", 1);
    errno = former;
}

void silence(Socket bell)
{
    char byte = 0;
    while (receive(bell, &byte, 1) > 0) continue;
}

void stopWaiting(Socket socket)
{
    const int flags = check(fcntl(descriptor(socket), F_GETFL), "fcntl");
    check(fcntl(descriptor(socket), F_SETFL, flags | O_NONBLOCK), "fcntl");
}

int receive(Socket socket, char* bytes, std::size_t size)
{
    return resultOf(recv(descriptor(socket), bytes, size, 0));
}

int send(Socket socket, const char* bytes, std::size_t size)
{
    // A client that has gone is an error of the call, not the signal SIGPIPE.
    return resultOf(::send(descriptor(socket), bytes, size, MSG_NOSIGNAL));
}

void endSending(Socket socket)
{
    shutdown(descriptor(socket), SHUT_WR);
}

void close(Socket socket)
{
    ::close(descriptor(socket));
}

void wait(std::vector<Watched>& sockets, int milliseconds)
{
    std::vector<pollfd> polled;
    for (const Watched& watched : sockets)
    {
        const int events = (watched._reads ? POLLIN : 0) | (watched._writes ? POLLOUT : 0);
        polled.push_back({descriptor(watched._socket), static_cast<short>(events), 0});
    }
    if (poll(polled.data(), polled.size(), milliseconds) <= 0) return;
    for (std::size_t i = 0; i < polled.size(); ++i)
    {
        const int broken = POLLERR | POLLHUP | POLLNVAL;
        sockets[i]._canRead = (polled[i].revents & (POLLIN | broken)) != 0;
        sockets[i]._canWrite = (polled[i].revents & (POLLOUT | broken)) != 0;
    }
}

} // namespace server
