// Starts and stops the library once, with a number of client packages in a chain or in a star, and
// prints how long each took: two numbers of nanoseconds.

#include "base/inInit.h"
#include "base/inInitGuard.h"
#include "base/inPackageInit.h"

#include <chrono>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace
{

constexpr int MOST_PACKAGES = 1000;

class Client : public Zu::InPackageInit
{
public:
    void performInitialize() override {}
    void performFinalize() override {}
    void setInitialized(bool) override {}

    using InPackageInit::addDependency;

protected:
    explicit Client(const std::string& name) : InPackageInit(name.c_str()) {}
};

// Packages are identified by their types, so each number makes one.
template <int Number> class Numbered : public Client
{
public:
    explicit Numbered(const std::string& name) : Client(name)
    {
        registerPackage();
    }
};

using ClientPtr = std::unique_ptr<Client>;

template <int Number> ClientPtr make(const std::string& name)
{
    return std::make_unique<Numbered<Number>>(name);
}

template <int... Numbers>
std::vector<ClientPtr> makeClients(int count, bool chain, std::integer_sequence<int, Numbers...>)
{
    static constexpr ClientPtr (*makers[])(const std::string&) = {make<Numbers>...};
    std::vector<ClientPtr> clients;
    for (int i = 0; i < count; ++i)
    {
        // In a chain the order of names is the reverse of that of dependencies.
        clients.push_back(makers[i]("client" + std::to_string(MOST_PACKAGES * 2 - i)));
        const Client* const above =
            clients.size() > 1 && chain ? clients[clients.size() - 2].get() : nullptr;
        clients.back()->addDependency(above ? &typeid(*above)
                                            : Zu::InInit<ZuInit::base>::getType());
    }
    return clients;
}

long long nanoseconds(std::chrono::steady_clock::duration duration)
{
    return std::chrono::duration_cast<std::chrono::nanoseconds>(duration).count();
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 3) return 2;
    const bool chain = std::string(argv[1]) == "chain";
    const int count = std::atoi(argv[2]);
    const std::vector<ClientPtr> clients =
        makeClients(count, chain, std::make_integer_sequence<int, MOST_PACKAGES>());

    const auto start = std::chrono::steady_clock::now();
    auto guard = std::make_unique<Zu::InInitGuard>(argc, argv);
    const auto up = std::chrono::steady_clock::now();
    guard.reset();
    const auto down = std::chrono::steady_clock::now();
    std::cout << nanoseconds(up - start) << " " << nanoseconds(down - up) << std::endl;
    return 0;
}
