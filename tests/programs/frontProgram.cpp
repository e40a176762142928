// A program with a front, whose packages declare options of all kinds. What it does is the first
// word.

#include "app/apProgram.h"
#include "base/base.h"

#include <cstdlib>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <string>

ZU_DECLARE_PACKAGE(storage);

// Declared before what it needs.
ZU_PACKAGE(web, "web", Zu::needs<storage, ZuInit::random>(),
           Zu::atStart([] { std::cout << "web starts\n"; }),
           Zu::atStop([] { std::cout << "web stops\n"; }));
ZU_LOG_GROUP(Requests, "Web", web);

namespace
{

bool isSet(const char* variable)
{
    return std::getenv(variable) != nullptr;
}

// Leaves a mark that a package was started.
void openStorage()
{
    if (const char* const mark = std::getenv("FRONT_MARK")) std::ofstream(mark) << "opened\n";
    if (isSet("FRONT_FAILS")) throw std::runtime_error("the storage is broken");
    if (isSet("FRONT_FAILS_AS_PACKAGE")) throw Zu::InEx::ExPackageInitError("", 0, "storage");
    std::cout << "storage starts\n";
}

void closeStorage()
{
    ZU_LOG_WARNING(Requests, "is logged behind the end of its package");
    std::cout << "storage stops\n";
    if (isSet("FRONT_FAILS_TO_STOP")) throw std::runtime_error("the storage can't be closed");
}

// Logs when static objects are destroyed.
struct Last
{
    ~Last()
    {
        ZU_LOG_WARNING(Requests, "is logged at the very end");
    }
} const last;

const Zu::InArgAlias portOption("p:", "port to listen on");
const Zu::InEnvAlias portVariable("FRONT_PORT", "port to listen on");
const Zu::InDefAlias portDefault("8080", "the usual one");
const Zu::InVariable<int> port("front::port", Zu::packageOf<web>(), portOption, portVariable,
                               portDefault);
const Zu::InArgAlias keyOption("k:", "key of the storage");
const Zu::InVariable<const char*> key("front::key", Zu::packageOf<storage>(), keyOption);
const Zu::InArgAlias verboseOption("v", "says more");
const Zu::InEnvAlias loudVariable("FRONT_LOUD", "is loud");
const Zu::InVariable<bool> loud("front::loud", Zu::packageOf<web>(), loudVariable);

constexpr Zu::DbgBuildText BUILD = {"Front", 1, 4, "beta", "frontProgram", "stamp 12"};

Zu::ApProgram* program = nullptr;

int work()
{
    std::cout << "port " << port.getValue() << ", verbose " << verboseOption.isValid();
    for (const std::string& word : program->arguments()) std::cout << ", " << word;
    std::cout << "\n";
    const std::string first = program->arguments().empty() ? "" : program->arguments()[0];
    if (first == "throw") throw std::runtime_error("the program gives up");
    if (first == "unknown") throw 1;
    if (first == "log")
    {
        ZU_LOG_WARNING(Requests, "is in the log");
        std::cout << "flushed: " << program->log().flush(std::chrono::seconds(60)) << "\n";
    }
    return first == "three" ? 3 : 0;
}

} // namespace

ZU_PACKAGE(storage, "storage", Zu::atStart(&openStorage), Zu::atStop(&closeStorage));

int main(int argc, char** argv)
{
    Zu::ApProgram front("Shows what a front does.");
    program = &front;
    front.build(BUILD).longName('p', "port").longName('v', "verbose").longName('k', "key");
    front.range("front::port", 0, 65535);
    if (!isSet("FRONT_WITHOUT_WORDS"))
        front.arguments("[WORD]...", isSet("FRONT_REQUIRES") ? 1 : 0, 3);
    if (isSet("FRONT_REQUIRES")) front.require("front::key");
    if (isSet("FRONT_WITHOUT_LOG")) front.withoutLog();
    if (isSet("FRONT_WRONG")) front.range("front::prot", 0, 1);
    return front.run(argc, argv, &work);
}
