// Limits a change of an environment variable to one test.

#ifndef ZU_TESTS_VARIABLEGUARD_H
#define ZU_TESTS_VARIABLEGUARD_H

#include "base/osEnv.h"

#include <string>

namespace support
{

// Restores the variable, set or not, when the scope ends.
class VariableGuard
{
public:
    explicit VariableGuard(const std::string& name) : _name(name), _value(valueOf(name)) {}
    VariableGuard(const VariableGuard&) = delete;
    VariableGuard& operator=(const VariableGuard&) = delete;

    ~VariableGuard()
    {
        set(_value);
    }

    // The empty value removes the variable.
    void set(const std::string& value) const
    {
        Zu::OsEnv::putVariable((_name + "=" + value).c_str());
    }

private:
    static std::string valueOf(const std::string& name)
    {
        const char* const value = Zu::OsEnv::getVariable(name.c_str());
        return value ? value : "";
    }

    std::string _name;
    std::string _value;
};

} // namespace support

#endif
