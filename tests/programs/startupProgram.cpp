// Start-up and shut-down in a whole process. The variable STARTUP_MODE selects the scenario; the
// program prints what happens.

#include "base/inContextAlias.h"
#include "base/inContextAliasMgrBase.h"
#include "base/inEx.h"
#include "base/inInit.h"
#include "base/inInitGuard.h"
#include "base/inInitMgr.h"
#include "base/inVariable.h"
#include "base/osEnv.h"

#include <cstdlib>
#include <functional>
#include <iostream>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace
{

void say(const std::string& text)
{
    std::cout << text << std::endl;
}

using Types = std::vector<const std::type_info*>;
using Work = std::function<void()>;

// A package that prints when it starts and stops, and carries out further commands.
class Scripted : public Zu::InPackageInit
{
public:
    void performInitialize() override
    {
        if (_onInitialize) _onInitialize();
        say(std::string(getName()) + " up");
    }
    void performFinalize() override
    {
        if (_onFinalize) _onFinalize();
        say(std::string(getName()) + " down");
    }
    void setInitialized(bool) override {}

    Work _onInitialize;
    Work _onFinalize;

protected:
    explicit Scripted(const char* name) : InPackageInit(name) {}
};

// Packages are identified by their types, so each number makes one.
template <int Number> class Package : public Scripted
{
public:
    explicit Package(const char* name, const Types& dependencies = {}) : Scripted(name)
    {
        registerPackage();
        for (const std::type_info* type : dependencies) addDependency(type);
    }

    static const std::type_info* getType()
    {
        return &typeid(Package);
    }
};

const std::type_info* const baseType = Zu::InInit<ZuInit::base>::getType();

struct clientTag
{
};

} // namespace

template <> Zu::InInit<clientTag>::InInit() : InPackageInit("client")
{
    registerPackage();
    addDependency(InInit<ZuInit::base>::getType());
}
template <> void Zu::InInit<clientTag>::performInitialize() {}
template <> void Zu::InInit<clientTag>::performFinalize() {}

