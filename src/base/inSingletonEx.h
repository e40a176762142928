/// @file
/// The exceptions of singletons that live as long as a package.

#ifndef ZU_BASE_INSINGLETONEX_H
#define ZU_BASE_INSINGLETONEX_H

#include "inEx.h"

#include <stdexcept>

namespace Zu
{

/// Root of the exceptions of InSingleton. The reason is the type's name, a blank, what is wrong
/// and a full stop.
class ZU_BASE_API InSingletonEx : public InEx
{
public:
    class ExNotInitialized;
    class ExAlreadyInitialized;
    class ExAlreadyDestroyed;

protected:
    /// `name` is the name of the type; `text` says what is wrong, without the full stop.
    InSingletonEx(const char* file, int line, const char* name, const char* text);
};

/// The singleton does not exist: "<name> is not initialized."
class ZU_BASE_API InSingletonEx::ExNotInitialized : public std::runtime_error, public InSingletonEx
{
public:
    /// `name` is the name of the singleton's type.
    ExNotInitialized(const char* file, int line, const char* name);

    const char* what() const noexcept override;
    ExBase* clone() const override;
};

/// The singleton already exists: "<name> has already been initialized."
class ZU_BASE_API InSingletonEx::ExAlreadyInitialized : public std::runtime_error,
                                                        public InSingletonEx
{
public:
    /// `name` is the name of the singleton's type.
    ExAlreadyInitialized(const char* file, int line, const char* name);

    const char* what() const noexcept override;
    ExBase* clone() const override;
};

/// The singleton no longer exists: "<name> has already been destroyed."
class ZU_BASE_API InSingletonEx::ExAlreadyDestroyed : public std::runtime_error,
                                                      public InSingletonEx
{
public:
    /// `name` is the name of the singleton's type.
    ExAlreadyDestroyed(const char* file, int line, const char* name);

    const char* what() const noexcept override;
    ExBase* clone() const override;
};

} // namespace Zu

#endif
