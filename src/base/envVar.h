/// @file
/// Objects that represent environment variables, with a default.

#ifndef ZU_BASE_ENVVAR_H
#define ZU_BASE_ENVVAR_H

#include "baseApi.h"
#include "containers.h"

#include <iosfwd>

namespace Zu
{

class EnvVar;

/// The objects that represent variables, in the order of their construction. It owns none of them.
using EnvVarRegistry = List<EnvVar*>;

/// An environment variable that is read when the object is made, and whenever refresh() is called.
/// It does not depend on packages, so it works at any time. All objects except copies are listed in
/// one registry, so that a program can print the variables that it reads.
///
/// Name and default are not copied and must outlive the object. The value belongs to the
/// environment and is valid until the environment changes.
///
/// Thread-safety: the registry has no lock, so objects must be static or made on one thread.
class ZU_BASE_API EnvVar
{
public:
    /// The default may be null.
    EnvVar(const char* name, const char* defaultValue);

    /// @{
    /// Copies name, default and value. The registry does not change.
    EnvVar(const EnvVar& other);
    EnvVar& operator=(const EnvVar& other);
    /// @}

    virtual ~EnvVar();

    /// Reads the environment again.
    virtual void refresh();

    /// Writes name, value and default, without a line end: `name <name, padded to 25 places> value
    /// "<text of the environment>" default "<default>"`, with NIL for null.
    virtual void dump(std::ostream& os) const;

    /// The name of the variable.
    const char* getName() const;

    /// The environment's text if there is one, otherwise the default.
    const char* getValue() const;

    /// Sets a variable with OsEnv::putVariable(); refreshes no object.
    static void putEnv(const char* assignment);

    /// The registered objects.
    static EnvVarRegistry& getRegistry();

protected:
    /// The environment's text; null if there is none.
    const char* environmentText() const;

    /// Writes the beginning that the dumps of all kinds share.
    void dumpName(std::ostream& os) const;

private:
    const char* _name;
    const char* _value;
    const char* _default;
};

/// A whole number: the one at the beginning of the text, as `atoi` reads it, or the nearest int if
/// it is out of range. Text that is not a number gives 0, deliberately not the default.
class ZU_BASE_API EnvIntVar : public EnvVar
{
public:
    /// The default is the value of a variable that is not set.
    EnvIntVar(const char* name, int defaultValue);
    void refresh() override;

    /// Writes the same as EnvVar::dump(), with bare numbers in place of the quoted texts.
    void dump(std::ostream& os) const override;

    /// The number.
    int getValue() const;

private:
    void convert();

    int _intValue;
    int _intDefault;
};

/// A number: the one at the beginning of the text, as `atof` reads it by the rules of C99. Text
/// that is not a number gives 0, deliberately not the default.
class ZU_BASE_API EnvDoubleVar : public EnvVar
{
public:
    /// The default is the value of a variable that is not set.
    EnvDoubleVar(const char* name, double defaultValue);
    void refresh() override;
    void dump(std::ostream& os) const override;

    /// The number.
    double getValue() const;

private:
    void convert();

    double _doubleValue;
    double _doubleDefault;
};

/// The same as EnvVar::dump().
ZU_BASE_API std::ostream& operator<<(std::ostream& os, const EnvVar& variable);

/// Writes a line end and then the dump of each object.
ZU_BASE_API std::ostream& operator<<(std::ostream& os, const EnvVarRegistry& registry);

} // namespace Zu

#endif
