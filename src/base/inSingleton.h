/// @file
/// A singleton that lives as long as a package.

#ifndef ZU_BASE_INSINGLETON_H
#define ZU_BASE_INSINGLETON_H

#include "baseApi.h"

namespace Zu
{

/// Ties the one instance of a class to the lifetime of a package: the package's performInitialize()
/// creates it, its performFinalize() destroys it, and every use outside that interval is an error
/// with a clear message. A destroyed singleton can't be recreated in the same process.
///
/// `T::getInstance()` of a participating class forwards to getInstance().
///
/// One module owns the singleton. One of its source files includes "base/inSingleton.imp" and
/// instantiates `template class MY_API Zu::InSingleton<T>;`. Its header declares `extern template
/// class MY_API Zu::InSingleton<T>;` for the modules that share it. A module without either fails
/// to link rather than getting a second singleton.
///
/// Thread-safety: create() and destroy() belong to the thread that runs start-up and shut-down;
/// getInstance() only reads, and any thread may call it between the two.
template <class T> class ZU_BASE_VISIBLE InSingleton
{
public:
    InSingleton() = delete;

    /// Takes ownership of `instance`, which may be null. Raises InSingletonEx::ExAlreadyInitialized
    /// while the singleton lives and InSingletonEx::ExAlreadyDestroyed after its end, in both cases
    /// without taking the object.
    static void create(T* instance);

    /// Deletes the object. Raises InSingletonEx::ExNotInitialized before create() and
    /// InSingletonEx::ExAlreadyDestroyed after the first call.
    static void destroy();

    /// The object. Must not be called if create() was given null. Raises
    /// InSingletonEx::ExNotInitialized before create() and, deliberately the same class, after
    /// destroy().
    static T& getInstance();

private:
    enum State
    {
        NotCreated,
        Alive,
        Destroyed
    };

    static State _state;
    static T* _instance;
};

} // namespace Zu

#endif
