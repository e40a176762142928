/// @file
/// A package: the unit of start-up and shut-down.

#ifndef ZU_BASE_INPACKAGEINIT_H
#define ZU_BASE_INPACKAGEINIT_H

#include "baseApi.h"
#include "containers.h"

#include <cstddef>
#include <typeinfo>

namespace Zu
{

class InVariableBase;

/// The interface of a package towards its init variables.
class ZU_BASE_API InPackageInitBase
{
public:
    virtual ~InPackageInitBase();

    /// Adds a variable to the package: it takes its value when the package is initialised.
    virtual void addDependency(InVariableBase* variable) = 0;

    /// Removes a variable from the package. A variable that is not in it is a fatal error.
    virtual void removeDependency(InVariableBase* variable) = 0;
};

/// One package. A package object is static: its constructor only declares the package and its
/// dependencies. InInitMgr runs performInitialize() and performFinalize() later, in an order
/// computed from all declarations. Clients derive packages through InInit.
///
/// The manager does not own packages. It forgets an object that ends before shut-down, whose
/// performFinalize() then never runs.
///
/// Thread-safety: none; declaration, start-up and shut-down belong to one thread at a time.
class ZU_BASE_API InPackageInit : public InPackageInitBase
{
public:
    InPackageInit(const InPackageInit&) = delete;
    InPackageInit& operator=(const InPackageInit&) = delete;

    ~InPackageInit() override;
    void addDependency(InVariableBase* variable) override;
    void removeDependency(InVariableBase* variable) override;

    /// The name; it decides the order among packages with equally many dependencies.
    virtual const char* getName();

    /// The package's own start-up work.
    virtual void performInitialize() = 0;

    /// The package's own shut-down work.
    virtual void performFinalize() = 0;

    /// Records whether the package is up.
    virtual void setInitialized(bool initialized) = 0;

    /// Gives the package's variables their values in order of registration, then runs
    /// performInitialize(). For InInitMgr; exceptions pass through.
    void initialize();

    /// Runs performFinalize(), then takes the variables' values away in reverse order. For
    /// InInitMgr; exceptions pass through.
    void finalize();

    /// The run-time types of the packages that this one depends on, in order of declaration.
    const Vector<const std::type_info*>& getDependencies() const;

protected:
    /// A package named "unnamed".
    InPackageInit();

    /// The name is truncated to 127 characters; null gives the empty name.
    explicit InPackageInit(const char* name);

    /// Declares this package to InInitMgr. To be called once, by the constructor of the most
    /// derived class. A second object of a package that is up is ignored. After start-up, raises
    /// InEx::ExReinitWithoutGuard outside an InReinitGuard.
    void registerPackage();

    /// Declares that this package depends on the one with this run-time type, InInit<X>::getType().
    /// A dependency on a package that is already up is ignored.
    void addDependency(const std::type_info* type);

private:
    void trace(const char* operation);

    static constexpr std::size_t NAME_SIZE = 128;

    char _name[NAME_SIZE];
    Vector<const std::type_info*> _dependencies;
    Vector<InVariableBase*> _variables;
};

} // namespace Zu

#endif
