/// @file
/// The exceptions of the initialisation subsystem.

#ifndef ZU_BASE_INEX_H
#define ZU_BASE_INEX_H

#include "exBase.h"

#include <stdexcept>

namespace Zu
{

/// Root of the exceptions of packages, aliases and variables. A name in a reason is truncated to
/// 256 characters; a null one counts as empty.
class ZU_BASE_API InEx : public ExBase
{
public:
    class ExPackageNotRegistered;
    class ExDependencyCycle;
    class ExPackageInitError;
    class ExRegAfterInit;
    class ExReinitWithoutGuard;
    class ExDoubleInit;
    class ExFinaliseBeforeInit;
    class ExDoubleFinalise;
    class ExHandleAlreadyInUse;
    class ExUninitializedObject;
    class ExInvalidObject;
    class ExContextAliasAlreadyDefined;
    class ExVariableAlreadyInitialized;
    class ExNoNewContextAliasAfterInit;

protected:
    InEx(const char* file, int line);
};

/// A package names a dependency that is in no pass: "Init Package not registered: '<package>'."
class ZU_BASE_API InEx::ExPackageNotRegistered : public std::runtime_error, public InEx
{
public:
    /// `package` is the type name of the missing package.
    ExPackageNotRegistered(const char* file, int line, const char* package);

    const char* what() const noexcept override;
    ExBase* clone() const override;
};

/// Packages depend on each other: "Init dependencies contain cycle(s)".
class ZU_BASE_API InEx::ExDependencyCycle : public std::logic_error, public InEx
{
public:
    ExDependencyCycle(const char* file, int line);

    const char* what() const noexcept override;
    ExBase* clone() const override;
};

/// For the bodies of packages to raise: "Init error in package: '<package>'."
class ZU_BASE_API InEx::ExPackageInitError : public std::runtime_error, public InEx
{
public:
    /// `package` is the name of the package that raises.
    ExPackageInitError(const char* file, int line, const char* package);

    const char* what() const noexcept override;
    ExBase* clone() const override;
};

/// For the bodies of packages to raise: "Package registered after initialize()."
class ZU_BASE_API InEx::ExRegAfterInit : public std::runtime_error, public InEx
{
public:
    ExRegAfterInit(const char* file, int line);

    const char* what() const noexcept override;
    ExBase* clone() const override;
};

/// A package object was constructed after start-up outside an InReinitGuard: "Reinitialize without
/// using the reinitialize guard."
class ZU_BASE_API InEx::ExReinitWithoutGuard : public std::runtime_error, public InEx
{
public:
    ExReinitWithoutGuard(const char* file, int line);

    const char* what() const noexcept override;
    ExBase* clone() const override;
};

/// For the bodies of packages to raise: "Multiple calls to initialize()." Starting twice is not an
/// error in itself.
class ZU_BASE_API InEx::ExDoubleInit : public std::runtime_error, public InEx
{
public:
    ExDoubleInit(const char* file, int line);

    const char* what() const noexcept override;
    ExBase* clone() const override;
};

/// Shut-down without a start-up: "Call to finalize() before initialize()."
class ZU_BASE_API InEx::ExFinaliseBeforeInit : public std::runtime_error, public InEx
{
public:
    ExFinaliseBeforeInit(const char* file, int line);

    const char* what() const noexcept override;
    ExBase* clone() const override;
};

/// A second shut-down: "Multiple calls to finalize()."
class ZU_BASE_API InEx::ExDoubleFinalise : public std::runtime_error, public InEx
{
public:
    ExDoubleFinalise(const char* file, int line);

    const char* what() const noexcept override;
    ExBase* clone() const override;
};

/// Two variables have the same handle:
/// "Trying to register an object with an already used handle: '<handle>'."
class ZU_BASE_API InEx::ExHandleAlreadyInUse : public std::runtime_error, public InEx
{
public:
    /// `handle` is the one in use.
    ExHandleAlreadyInUse(const char* file, int line, const char* handle);

    const char* what() const noexcept override;
    ExBase* clone() const override;
};

/// A value is requested before it is available, or when it no longer is:
/// "Trying to access an object that is not fully initialized: '<name>'."
class ZU_BASE_API InEx::ExUninitializedObject : public std::logic_error, public InEx
{
public:
    /// `name` is the handle of a variable, or the description of an alias.
    ExUninitializedObject(const char* file, int line, const char* name);

    const char* what() const noexcept override;
    ExBase* clone() const override;
};

/// A value is requested that its source did not supply:
/// "Trying to access an object that has an invalid value: '<name>'."
class ZU_BASE_API InEx::ExInvalidObject : public std::logic_error, public InEx
{
public:
    /// `name` is the description of the alias.
    ExInvalidObject(const char* file, int line, const char* name);

    const char* what() const noexcept override;
    ExBase* clone() const override;
};

/// Two aliases of one kind have the same key:
/// "Trying to re-create an already existing Context Alias: '<key>'."
class ZU_BASE_API InEx::ExContextAliasAlreadyDefined : public std::logic_error, public InEx
{
public:
    /// `key` is the key of both aliases.
    ExContextAliasAlreadyDefined(const char* file, int line, const char* key);

    const char* what() const noexcept override;
    ExBase* clone() const override;
};

/// An override came after the variable had taken its value:
/// "Trying to override an InVariable that is already initialized: '<handle>'."
class ZU_BASE_API InEx::ExVariableAlreadyInitialized : public std::logic_error, public InEx
{
public:
    /// `handle` is the handle of the variable.
    ExVariableAlreadyInitialized(const char* file, int line, const char* handle);

    const char* what() const noexcept override;
    ExBase* clone() const override;
};

/// An alias was constructed after its kind had taken its values: "Trying to do post initialization
/// registration of context alias instance: '\<description\>' (key: \<key\>)."
class ZU_BASE_API InEx::ExNoNewContextAliasAfterInit : public std::logic_error, public InEx
{
public:
    /// The description and key of the late alias.
    ExNoNewContextAliasAfterInit(const char* file, int line, const char* description,
                                 const char* key);

    const char* what() const noexcept override;
    ExBase* clone() const override;
};

} // namespace Zu

#endif
