// A sample application of the family: it starts, prints what the library found, logs, and stops.

#include "base/base.h"
#include "sampleBuild.h"
#include "sampleLogging.h"
#include "sampleTime.h"
#include "sampleTiming.h"

#include <cstdlib>
#include <cstring>
#include <iostream>
#include <sstream>
#include <string>

namespace sample
{

struct store
{
};

struct service
{
};

// What the service works on; it lives as long as the package "sampleStore".
class Store
{
public:
    void put(const std::string& item)
    {
        _items += " " + item;
    }
    const std::string& items() const
    {
        return _items;
    }

    // Whether the store prints its content when it ends.
    bool _isTalking = false;

private:
    std::string _items;
};

} // namespace sample

#include "base/inSingleton.imp"

template class Zu::InSingleton<sample::Store>;

// Two packages: a store that needs the library, and a service that needs the store.

template <> Zu::InInit<sample::store>::InInit() : InPackageInit("sampleStore")
{
    registerPackage();
    addDependency(InInit<ZuInit::base>::getType());
}

template <> void Zu::InInit<sample::store>::performInitialize()
{
    InSingleton<sample::Store>::create(new sample::Store);
}

template <> void Zu::InInit<sample::store>::performFinalize()
{
    const sample::Store& store = InSingleton<sample::Store>::getInstance();
    if (store._isTalking) std::cout << "  sampleStore gives up:" << store.items() << std::endl;
    InSingleton<sample::Store>::destroy();
}

template <> Zu::InInit<sample::service>::InInit() : InPackageInit("sampleService")
{
    registerPackage();
    addDependency(InInit<sample::store>::getType());
    addDependency(InInit<ZuInit::base>::getType());
}

template <> void Zu::InInit<sample::service>::performInitialize()
{
    InSingleton<sample::Store>::getInstance().put("(from start-up)");
    sample::startLogGroups();
}

template <> void Zu::InInit<sample::service>::performFinalize()
{
    sample::stopLogGroups();
    InSingleton<sample::Store>::getInstance().put("(from shut-down)");
}

