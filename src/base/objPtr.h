/// @file
/// Ownership of one object, stated in the type.

#ifndef ZU_BASE_OBJPTR_H
#define ZU_BASE_OBJPTR_H

#include "ownedPtr.h"

namespace Zu
{

/// Owns one object made with `new`, or none, and deletes it when it is itself destroyed.
///
/// A parameter of this type taken by value is a transfer of the object to the callee and leaves
/// the caller's variable null.
template <class T> class ObjPtr : public OwnedPtr<T, DisposeObject>
{
    using Base = OwnedPtr<T, DisposeObject>;

public:
    ObjPtr() noexcept = default;

    /// Takes ownership of `object`, which may be null.
    explicit ObjPtr(T* object) noexcept : Base(object) {}

    /// @{
    /// Takes the object of a carrier or of another owner, which is left null.
    ObjPtr(Base& source) noexcept : Base(source) {}
    ObjPtr(Base&& source) noexcept : Base(source) {}
    /// @}

    /// @{
    /// Deletes the owned object and takes over that of the source, which is left null. Does nothing
    /// if both are the same owner.
    ObjPtr& operator=(Base& source)
    {
        Base::operator=(source);
        return *this;
    }
    ObjPtr& operator=(Base&& source)
    {
        Base::operator=(source);
        return *this;
    }
    /// @}

    /// The object; there must be one.
    T& operator*() const
    {
        return *this->get();
    }

    /// The object, for access to its members; there must be one.
    T* operator->() const noexcept
    {
        return this->get();
    }
};

/// Carries the ownership of one object out of a function.
///
/// A function that hands an object to its caller returns this type by value, and the caller takes
/// the object with an ObjPtr. A carrier from which nobody takes the object deletes it: a range-for
/// over `*function()` would walk through a list that is gone.
template <class T> class ObjPtrRet : public OwnedPtr<T, DisposeObject>
{
    using Base = OwnedPtr<T, DisposeObject>;

public:
    ObjPtrRet() noexcept = default;

    /// Takes ownership of `object`, which may be null.
    explicit ObjPtrRet(T* object) noexcept : Base(object) {}

    /// @{
    /// Takes the object of an owner or of another carrier, which is left null.
    ObjPtrRet(Base& source) noexcept : Base(source) {}
    ObjPtrRet(Base&& source) noexcept : Base(source) {}
    /// @}

    /// @{
    /// Deletes the owned object and takes over that of the source, which is left null. Does nothing
    /// if both are the same owner.
    ObjPtrRet& operator=(Base& source)
    {
        Base::operator=(source);
        return *this;
    }
    ObjPtrRet& operator=(Base&& source)
    {
        Base::operator=(source);
        return *this;
    }
    /// @}

    /// The object; there must be one.
    T& operator*() const
    {
        return *this->get();
    }

    /// The object, for access to its members; there must be one.
    T* operator->() const noexcept
    {
        return this->get();
    }
};

} // namespace Zu

#endif
