#include "base/envVar.h"

#include "base/osEnv.h"
#include "base/plainNumber.h"
#include "base/textToDouble.h"
#include "base/textToInt.h"

#include <iomanip>
#include <ostream>

namespace Zu
{

namespace
{

const char* orNil(const char* text)
{
    return text ? text : "NIL";
}

} // namespace

EnvVar::EnvVar(const char* name, const char* defaultValue)
    : _name(name), _value(nullptr), _default(defaultValue)
{
    getRegistry().push_back(this);
    _value = OsEnv::getVariable(name);
}

EnvVar::EnvVar(const EnvVar& other) = default;

EnvVar& EnvVar::operator=(const EnvVar& other) = default;

EnvVar::~EnvVar()
{
    getRegistry().remove(this);
}

void EnvVar::refresh()
{
    _value = OsEnv::getVariable(_name);
}

void EnvVar::dump(std::ostream& os) const
{
    dumpName(os);
    os << " value \"" << orNil(_value) << "\" default \"" << orNil(_default) << '"';
}

const char* EnvVar::getName() const
{
    return _name;
}

const char* EnvVar::getValue() const
{
    return _value ? _value : _default;
}

void EnvVar::putEnv(const char* assignment)
{
    OsEnv::putVariable(assignment);
}

EnvVarRegistry& EnvVar::getRegistry()
{
    static EnvVarRegistry theRegistry;
    return theRegistry;
}

const char* EnvVar::environmentText() const
{
    return _value;
}

void EnvVar::dumpName(std::ostream& os) const
{
    os << "name " << std::setw(25) << _name;
}

EnvIntVar::EnvIntVar(const char* name, int defaultValue)
    : EnvVar(name, nullptr), _intValue(defaultValue), _intDefault(defaultValue)
{
    convert();
}

void EnvIntVar::refresh()
{
    EnvVar::refresh();
    convert();
}

void EnvIntVar::convert()
{
    _intValue = environmentText() ? textToInt(environmentText()) : _intDefault;
}

void EnvIntVar::dump(std::ostream& os) const
{
    dumpName(os);
    os << " value " << plainNumber(_intValue) << " default " << plainNumber(_intDefault);
}

int EnvIntVar::getValue() const
{
    return _intValue;
}

EnvDoubleVar::EnvDoubleVar(const char* name, double defaultValue)
    : EnvVar(name, nullptr), _doubleValue(defaultValue), _doubleDefault(defaultValue)
{
    convert();
}

void EnvDoubleVar::refresh()
{
    EnvVar::refresh();
    convert();
}

void EnvDoubleVar::convert()
{
    _doubleValue = environmentText() ? textToDouble(environmentText()) : _doubleDefault;
}

void EnvDoubleVar::dump(std::ostream& os) const
{
    dumpName(os);
    os << " value " << plainNumber(_doubleValue) << " default " << plainNumber(_doubleDefault);
}

double EnvDoubleVar::getValue() const
{
    return _doubleValue;
}

std::ostream& operator<<(std::ostream& os, const EnvVar& variable)
{
    variable.dump(os);
    return os;
}

std::ostream& operator<<(std::ostream& os, const EnvVarRegistry& registry)
{
    for (const EnvVar* const variable : registry) os << std::endl << *variable;
    return os;
}

} // namespace Zu
