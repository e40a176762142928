#include "app/lgServiceFile.h"
#include "zulog/zlFile.h"
#include "zulog/zlTcp.h"

#include <algorithm>
#include <winsock2.h>

#include <ws2tcpip.h>

namespace Zu
{

namespace
{

constexpr DWORD FINISH_MILLISECONDS = 5000;

[[noreturn]] void fail(int error)
{
    throw ZlError(LgServiceFile::errorText(error));
}

void start()
{
    // Ends with the process.
    static const int RESULT = []
    {
        WSADATA facts = {};
        return WSAStartup(MAKEWORD(2, 2), &facts);
    }();
    if (RESULT != 0) fail(RESULT);
}

SOCKET handleOf(std::intptr_t value)
{
    return static_cast<SOCKET>(value);
}

// The handle, or -1 with the error.
std::intptr_t connectTo(const addrinfo& address, int& error)
{
    const SOCKET handle = socket(address.ai_family, address.ai_socktype, address.ai_protocol);
    const bool isMade = handle != INVALID_SOCKET;
    const BOOL on = TRUE;
    if (isMade)
        setsockopt(handle, SOL_SOCKET, SO_KEEPALIVE, reinterpret_cast<const char*>(&on), sizeof on);
    if (isMade && connect(handle, address.ai_addr, static_cast<int>(address.ai_addrlen)) == 0)
        return static_cast<std::intptr_t>(handle);
    error = WSAGetLastError();
    if (isMade) closesocket(handle);
    return -1;
}

} // namespace

ZlSocket::ZlSocket(const std::string& host, const std::string& port)
{
    start();
    addrinfo hints = {};
    hints.ai_socktype = SOCK_STREAM;
    hints.ai_protocol = IPPROTO_TCP;
    addrinfo* addresses = nullptr;
    const int result = getaddrinfo(host.c_str(), port.c_str(), &hints, &addresses);
    if (result != 0) fail(result);
    int error = 0;
    for (const addrinfo* one = addresses; one && _handle < 0; one = one->ai_next)
        _handle = connectTo(*one, error);
    freeaddrinfo(addresses);
    if (_handle < 0) fail(error);
}

ZlSocket::~ZlSocket()
{
    closesocket(handleOf(_handle));
}

void ZlSocket::write(std::string_view bytes)
{
    constexpr std::size_t MOST = std::size_t{1} << 20;
    while (!bytes.empty())
    {
        const int size = static_cast<int>(std::min(bytes.size(), MOST));
        const int count = send(handleOf(_handle), bytes.data(), size, 0);
        if (count < 0) fail(WSAGetLastError());
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
}

bool ZlSocket::isClosed()
{
    for (;;)
    {
        WSAPOLLFD poll = {handleOf(_handle), POLLRDNORM, 0};
        if (WSAPoll(&poll, 1, 0) <= 0) return false;
        char dropped[256];
        if (recv(handleOf(_handle), dropped, sizeof dropped, 0) <= 0) return true;
    }
}

void ZlSocket::finish()
{
    shutdown(handleOf(_handle), SD_SEND);
    const DWORD limit = FINISH_MILLISECONDS;
    setsockopt(handleOf(_handle), SOL_SOCKET, SO_RCVTIMEO, reinterpret_cast<const char*>(&limit),
               sizeof limit);
    char dropped[256];
    while (recv(handleOf(_handle), dropped, sizeof dropped, 0) > 0) continue;
}

} // namespace Zu
