#include "base/inPackageInit.h"

#include "base/inDebug.h"
#include "base/inInitMgr.h"
#include "base/inInitMgrImpl.h"
#include "base/internalAssert.h"
#include "base/inVariableBase.h"

#include <algorithm>
#include <cstdio>
#include <ostream>
#include <string>

namespace Zu
{

InPackageInitBase::~InPackageInitBase() = default;

InPackageInit::InPackageInit() : InPackageInit("unnamed") {}

InPackageInit::InPackageInit(const char* name)
{
    std::snprintf(_name, sizeof _name, "%s", name ? name : "");
}

InPackageInit::~InPackageInit()
{
    if (InInitMgrImpl::_current) InInitMgrImpl::_current->forgetPackage(*this);
}

void InPackageInit::registerPackage()
{
    if (inDebugInitialize())
        inDebugStream() << "Registering Package: InInit<" << getName() << ">" << std::endl;
    InInitMgr::getInstance()._impl->registerPackage(*this);
}

void InPackageInit::addDependency(const std::type_info* type)
{
    if (!InInitMgr::getInstance()._impl->isTypeInitialized(*type)) _dependencies.push_back(type);
}

void InPackageInit::addDependency(InVariableBase* variable)
{
    _variables.push_back(variable);
}

void InPackageInit::removeDependency(InVariableBase* variable)
{
    const auto found = std::find(_variables.begin(), _variables.end(), variable);
    const bool erased = found != _variables.end();
    if (erased) _variables.erase(found);
    ZU_INTERNAL_ASSERT(erased);
}

const char* InPackageInit::getName()
{
    return _name;
}

const Vector<const std::type_info*>& InPackageInit::getDependencies() const
{
    return _dependencies;
}

void InPackageInit::initialize()
{
    trace("performInitialize");
    for (InVariableBase* variable : _variables) variable->initialize();
    performInitialize();
    setInitialized(true);
}

void InPackageInit::finalize()
{
    trace("performFinalize");
    setInitialized(false);
    performFinalize();
    for (auto variable = _variables.rbegin(); variable != _variables.rend(); ++variable)
        (*variable)->finalize();
}

void InPackageInit::trace(const char* operation)
{
    if (!inDebugInitialize()) return;
    inDebugStream() << std::string(_dependencies.size(), ' ') << "InInit<" << getName()
                    << ">::" << operation << "()" << std::endl;
}

} // namespace Zu
