/// @file
/// A singleton that lives as long as a package.

#ifndef ZU_BASE_INSINGLETON_H
#define ZU_BASE_INSINGLETON_H

#include "baseApi.h"

namespace Zu
{

/// Ties the one instance of a class to the life of a package: the package's performInitialize()
/// creates it, its performFinalize() destroys it, and every use outside that interval is an error
/// with a clear message. A destroyed singleton can't be made again in the same process.
///
/// `T::getInstance()` of a participating class forwards to getInstance().
///
/// One module owns the singleton. In one of its sources it includes "base/inSingleton.imp" and
/// instantiates `template class MY_API Zu::InSingleton<T>;`; its header says `extern template class
/// MY_API Zu::InSingleton<T>;` to the modules that share it. A module without either fails to link
/// and does not get a second singleton.
///
/// Thread-safety: create() and destroy() belong to the thread that runs start-up and shut-down;
/// getInstance() only reads, and any thread may call it between the two.
template <class T> class ZU_BASE_VISIBLE InSingleton
{
public:
    InSingleton() = delete;

    /// Takes ownership of `instance`, which may be null. Raises InSingletonEx::ExAlreadyInitialized
    /// while the singleton lives, InSingletonEx::ExAlreadyDestroyed after its end; the object given
    /// is then not taken.
    static void create(T* instance);

    /// Deletes the object. Raises InSingletonEx::ExNotInitialized before create(),
    /// InSingletonEx::ExAlreadyDestroyed after the first call.
    static void destroy();

    /// The object; not to be called when null was given to create(). Raises
    /// InSingletonEx::ExNotInitialized before create() and, deliberately with the same class, after
    /// destroy().
    static T& getInstance();

private:
    enum State
    {
        NOT_CREATED,
        ALIVE,
        DESTROYED
    };

    static State _state;
    static T* _instance;
};

} // namespace Zu

#endif