namespace
{

Zu::InInit<clientTag> thePackage;

Zu::InArgAlias verboseOption("v", "verbose, from an option");
Zu::InVariable<bool> verbose("startup::verbose", thePackage, verboseOption);

Zu::InArgAlias sizeOption("x:", "size, from an option");
Zu::InEnvAlias sizeEnv("STARTUP_SIZE", "size, from the environment");
Zu::InDefAlias sizeDefault("10", "usual size");
Zu::InVariable<int> size("startup::size", thePackage, sizeOption, sizeEnv, sizeDefault);

Zu::InEnvAlias nameEnv("STARTUP_NAME", "name, from the environment");
Zu::InDefAlias nameDefault("nobody", "usual name");
Zu::InVariable<const char*> name("startup::name", thePackage, nameEnv, nameDefault);

Zu::InVariable<int> orphan("startup::orphan", thePackage, Zu::InVariableBase::_dummy);

int theArgc;
char** theArgv;

template <class T> void showVariable(const Zu::InVariable<T>& variable)
{
    std::cout << variable.getHandle() << " = ";
    if (variable.isValid())
        std::cout << "'" << variable.getValue() << "' from " << variable.initSource() << std::endl;
    else
        std::cout << "nothing" << std::endl;
}

void showState()
{
    std::cout << "left:";
    for (const char* word : Zu::InContextAliasMgrBase::getUnboundArgs())
        std::cout << " '" << word << "'";
    std::cout << std::endl;
    showVariable(verbose);
    showVariable(size);
    showVariable(name);
    showVariable(orphan);
}

// Runs work and prints the exception that it raises.
void saying(const char* what, const Work& work)
{
    try
    {
        work();
        say(std::string(what) + ": nothing raised");
    }
    catch (const Zu::ExBase& exception)
    {
        say(std::string(what) + ": " + exception.getReason());
    }
    catch (const std::exception& exception)
    {
        say(std::string(what) + ": std " + exception.what());
    }
}

void startAndShow()
{
    const Zu::InInitGuard guard(theArgc, theArgv);
    say("argc " + std::to_string(theArgc) + (theArgv ? ", argv" : ", argv null"));
    say(std::string("application ") + Zu::InContextAliasMgrBase::getApplicationName());
    showState();
}

void startWithConstWords()
{
    const char* const words[] = {"program", "-x", "7", "rest", nullptr};
    int count = 4;
    const char* const* argv = words;
    const Zu::InInitGuard guard(count, argv);
    say("argc " + std::to_string(count) + (argv ? ", argv" : ", argv null"));
    showState();
}

void startWithoutWords()
{
    int count = 0;
    char** argv = nullptr;
    const Zu::InInitGuard guard(count, argv);
}

void bodyThrows(const Work& throwing)
{
    Package<1> able("Able", {baseType});
    Package<2> broken("Broken", {Package<1>::getType()});
    Package<3> later("Later", {Package<2>::getType()});
    broken._onInitialize = throwing;
    saying("start", [] { const Zu::InInitGuard guard(theArgc, theArgv); });
    say(std::string("initializing ") +
        (Zu::InInitMgr::getInstance().isInitializing() ? "yes" : "no"));
}

void bodyThrowsOfTheFamily()
{
    bodyThrows([] { throw Zu::InEx::ExPackageInitError(__FILE__, __LINE__, "Broken"); });
}

void bodyThrowsOther()
{
    bodyThrows([] { throw std::domain_error("not of the family"); });
}

void cycle()
{
    Package<1> a("A", {Package<2>::getType()});
    Package<2> b("B", {Package<1>::getType()});
    saying("start", [] { const Zu::InInitGuard guard(theArgc, theArgv); });
}

void unknownDependency()
{
    Package<1> a("A", {Package<2>::getType()});
    saying("start", [] { const Zu::InInitGuard guard(theArgc, theArgv); });
}

void finaliseFirst()
{
    saying("finalize", [] { Zu::InInitMgr::getInstance().finalize(); });
}

void finaliseTwice()
{
    {
        const Zu::InInitGuard guard(theArgc, theArgv);
    }
    saying("finalize", [] { Zu::InInitMgr::getInstance().finalize(); });
}

void startTwice()
{
    const Zu::InInitGuard guard(theArgc, theArgv);
    const char* const words[] = {"second", "-v", nullptr};
    int count = 2;
    const char* const* argv = words;
    saying("initialize", [&] { Zu::InInitMgr::getInstance().initialize(count, argv); });
    showState();
}

void unwinding()
{
    saying("scope",
           []
           {
               Package<1> broken("Broken", {baseType});
               broken._onFinalize = [] { throw std::domain_error("of the finaliser"); };
               const Zu::InInitGuard guard(theArgc, theArgv);
               throw std::range_error("of the scope");
           });
}

void finaliserThrows()
{
    saying("scope",
           []
           {
               Package<1> broken("Broken", {baseType});
               Package<2> above("Above", {Package<1>::getType()});
               broken._onFinalize = [] { throw std::domain_error("of the finaliser"); };
               const Zu::InInitGuard guard(theArgc, theArgv);
           });
    say(std::string("finalizing ") + (Zu::InInitMgr::getInstance().isFinalizing() ? "yes" : "no"));
}

void exitInScope()
{
    static Package<1> package("Static", {baseType});
    const Zu::InInitGuard guard(theArgc, theArgv);
    std::exit(5);
}

void packagesAfterStart()
{
    const Zu::InInitGuard guard(theArgc, theArgv);
    saying("without guard", [] { Package<1> package("Late"); });
    // Packages live until the process ends.
    static std::vector<std::unique_ptr<Scripted>> late;
    {
        const Zu::InReinitGuard outer;
        {
            const Zu::InReinitGuard inner;
            late.push_back(
                std::make_unique<Package<2>>("Second", Types{Package<3>::getType(), baseType}));
        }
        say("inner guard ended");
        late.push_back(std::make_unique<Package<3>>("Third", Types{baseType}));
    }
    say("outer guard ended");
    {
        const Zu::InReinitGuard again;
        late.push_back(std::make_unique<Package<2>>("Second", Types{baseType}));
    }
    saying("pass that fails",
           []
           {
               const Zu::InReinitGuard failing;
               late.push_back(std::make_unique<Package<4>>("Fourth", Types{Package<5>::getType()}));
           });
    saying("pass that fails while unwinding",
           []
           {
               const Zu::InReinitGuard failing;
               late.push_back(std::make_unique<Package<6>>("Sixth", Types{Package<5>::getType()}));
               throw std::range_error("of the scope");
           });
}

// A guard that ends while an exception unwinds the stack runs a pass in which a body loads more
// packages. An exception raised there is independent of the older one.
void nestedPassWhileUnwinding()
{
    const Zu::InInitGuard guard(theArgc, theArgv);
    static std::vector<std::unique_ptr<Scripted>> late;
    saying("scope",
           []
           {
               const Zu::InReinitGuard outer;
               late.push_back(std::make_unique<Package<1>>("Loader", Types{baseType}));
               late.back()->_onInitialize = []
               {
                   saying("nested pass",
                          []
                          {
                              const Zu::InReinitGuard inner;
                              late.push_back(std::make_unique<Package<2>>(
                                  "Loaded", Types{Package<3>::getType()}));
                          });
               };
               throw std::range_error("of the scope");
           });
}

void guardAlone()
{
    {
        const Zu::InReinitGuard guard;
        say("guard");
    }
    say("valid " + std::to_string(size.isValid()));
    Zu::InInitMgr::getInstance().finalize();
}

void overrides()
{
    Zu::InVariableBase::overrideViaHandle("startup::size", "1", "first override");
    Zu::InVariableBase::overrideViaHandle("startup::size", "2", "second override");
    Zu::InVariableBase::overrideViaHandle("startup::orphan", "3", "for the orphan");
    Zu::InVariableBase::overrideViaHandle("startup::nowhere", "4", "for nobody");
    say(std::string("pending ") +
        std::to_string(Zu::InVariableBase::isOverridden("startup::size")));
    const Zu::InInitGuard guard(theArgc, theArgv);
    say(std::string("pending ") +
        std::to_string(Zu::InVariableBase::isOverridden("startup::size")) +
        std::to_string(Zu::InVariableBase::isOverridden("startup::nowhere")));
    showState();
    saying("late override",
           [] { Zu::InVariableBase::overrideViaHandle("startup::size", "9", ""); });
    saying("late override of another",
           [] { Zu::InVariableBase::overrideViaHandle("startup::other", "9", "too late"); });
}

void aliasesAfterStart()
{
    {
        const Zu::InInitGuard guard(theArgc, theArgv);
        saying("argument", [] { Zu::InArgAlias alias("q", "late"); });
        saying("environment", [] { Zu::InEnvAlias alias("STARTUP_LATE", "late"); });
        saying("environment again", [] { Zu::InEnvAlias alias("STARTUP_LATE", "late"); });
        saying("default", [] { Zu::InDefAlias alias("1", "late"); });
        saying("clone", [] { nameEnv.clone(); });
        saying("variable", [] { Zu::InVariable<int>("startup::late", thePackage, sizeDefault); });
        saying("variable without aliases", []
               { Zu::InVariable<int>("startup::late", thePackage, Zu::InVariableBase::_dummy); });
    }
    saying("after shut-down", [] { Zu::InDefAlias alias("1", "later"); });
}

void environmentSnapshot()
{
    Zu::OsEnv::putVariable("STARTUP_NAME=changed");
    const auto show = [](const char* text) { return text ? text : "null"; };
    say(std::string("snapshot ") + show(Zu::InInitMgr::getEnv("STARTUP_NAME")));
    say(std::string("environment ") + show(Zu::OsEnv::getVariable("STARTUP_NAME")));
    say(std::string("absent ") + show(Zu::InInitMgr::getEnv("STARTUP_ABSENT")));
    say(std::string("no name ") + show(Zu::InInitMgr::getEnv(nullptr)));
    const Zu::InInitGuard guard(theArgc, theArgv);
    showVariable(name);
}

} // namespace

int main(int argc, char** argv)
{
    theArgc = argc;
    theArgv = argv;
    const std::map<std::string, Work> modes = {
        {"show", startAndShow},
        {"constWords", startWithConstWords},
        {"noWords", startWithoutWords},
        {"bodyThrowsOfTheFamily", bodyThrowsOfTheFamily},
        {"bodyThrowsOther", bodyThrowsOther},
        {"cycle", cycle},
        {"unknownDependency", unknownDependency},
        {"finaliseFirst", finaliseFirst},
        {"finaliseTwice", finaliseTwice},
        {"startTwice", startTwice},
        {"unwinding", unwinding},
        {"finaliserThrows", finaliserThrows},
        {"exitInScope", exitInScope},
        {"packagesAfterStart", packagesAfterStart},
        {"nestedPassWhileUnwinding", nestedPassWhileUnwinding},
        {"guardAlone", guardAlone},
        {"overrides", overrides},
        {"aliasesAfterStart", aliasesAfterStart},
        {"environmentSnapshot", environmentSnapshot},
    };
    modes.at(std::getenv("STARTUP_MODE"))();
    say("end of main");
    return 0;
}
