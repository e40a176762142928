// A small server on this machine that logs every request, and loses none of them.
//
//     server [-p port] [-l directory of the log files]
//
// It reads lines and answers each with one: "ADD 2 3" with "= 5", "ECHO text" with the text,
// "STATS" with the health of the log service, anything it does not know with "? ...". "QUIT" ends
// the connection, and "SHUTDOWN", SIGTERM or SIGINT the server. Requests are Informational:
// ZU_LOG_GROUPS=Server=Informational has them logged.

#include "clients.h"
#include "requests.h"
#include "serverLog.h"
#include "serverSocket.h"
#include "workers.h"

#include <atomic>
#include <charconv>
#include <csignal>
#include <cstdint>
#include <iostream>
#include <stdexcept>
#include <string_view>
#include <system_error>

namespace server
{
struct package
{
};
} // namespace server

template <> Zu::InInit<server::package>::InInit() : InPackageInit("server")
{
    registerPackage();
    addDependency(InInit<ZuInit::base>::getType());
}
template <> void Zu::InInit<server::package>::performInitialize()
{
    ZU_START_LOG_GROUP("Server", Requests);
}
template <> void Zu::InInit<server::package>::performFinalize()
{
    ZU_STOP_LOG_GROUP(Requests);
}

namespace
{

Zu::InInit<server::package> thePackage;

Zu::InArgAlias portOption("p:", "port to listen on; 0: any");
Zu::InEnvAlias portVariable("SERVER_PORT", "port to listen on; 0: any");
Zu::InDefAlias portDefault("0", "any port");
Zu::InVariable<const char*> portText("server::port", thePackage, portOption, portVariable,
                                     portDefault);

Zu::InArgAlias logOption("l:", "directory of the log files");
Zu::InDefAlias logDefault("", "that of the log service");
Zu::InVariable<const char*> logDirectory("server::logs", thePackage, logOption, logDefault);

constexpr int WORKERS = 2;

// For the handler of signals.
std::atomic<bool> isAskedToEnd{false};
server::Socket bell = server::NO_SOCKET;

void askToEnd(int)
{
    isAskedToEnd = true;
    server::ring(bell);
}

// Raises std::invalid_argument.
std::uint16_t port()
{
    const std::string_view text = portText.getValue();
    std::uint16_t number = 0;
    const auto [rest, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || rest != text.data() + text.size())
        throw std::invalid_argument("a port is a number from 0 to 65535");
    if (Zu::InContextAliasMgrBase::getUnboundArgs().size() > 1)
        throw std::invalid_argument("usage: server [-p port] [-l directory]");
    return number;
}

void run()
{
    std::uint16_t number = port();
    server::startNetwork();
    const server::Socket listener = server::listenOn(number);
    bell = server::makeBell();
    std::signal(SIGTERM, askToEnd);
    std::signal(SIGINT, askToEnd);

    const Zu::LgService service(server::logOptions(logDirectory.getValue()));
    server::Workers workers(WORKERS, service, bell);
    server::Clients clients(listener, bell, workers);
    std::cout << "listening on 127.0.0.1:" << number << std::endl;
    clients.serve(isAskedToEnd);
    server::close(listener);
}

} // namespace

int main(int argc, char** argv)
{
    try
    {
        const Zu::InInitGuard guard(argc, argv);
        run();
        return 0;
    }
    catch (const std::exception& exception)
    {
        std::cerr << "server: " << exception.what() << std::endl;
        return 1;
    }
}
