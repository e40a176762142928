/// @file
/// What the owning pointers and the carriers of ownership have in common.

#ifndef ZU_BASE_OWNEDPTR_H
#define ZU_BASE_OWNEDPTR_H

namespace Zu
{

/// Whether the destructor of `T` may throw. An owner must know that without seeing the complete
/// type, so a type whose destructor is `noexcept(false)` declares it beside its own declaration:
/// `template <> inline constexpr bool Zu::ownedMayThrow<My> = true;`
template <class T> inline constexpr bool ownedMayThrow = false;

/// Disposes of an object made with `new`.
struct DisposeObject
{
    /// Deletes the object, which may be null. `T` must be complete.
    template <class T> static void dispose(T* object) noexcept(!ownedMayThrow<T>)
    {
        static_cast<void>(sizeof(T)); // an incomplete type does not compile
        delete object;
    }
};

/// Disposes of an array made with `new[]`.
struct DisposeArray
{
    /// Deletes the array, which may be null. `T` must be complete.
    template <class T> static void dispose(T* array) noexcept(!ownedMayThrow<T>)
    {
        static_cast<void>(sizeof(T)); // an incomplete type does not compile
        delete[] array;
    }
};

/// One pointer, possibly null, and the duty to dispose of what it points to.
///
/// Copying and assigning transfer ownership: the source is left null. There is no reference count;
/// a value belongs to one thread at a time. Clients use it through ObjPtr, ObjPtrRet, ArrayPtr and
/// ArrayPtrRet, which take ownership from each other if they dispose in the same way. `T` may be
/// incomplete where an owner is only declared, as in a class that hides its implementation.
template <class T, class Disposal> class OwnedPtr
{
public:
    /// Disposes of what is owned and takes the pointer of the source. Does nothing if the source is
    /// this owner.
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

    /// Whether nothing is owned.
    bool isNull() const noexcept
    {
        return !_pointer;
    }

    /// Hands ownership to the caller and leaves null.
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

    /// Disposes of what is owned. An object whose destructor may throw can do so through its owner.
    ~OwnedPtr() noexcept(!ownedMayThrow<T>)
    {
        Disposal::dispose(_pointer);
    }

private:
    void takeFrom(OwnedPtr& source)
    {
        if (this == &source) return;
        // The new pointer is set before the old object, whose destructor may throw, is disposed of.
        T* const old = _pointer;
        _pointer = source.release();
        Disposal::dispose(old);
    }

    T* _pointer = nullptr;
};

} // namespace Zu

#endif
