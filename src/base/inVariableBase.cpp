#include "base/inVariableBase.h"

#include "base/duplicateString.h"
#include "base/inContextAlias.h"
#include "base/inDebug.h"
#include "base/inEx.h"
#include "base/initOrder.h"
#include "base/inPackageInit.h"
#include "base/internalAssert.h"
#include "base/typeName.h"

#include <ostream>
#include <typeinfo>
#include <utility>

namespace Zu
{

namespace
{

void writeOverride(const char* title, const char* handle, const char* value,
                   const char* description)
{
    if (!inDebugInitialize()) return;
    inDebugStream() << "----" << std::endl;
    inDebugStream() << title << " override for handle: " << handle << std::endl;
    inDebugStream() << "     With string          : " << value << std::endl;
    inDebugStream() << "     Described as         : " << description << std::endl;
    inDebugStream() << "----" << std::endl;
}

// Between the environment and the defaults.
constexpr std::uint32_t SOURCE_PRIORITY = 5;

// Constant-initialised: it may be set before main.
constinit InValueSource* theSource = nullptr;

// The value that a source gave to one variable.
class InSourceAlias : public InContextAliasBase
{
public:
    InSourceAlias(const char* handle, const char* value, const char* description)
        : InContextAliasBase(description), _handle(handle)
    {
        initialize(value);
    }
    InContextAliasBase* clone() const override
    {
        return new InSourceAlias(*this);
    }
    std::uint32_t getPriority() const override
    {
        return SOURCE_PRIORITY;
    }
    const char* getKey() const override
    {
        return _handle.c_str();
    }

private:
    std::string _handle;
};

const char* orEmpty(const char* text)
{
    return text ? text : "";
}

} // namespace

InValueSource::~InValueSource() = default;

InVariableBase::InContextAliasDummy InVariableBase::_dummy
    ZU_INIT_ORDER(ZU_INIT_ORDER_DUMMY)("InVariableBase::_dummy");

InVariableBase::Handles* InVariableBase::_handles = nullptr;

InVariableBase::Overrides* InVariableBase::_pendingOverrides = nullptr;

InVariableBase::InContextAliasDummy::InContextAliasDummy(const char* description)
    : InContextAliasBase(description)
{
}

InContextAliasBase* InVariableBase::InContextAliasDummy::clone() const
{
    internalAssertionFailed("InVariableBase::_dummy is not cloned", __FILE__, __LINE__);
}

std::uint32_t InVariableBase::InContextAliasDummy::getPriority() const
{
    internalAssertionFailed("InVariableBase::_dummy has no priority", __FILE__, __LINE__);
}

const char* InVariableBase::InContextAliasDummy::getKey() const
{
    internalAssertionFailed("InVariableBase::_dummy has no key", __FILE__, __LINE__);
}

bool InVariableBase::HigherPriority::operator()(const std::unique_ptr<InContextAliasBase>& a,
                                                const std::unique_ptr<InContextAliasBase>& b) const
{
    return a->getPriority() > b->getPriority();
}

InVariableBase::InVariableBase(const char* handle, InPackageInitBase& package,
                               const InContextAliasBase& a1, const InContextAliasBase& a2,
                               const InContextAliasBase& a3, const InContextAliasBase& a4,
                               const InContextAliasBase& a5, const InContextAliasBase& a6,
                               const InContextAliasBase& a7, const InContextAliasBase& a8,
                               const InContextAliasBase& a9, const InContextAliasBase& a10)
    : _contextAlias(nullptr), _package(&package), _handle(duplicateString(handle))
{
    if (!_handles) _handles = new Handles;
    if (!_handles->emplace(_handle.get(), this).second)
        throw InEx::ExHandleAlreadyInUse(__FILE__, __LINE__, _handle.get());
    joinPackage({&a1, &a2, &a3, &a4, &a5, &a6, &a7, &a8, &a9, &a10});
}

InVariableBase::~InVariableBase()
{
    removeHandle();
    _contextAliases.clear();
    _package->removeDependency(this);
}

// Undoes the variable's registrations if an alias can no longer be cloned.
void InVariableBase::joinPackage(const InContextAliasBase* const (&aliases)[10])
{
    bool joined = false;
    try
    {
        _package->addDependency(this);
        joined = true;
        for (const InContextAliasBase* alias : aliases)
            if (alias != &_dummy)
                _contextAliases.insert(std::unique_ptr<InContextAliasBase>(alias->clone()));
    }
    catch (...)
    {
        removeHandle();
        if (joined) _package->removeDependency(this);
        throw;
    }
}

void InVariableBase::removeHandle()
{
    _handles->erase(_handle.get());
    if (!_handles->empty()) return;
    delete _handles;
    _handles = nullptr;
}

bool InVariableBase::isValid() const
{
    return _contextAlias != nullptr;
}

const InContextAliasBase* InVariableBase::contextAlias() const
{
    return _contextAlias;
}

const char* InVariableBase::getHandle() const
{
    return _handle.get();
}

const char* InVariableBase::initSource() const
{
    if (!_contextAlias) throw InEx::ExUninitializedObject(__FILE__, __LINE__, _handle.get());
    return typeName(typeid(*_contextAlias));
}

const char* InVariableBase::valueText() const
{
    if (!_contextAlias) throw InEx::ExUninitializedObject(__FILE__, __LINE__, _handle.get());
    return _contextAlias->getValue();
}

void InVariableBase::initialize()
{
    ZU_INTERNAL_ASSERT_TEXT(!_contextAlias, "_contextAlias == 0");
    takeOverride();
    for (const auto& alias : _contextAliases)
    {
        if (!alias->isValid()) continue;
        _contextAlias = alias.get();
        break;
    }
    if (theSource) takeFromSource();
    if (!_contextAlias || !inDebugInitialize()) return;
    inDebugStream() << "----" << std::endl;
    inDebugStream() << "Initializing variable  : " << _handle.get() << std::endl;
    inDebugStream() << "     With string       : " << _contextAlias->getValue() << std::endl;
    inDebugStream() << "     From context alias: " << initSource() << std::endl;
    inDebugStream() << "     Described as      : " << _contextAlias->getDescription() << std::endl;
    inDebugStream() << "----" << std::endl;
}

void InVariableBase::takeOverride()
{
    if (!_pendingOverrides) return;
    const auto found = _pendingOverrides->find(_handle.get());
    if (found == _pendingOverrides->end()) return;
    _contextAliases.insert(std::move(found->second));
    _pendingOverrides->erase(found);
    if (!_pendingOverrides->empty()) return;
    delete _pendingOverrides;
    _pendingOverrides = nullptr;
}

void InVariableBase::takeFromSource()
{
    if (_contextAlias && _contextAlias->getPriority() >= SOURCE_PRIORITY) return;
    const char* const value = theSource->find(*this);
    if (!value) return;
    const auto taken = _contextAliases.insert(
        std::make_unique<InSourceAlias>(_handle.get(), value, theSource->getDescription()));
    _contextAlias = taken->get();
}

InValueSource* InVariableBase::setSource(InValueSource* source)
{
    return std::exchange(theSource, source);
}

void InVariableBase::finalize()
{
    _contextAlias = nullptr;
}

InVariableBase* InVariableBase::queryViaHandle(const char* handle)
{
    if (!_handles || !handle) return nullptr;
    const auto found = _handles->find(handle);
    return found != _handles->end() ? found->second : nullptr;
}

void InVariableBase::visitAll(const Visitor& visitor)
{
    if (!_handles) return;
    for (const auto& [handle, variable] : *_handles) visitor(*variable);
}

void InVariableBase::visitAliases(const AliasVisitor& visitor) const
{
    for (const auto& alias : _contextAliases) visitor(*alias);
}

void InVariableBase::overrideViaHandle(const char* handle, const char* value,
                                       const char* description)
{
    writeOverride("Adding", orEmpty(handle), orEmpty(value), orEmpty(description));
    const InVariableBase* const variable = queryViaHandle(handle);
    if (variable && variable->_contextAlias)
        throw InEx::ExVariableAlreadyInitialized(__FILE__, __LINE__, variable->getHandle());
    auto alias = std::make_unique<InOvrAlias>(value, description);
    if (!_pendingOverrides) _pendingOverrides = new Overrides;
    (*_pendingOverrides)[orEmpty(handle)] = std::move(alias);
}

bool InVariableBase::isOverridden(const char* handle)
{
    return _pendingOverrides && handle && _pendingOverrides->count(handle) > 0;
}

void InVariableBase::clearPendingOverrides()
{
    if (!_pendingOverrides) return;
    for (const auto& [handle, alias] : *_pendingOverrides)
        if (inDebugInitialize())
            writeOverride("Unused", handle.c_str(), alias->getValue(), alias->getDescription());
    delete _pendingOverrides;
    _pendingOverrides = nullptr;
}

} // namespace Zu