namespace
{

Zu::InInit<sample::store> theStore;
Zu::InInit<sample::service> theService;

Zu::InArgAlias portOption("p:", "option -p");
Zu::InEnvAlias portEnv("SAMPLE_PORT", "environment variable SAMPLE_PORT");
Zu::InDefAlias portDefault("8080", "default");
Zu::InVariable<int> port("sample::service::port", theService, portOption, portEnv, portDefault);

Zu::InArgAlias nameOption("n:", "option -n");
Zu::InEnvAlias nameEnv("SAMPLE_NAME", "environment variable SAMPLE_NAME");
Zu::InDefAlias nameDefault("anonymous", "default");
Zu::InVariable<const char*> name("sample::service::name", theService, nameOption, nameEnv,
                                 nameDefault);

Zu::InArgAlias quietOption("q", "option -q");
Zu::InEnvAlias quietEnv("SAMPLE_QUIET", "environment variable SAMPLE_QUIET");
Zu::InDefAlias quietDefault("0", "default");
Zu::InVariable<bool> quiet("sample::service::quiet", theService, quietOption, quietEnv,
                           quietDefault);

// The application starts itself a second time with this option, to share its log files.
Zu::InArgAlias secondOption("s", "option -s");
Zu::InDefAlias secondDefault("0", "default");
Zu::InVariable<bool> second("sample::service::second", theService, secondOption, secondDefault);

constexpr int WRONG_USE = 2;

void printHeading(const char* text)
{
    std::cout << std::endl << text << std::endl;
}

void printStartUpOrder()
{
    std::ostringstream dump;
    Zu::InInitMgr::getInstance().dump(dump);
    std::istringstream lines(dump.str());
    int place = 0;
    for (std::string line; std::getline(lines, line);)
        if (line[0] == '\t') std::cout << "  " << ++place << ". " << line.substr(1) << std::endl;
}

template <class T> void printVariable(const Zu::InVariable<T>& variable)
{
    std::cout << "  " << variable.getHandle() << " = " << variable.getValue() << "  (text '"
              << variable.contextAlias()->getValue() << "' from "
              << variable.contextAlias()->getDescription() << ")" << std::endl;
}

void printProcessor()
{
    int family = 0;
    int model = 0;
    int stepping = 0;
    Zu::OsCpuInfo::getDetailedType(nullptr, &family, &model, &stepping);
    std::cout << "  family " << family << ", model " << model << ", stepping " << stepping
              << (Zu::OsCpuInfo::hasMMX() ? ", MMX" : "")
              << (Zu::OsCpuInfo::hasSSE() ? ", SSE" : "") << std::endl;
    const Zu::OsMemoryArch& memory = Zu::OsMemoryArch::getInstance();
    std::cout << "  first-level data cache: " << memory.getL1DataSize() << " bytes, "
              << memory.getL1DataWaySize() << " per way, " << memory.getL1DataLineSize()
              << " per line" << std::endl;
    std::cout << "  second-level cache: " << memory.getL2Size() << " bytes, "
              << memory.getL2WaySize() << " per way, " << memory.getL2LineSize() << " per line"
              << std::endl;
    std::cout << "  page: " << memory.getPageSize() << " bytes" << std::endl;
}

void printCounter()
{
    const auto start = Zu::HwCounter::timeStamp();
    const auto end = Zu::HwCounter::timeStamp();
    std::cout << "  rate " << Zu::HwCounter::getRateNumerator() << "/"
              << Zu::HwCounter::getRateDenominator() << " per second, one tick is "
              << Zu::HwCounter::resolution() << " s" << std::endl;
    std::cout << "  two reads after each other lie " << Zu::HwCounter::seconds(start, end)
              << " s apart" << std::endl;
}

// In a container the user may not have a name.
std::string userName()
{
    try
    {
        return Zu::OsUtils::getUserName(false).get();
    }
    catch (const Zu::ExSysErrorANSI&)
    {
        return "without a name";
    }
}

void printPlace()
{
    std::cout << "  host " << Zu::OsUtils::getHostName().get() << ", user " << userName()
              << ", process " << Zu::OsUtils::getPid() << std::endl;
    std::cout << "  temporary files go to " << Zu::OsFilePath::getTempDir().getChars() << std::endl;
}

// Returns what is wrong with the arguments of the program; null if nothing is.
std::string wrongUse()
{
    const Zu::Vector<char*>& words = Zu::InContextAliasMgrBase::getUnboundArgs();
    if (words.size() > 1 && words[1][0] == '-') return std::string("unknown option ") + words[1];
    char* end = nullptr;
    const char* const text = port.contextAlias()->getValue();
    const long number = std::strtol(text, &end, 10);
    if (end == text || *end != '\0' || number < 1 || number > 65535)
        return std::string("'") + text + "' is no port (1 to 65535), said by " +
               port.contextAlias()->getDescription();
    return "";
}

int run(const char* program)
{
    const std::string mistake = wrongUse();
    if (!mistake.empty())
    {
        std::cerr << "sampleApplication: " << mistake << std::endl
                  << "usage: sampleApplication [-q] [-p port] [-n name] [file ...]" << std::endl;
        return WRONG_USE;
    }
    if (second.getValue())
    {
        sample::logAsSecondProcess();
        return 0;
    }
    if (quiet.getValue()) return 0;

    std::cout << "The sample application is up." << std::endl;
    printHeading("Who runs here:");
    sample::showBuild();
    printHeading("Start-up order, with what each package needs, directly and through others:");
    printStartUpOrder();
    printHeading("Variables and where their values came from:");
    printVariable(port);
    printVariable(name);
    printVariable(quiet);
    printHeading("Left of the command line:");
    for (const char* word : Zu::InContextAliasMgrBase::getUnboundArgs())
        std::cout << "  '" << word << "'" << std::endl;
    printHeading("Processor and caches (0: the processor does not tell):");
    printProcessor();
    printHeading("Counter:");
    printCounter();
    printHeading("Place:");
    printPlace();
    printHeading("A position in a stream of 25 frames per second:");
    sample::showTime();
    printHeading("An operation, traced:");
    sample::showTrace();
    printHeading("A profile of the same operation, in seconds:");
    sample::showProfile();
    printHeading("A steady beat:");
    sample::showBeat();
    printHeading("Log, by several threads and a second process:");
    sample::showLogging(program);
    printHeading("Loaded into the process:");
    sample::showLibraries();
    printHeading("Shut-down, as ZU_DEBUG_INITIALIZE shows it on standard error:");
    Zu::InSingleton<sample::Store>::getInstance()._isTalking = true;
    Zu::OsEnv::putVariable("ZU_DEBUG_INITIALIZE=1");
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    try
    {
        const std::string program = argv[0];
        sample::prepareLogging();
        const Zu::InInitGuard guard(argc, argv);
        sample::registerBuild();
        return run(program.c_str());
    }
    catch (const std::exception& exception)
    {
        std::cerr << "sampleApplication: " << exception.what() << std::endl;
        return 1;
    }
}
