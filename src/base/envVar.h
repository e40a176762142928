/// @file
/// Objects that stand for environment variables, with a default.

#ifndef ZU_BASE_ENVVAR_H
#define ZU_BASE_ENVVAR_H

#include "baseApi.h"
#include "containers.h"

#include <iosfwd>

namespace Zu
{

class EnvVar;

/// The objects that stand for variables, in the order of their construction. It owns none of them.
using EnvVarRegistry = List<EnvVar*>;

/// An environment variable that is read when the object is made, and whenever refresh() is called.
/// Independent of packages, so it works at any time. All objects are listed in one registry, so
/// that a program can print what it looks at; copies are not.
///
/// Name and default are not copied and must outlive the object; the value belongs to the
/// environment and is good until the next change of it.
///
/// Thread-safety: the registry has no lock, so objects are static or made on one thread.
class ZU_BASE_API EnvVar
{
public:
    /// The default may be null.
    EnvVar(const char* name, const char* defaultValue);

    /// @{
    /// Copies name, default and value; the registry stays as it is.
    EnvVar(const EnvVar& other);
    EnvVar& operator=(const EnvVar& other);
    /// @}

    virtual ~EnvVar();

    /// Reads the environment again.
    virtual void refresh();

    /// Writes name, value and default, without a line end: `name <name, to 25 places> value
    /// "<text of the environment>" default "<default>"`, with NIL for null.
    virtual void dump(std::ostream& os) const;

    /// The name of the variable.
    const char* getName() const;

    /// The environment's text if there is one, else the default.
    const char* getValue() const;

    /// Sets a variable, as OsEnv::putVariable(); refreshes nothing.
    static void putEnv(const char* assignment);

    /// The objects that there are.
    static EnvVarRegistry& getRegistry();

protected:
    /// The environment's text; null if there is none.
    const char* environmentText() const;

    /// Writes the beginning that all kinds share.
    void dumpName(std::ostream& os) const;

private:
    const char* _name;
    const char* _value;
    const char* _default;
};

/// A whole number: the one at the beginning of the text, as `atoi` reads it, or the nearest int.
/// Text that is no number gives 0, deliberately not the default.
class ZU_BASE_API EnvIntVar : public EnvVar
{
public:
    /// The default stands for a variable that is not set.
    EnvIntVar(const char* name, int defaultValue);
    void refresh() override;

    /// Writes the same as an EnvVar, with bare numbers in place of the texts.
    void dump(std::ostream& os) const override;

    /// The number.
    int getValue() const;

private:
    void convert();

    int _intValue;
    int _intDefault;
};

/// A number: the one at the beginning of the text, as `atof` reads it by the rules of C99. Text
/// that is no number gives 0, deliberately not the default.
class ZU_BASE_API EnvDoubleVar : public EnvVar
{
public:
    /// The default stands for a variable that is not set.
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

/// As EnvVar::dump().
ZU_BASE_API std::ostream& operator<<(std::ostream& os, const EnvVar& variable);

/// For each object a line end and then its dump.
ZU_BASE_API std::ostream& operator<<(std::ostream& os, const EnvVarRegistry& registry);

} // namespace Zu

#endif
