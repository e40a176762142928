// A program, the library, a client library and two modules loaded at run time share packages,
// aliases, variables, a singleton and exceptions.

#include "base/inContextAlias.h"
#include "base/inContextAliasMgrBase.h"
#include "base/inEx.h"
#include "base/inInit.h"
#include "base/inInitGuard.h"
#include "base/inVariable.h"
#include "boundaryClient.h"
#include "support/moduleLoader.h"

#include <stdexcept>

template <> Zu::InInit<boundary::programPackage>::InInit() : InPackageInit("program")
{
    registerPackage();
    addDependency(InInit<boundary::clientPackage>::getType());
}

static Zu::InInit<boundary::programPackage> thePackage;
static Zu::InArgAlias nameOption("n:", "name, from an option");
static Zu::InDefAlias nameDefault("nobody", "usual name");
static Zu::InVariable<const char*> name("boundary::program::name", thePackage, nameOption,
                                        nameDefault);

template <> void Zu::InInit<boundary::programPackage>::performInitialize()
{
    boundary::say(std::string("program up, name ") + name.getValue());
    InSingleton<boundary::Ledger>::getInstance().write("program");
}

template <> void Zu::InInit<boundary::programPackage>::performFinalize()
{
    boundary::say("program down");
}

namespace
{

using boundary::say;

template <class Function> Function function(const support::Module& module, const char* symbol)
{
    return reinterpret_cast<Function>(module.symbol(symbol));
}

void catchFrom(const support::Module& module, int which)
{
    try
    {
        function<boundary::ThrowFromModule>(module, "throwFromModule")(which);
    }
    catch (const Zu::InEx::ExDoubleInit& exception)
    {
        say(std::string("program caught ExDoubleInit: ") + exception.what());
    }
    catch (const boundary::ClientError& exception)
    {
        say(std::string("program caught ClientError: ") + exception.what());
    }
    catch (const std::logic_error& exception)
    {
        say(std::string("program caught std::logic_error: ") + exception.what());
    }
}

void throwInitError()
{
    throw Zu::InEx::ExPackageInitError(__FILE__, __LINE__, "program");
}

void throwClientError()
{
    throw boundary::ClientError(__FILE__, __LINE__, "of the program");
}

void exchangeExceptions(const support::Module& module)
{
    for (int which = 0; which < 3; ++which) catchFrom(module, which);
    const auto catchInModule = function<boundary::CatchInModule>(module, "catchInModule");
    catchInModule(throwInitError);
    catchInModule(throwClientError);
    catchInModule(function<boundary::BuildAlias>(module, "buildAlias"));
}

} // namespace

int main(int argc, char** argv)
{
    const std::string early = argv[argc - 2];
    const std::string late = argv[argc - 1];
    argc -= 2;

    support::Module::load(early);
    const Zu::InInitGuard guard(argc, argv);
    say("started, " + std::to_string(Zu::InContextAliasMgrBase::getUnboundArgs().size()) +
        " word left");
    {
        const Zu::InReinitGuard reinitGuard;
        const support::Module module = support::Module::load(late);
        say("loaded");
        exchangeExceptions(module);
    }
    Zu::InVariableBase* const size = Zu::InVariableBase::queryViaHandle("boundary::early::size");
    say(size && dynamic_cast<Zu::InVariable<int>*>(size) ? "the module's variable is an int"
                                                         : "the module's variable is lost");
    Zu::InSingleton<boundary::Ledger>::getInstance().write("main");
    say("stopping");
    return 0;
}
