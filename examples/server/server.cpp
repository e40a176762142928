// A small server on this machine that logs every request, and loses none of them.
//
//     server [-p port] [-l directory of the log files]
//
// --help explains them.
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

#include "app/apProgram.h"

#include <atomic>
#include <csignal>
#include <cstdint>
#include <iostream>

ZU_PACKAGE(serverPackage, "server");

namespace
{

Zu::InArgAlias portOption("p:", "port to listen on; 0: any");
Zu::InEnvAlias portVariable("SERVER_PORT", "port to listen on; 0: any");
Zu::InDefAlias portDefault("0", "any port");
Zu::InVariable<int> port("server::port", Zu::packageOf<serverPackage>(), portOption, portVariable,
                         portDefault);

Zu::InArgAlias logOption("l:", "directory of the log files");
Zu::InDefAlias logDefault("", "that of the log service");
Zu::InVariable<const char*> logDirectory("server::logs", Zu::packageOf<serverPackage>(), logOption,
                                         logDefault);

constexpr int WORKERS = 2;

// For the handler of signals.
std::atomic<bool> isAskedToEnd{false};
server::Socket bell = server::NO_SOCKET;

void askToEnd(int)
{
    isAskedToEnd = true;
    server::ring(bell);
}

void serve(const Zu::LgService& service)
{
    auto number = static_cast<std::uint16_t>(port.getValue());
    server::startNetwork();
    const server::Socket listener = server::listenOn(number);
    bell = server::makeBell();
    std::signal(SIGTERM, askToEnd);
    std::signal(SIGINT, askToEnd);

    server::Workers workers(WORKERS, service, bell);
    server::Clients clients(listener, bell, workers);
    std::cout << "listening on 127.0.0.1:" << number << std::endl;
    clients.serve(isAskedToEnd);
    server::close(listener);
}

} // namespace

int main(int argc, char** argv)
{
    Zu::ApProgram program("Answers requests of clients on this machine, and logs each of them.");
    program.longName('p', "port").range("server::port", 0, 65535);
    program.longName('l', "log-directory");
    program.logOptions([] { return server::logOptions(logDirectory.getValue()); });
    return program.run(argc, argv, [&] { serve(program.log()); });
}
