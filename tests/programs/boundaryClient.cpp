#include "boundaryClient.h"

#include "base/inInit.h"
#include "base/inSingleton.imp"

#include <iostream>

template class BOUNDARY_API Zu::InSingleton<boundary::Ledger>;

namespace boundary
{

ClientError::ClientError(const char* file, int line, const char* reason)
    : std::runtime_error(""), ExBase(file, line)
{
    setReason(reason);
}

const char* ClientError::what() const noexcept
{
    return getReason();
}

Zu::ExBase* ClientError::clone() const
{
    return new ClientError(*this);
}

Ledger::~Ledger() = default;

void Ledger::write(const std::string& entry)
{
    _entries += entry + ";";
}

const std::string& Ledger::entries() const
{
    return _entries;
}

void say(const std::string& text)
{
    std::cout << text << std::endl;
}

} // namespace boundary

template <> Zu::InInit<boundary::clientPackage>::InInit() : InPackageInit("client")
{
    registerPackage();
    addDependency(InInit<ZuInit::base>::getType());
}

template <> void Zu::InInit<boundary::clientPackage>::performInitialize()
{
    InSingleton<boundary::Ledger>::create(new boundary::Ledger);
    boundary::say("client up");
}

template <> void Zu::InInit<boundary::clientPackage>::performFinalize()
{
    boundary::say("client down, ledger " + InSingleton<boundary::Ledger>::getInstance().entries());
    InSingleton<boundary::Ledger>::destroy();
}

static Zu::InInit<boundary::clientPackage> thePackage;
