/// @file
/// What the owning pointers and the carriers of ownership have in common.

#ifndef ZU_BASE_OWNEDPTR_H
#define ZU_BASE_OWNEDPTR_H

namespace Zu
{

/// Whether the destructor of `T` may throw. An owner must know that without seeing the whole of the
/// type, so a type whose destructor is `noexcept(false)` says so beside its declaration:
/// `template <> inline constexpr bool Zu::ownedMayThrow<My> = true;`
template <class T> inline constexpr bool ownedMayThrow = false;

/// Ends an object made with `new`.
struct DisposeObject
{
    /// Deletes the object, which may be null. `T` must be complete.
    template <class T> static void dispose(T* object) noexcept(!ownedMayThrow<T>)
    {
        static_cast<void>(sizeof(T)); // an incomplete type does not compile
        delete object;
    }
};

/// Ends an array made with `new[]`.
struct DisposeArray
{
    /// Deletes the array, which may be null. `T` must be complete.
    template <class T> static void dispose(T* array) noexcept(!ownedMayThrow<T>)
    {
        static_cast<void>(sizeof(T)); // an incomplete type does not compile
        delete[] array;
    }
};

/// One pointer, possibly null, and the duty to end what it points to.
///
/// Copying and assigning transfer: the source is left null. Not reference counted; a value of one
/// thread at a time. Clients use it through ObjPtr, ObjPtrRet, ArrayPtr and ArrayPtrRet, which
/// take ownership from each other where they dispose in the same way. `T` may be incomplete where
/// an owner is only declared, as in a class that hides its implementation.
template <class T, class Disposal> class OwnedPtr
{
public:
    /// Ends what is owned and takes the pointer of the source; nothing when it is the same object.
    OwnedPtr& operator=(OwnedPtr& source)
    {
        takeFrom(source);
        return *this;
    }

    /// The same.
    OwnedPtr& operator=(OwnedPtr&& source)
    {
        takeFrom(source);
        return *this;
    }

    /// The pointer; ownership stays here.
    T* get() const noexcept
    {
        return _pointer;
    }

    /// Whether there is nothing to own.
    bool isNull() const noexcept
    {
        return !_pointer;
    }

    /// Gives ownership to the caller and leaves null.
    T* release() noexcept
    {
        T* const pointer = _pointer;
        _pointer = nullptr;
        return pointer;
    }

protected:
    OwnedPtr() noexcept = default;

    /// Takes ownership; the pointer may be null.
    explicit OwnedPtr(T* pointer) noexcept : _pointer(pointer) {}

    /// Takes the pointer of the source, which is left null.
    OwnedPtr(OwnedPtr& source) noexcept : _pointer(source.release()) {}

    /// The same.
    OwnedPtr(OwnedPtr&& source) noexcept : _pointer(source.release()) {}

    /// Ends what is owned. An object whose destructor may throw can do so through its owner.
    ~OwnedPtr() noexcept(!ownedMayThrow<T>)
    {
        Disposal::dispose(_pointer);
    }

private:
    void takeFrom(OwnedPtr& source)
    {
        if (this == &source) return;
        // The new pointer stands before the old object ends, whose destructor may throw.
        T* const old = _pointer;
        _pointer = source.release();
        Disposal::dispose(old);
    }

    T* _pointer = nullptr;
};

} // namespace Zu

#endif
