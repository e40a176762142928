#include "zulog/zlTcp.h"

#include "zulog/zlFile.h"

#include <utility>

namespace Zu
{

namespace
{

constexpr std::size_t PIECE = std::size_t{64} * 1024;

} // namespace

void zlAppendFrame(std::string& out, std::string_view message)
{
    out.append(std::to_string(message.size())).append(" ").append(message);
}

ZlTcp::ZlTcp(std::string host, std::string port) : _host(std::move(host)), _port(std::move(port)) {}

ZlTcp::~ZlTcp() = default;

// Where it fails, all are sent again: the receiver may have dropped what the system had taken.
ZlTransport::Result ZlTcp::deliver(std::span<const std::string> messages)
{
    try
    {
        if (_socket && _socket->isClosed()) _socket.reset();
        if (!_socket) _socket = std::make_unique<ZlSocket>(_host, _port);
        std::string frames;
        for (const std::string& message : messages)
        {
            zlAppendFrame(frames, message);
            if (frames.size() < PIECE) continue;
            _socket->write(frames);
            frames.clear();
        }
        _socket->write(frames);
        return {messages.size(), ""};
    }
    catch (const ZlError& error)
    {
        _socket.reset();
        return {0, error.what()};
    }
}

void ZlTcp::finish()
{
    if (_socket) _socket->finish();
    _socket.reset();
}

} // namespace Zu
