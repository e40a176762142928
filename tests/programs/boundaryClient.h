// A small library of the family, linked by the program and by the modules of the boundary tests.

#ifndef ZU_TESTS_BOUNDARYCLIENT_H
#define ZU_TESTS_BOUNDARYCLIENT_H

#include "base/exBase.h"
#include "base/inSingleton.h"

#include <stdexcept>
#include <string>

#if defined(BOUNDARY_CLIENT_BUILD)
#if defined(_WIN32)
#define BOUNDARY_API __declspec(dllexport)
#else
#define BOUNDARY_API __attribute__((visibility("default")))
#endif
#elif defined(_WIN32)
#define BOUNDARY_API __declspec(dllimport)
#else
#define BOUNDARY_API
#endif

namespace boundary
{

// Tags of the packages of all parts.
struct clientPackage
{
};
struct earlyPackage
{
};
struct latePackage
{
};
struct programPackage
{
};

// An exception of a client's own family.
class BOUNDARY_API ClientError : public std::runtime_error, public Zu::ExBase
{
public:
    ClientError(const char* file, int line, const char* reason);
    const char* what() const noexcept override;
    Zu::ExBase* clone() const override;
};

// A singleton that lives as long as the client's package and is shared by all parts.
class BOUNDARY_API Ledger
{
public:
    virtual ~Ledger();
    void write(const std::string& entry);
    const std::string& entries() const;

private:
    std::string _entries;
};

// One line on standard output.
BOUNDARY_API void say(const std::string& text);

using Callback = void (*)();

// The functions that a module offers, by the names "throwFromModule", "catchInModule" and
// "buildAlias".
using ThrowFromModule = void (*)(int which);
using CatchInModule = void (*)(Callback callback);
using BuildAlias = void (*)();

} // namespace boundary

// One instantiation, in the client library, serves all parts.
#if !defined(BOUNDARY_CLIENT_BUILD)
extern template class BOUNDARY_API Zu::InSingleton<boundary::Ledger>;
#endif

#endif
