#include "serverSocket.h"

#include <algorithm>
#include <system_error>
#include <winsock2.h>

namespace server
{

namespace
{

SOCKET handle(Socket socket)
{
    return static_cast<SOCKET>(socket);
}

[[noreturn]] void raise(const char* call)
{
    throw std::system_error(WSAGetLastError(), std::system_category(), call);
}

void check(int result, const char* call)
{
    if (result != 0) raise(call);
}

// No child inherits it.
SOCKET makeSocket(int type)
{
    const SOCKET socket =
        WSASocketW(AF_INET, type, 0, nullptr, 0, WSA_FLAG_OVERLAPPED | WSA_FLAG_NO_HANDLE_INHERIT);
    if (socket == INVALID_SOCKET) raise("WSASocket");
    return socket;
}

int resultOf(int count)
{
    if (count >= 0) return count;
    return WSAGetLastError() == WSAEWOULDBLOCK ? LATER : BROKEN;
}

int lengthOf(std::size_t size)
{
    return static_cast<int>(std::min<std::size_t>(size, 1 << 20));
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
void bindTo(SOCKET socket, sockaddr_in& address)
{
    int size = sizeof address;
    check(bind(socket, reinterpret_cast<sockaddr*>(&address), size), "bind");
    check(getsockname(socket, reinterpret_cast<sockaddr*>(&address), &size), "getsockname");
}

} // namespace

void startNetwork()
{
    WSADATA data{};
    const int error = WSAStartup(MAKEWORD(2, 2), &data);
    if (error != 0) throw std::system_error(error, std::system_category(), "WSAStartup");
}

Socket listenOn(std::uint16_t& port)
{
    const SOCKET socket = makeSocket(SOCK_STREAM);
    // So much waits for a client that doesn't read.
    const int room = MOST_WAITING;
    check(setsockopt(socket, SOL_SOCKET, SO_SNDBUF, reinterpret_cast<const char*>(&room),
                     sizeof room),
          "setsockopt");
    sockaddr_in address = loopback(port);
    bindTo(socket, address);
    check(listen(socket, SOMAXCONN), "listen");
    stopWaiting(static_cast<Socket>(socket));
    port = ntohs(address.sin_port);
    return static_cast<Socket>(socket);
}

Socket acceptFrom(Socket listener)
{
    const SOCKET socket = accept(handle(listener), nullptr, nullptr);
    if (socket == INVALID_SOCKET) return NO_SOCKET;
    stopWaiting(static_cast<Socket>(socket));
    return static_cast<Socket>(socket);
}

Socket connectTo(std::uint16_t port)
{
    const SOCKET socket = makeSocket(SOCK_STREAM);
    const sockaddr_in address = loopback(port);
    if (connect(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0)
        return static_cast<Socket>(socket);
    closesocket(socket);
    return NO_SOCKET;
}

// It sends to itself, which works alike on both platforms.
Socket makeBell()
{
    const SOCKET socket = makeSocket(SOCK_DGRAM);
    sockaddr_in address = loopback(0);
    bindTo(socket, address);
    check(connect(socket, reinterpret_cast<sockaddr*>(&address), sizeof address), "connect");
    stopWaiting(static_cast<Socket>(socket));
    return static_cast<Socket>(socket);
}

void ring(Socket bell)
{
    // If there is no room it has rung already.
    (void)send(bell, "!", 1);
}

void silence(Socket bell)
{
    char byte = 0;
    while (receive(bell, &byte, 1) > 0) continue;
}

void stopWaiting(Socket socket)
{
    u_long yes = 1;
    check(ioctlsocket(handle(socket), static_cast<long>(FIONBIO), &yes), "ioctlsocket");
}

int receive(Socket socket, char* bytes, std::size_t size)
{
    return resultOf(recv(handle(socket), bytes, lengthOf(size), 0));
}

int send(Socket socket, const char* bytes, std::size_t size)
{
    return resultOf(::send(handle(socket), bytes, lengthOf(size), 0));
}

void endSending(Socket socket)
{
    shutdown(handle(socket), SD_SEND);
}

void close(Socket socket)
{
    closesocket(handle(socket));
}

void wait(std::vector<Watched>& sockets, int milliseconds)
{
    std::vector<WSAPOLLFD> polled;
    for (const Watched& watched : sockets)
    {
        const int events = (watched._reads ? POLLRDNORM : 0) | (watched._writes ? POLLWRNORM : 0);
        polled.push_back({handle(watched._socket), static_cast<SHORT>(events), 0});
    }
    if (WSAPoll(polled.data(), static_cast<ULONG>(polled.size()), milliseconds) <= 0) return;
    for (std::size_t i = 0; i < polled.size(); ++i)
    {
        const int broken = POLLERR | POLLHUP | POLLNVAL;
        sockets[i]._canRead = (polled[i].revents & (POLLRDNORM | broken)) != 0;
        sockets[i]._canWrite = (polled[i].revents & (POLLWRNORM | broken)) != 0;
    }
}

} // namespace server
