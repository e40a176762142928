#include "base/inContextAliasBase.h"

#include "base/duplicateString.h"
#include "base/inEx.h"
#include "base/internalAssert.h"

namespace Zu
{

InContextAliasBase::InContextAliasBase(const char* description)
    : _isInitialized(false), _description(duplicateString(description))
{
}

InContextAliasBase::InContextAliasBase(const InContextAliasBase& other)
    : _isInitialized(other._isInitialized), _description(duplicateString(other._description.get()))
{
    if (!other._value.isNull()) _value = duplicateString(other._value.get());
}

InContextAliasBase::~InContextAliasBase() = default;

void InContextAliasBase::initialize(const char* value)
{
    ZU_INTERNAL_ASSERT(!_isInitialized);
    if (value) _value = duplicateString(value);
    _isInitialized = true;
}

void InContextAliasBase::finalize()
{
    ZU_INTERNAL_ASSERT(_isInitialized);
    _isInitialized = false;
}

bool InContextAliasBase::isValid() const
{
    return _isInitialized && !_value.isNull();
}

const char* InContextAliasBase::getValue() const
{
    if (!_isInitialized) throw InEx::ExUninitializedObject(__FILE__, __LINE__, _description.get());
    if (_value.isNull()) throw InEx::ExInvalidObject(__FILE__, __LINE__, _description.get());
    return _value.get();
}

const char* InContextAliasBase::getDescription() const
{
    return _description.get();
}

} // namespace Zu
