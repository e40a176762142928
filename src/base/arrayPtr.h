/// @file
/// Ownership of one array, stated in the type.

#ifndef ZU_BASE_ARRAYPTR_H
#define ZU_BASE_ARRAYPTR_H

#include "ownedPtr.h"

#include <cstddef>

namespace Zu
{

/// Owns one array made with `new[]`, or none, and releases it with `delete[]`.
///
/// `ArrayPtr<char>` is the library's owned string. A parameter of this type taken by value is a
/// transfer to the callee and leaves the caller's variable null.
template <class T> class ArrayPtr : public OwnedPtr<T, DisposeArray>
{
    using Base = OwnedPtr<T, DisposeArray>;

public:
    ArrayPtr() noexcept = default;

    /// Takes ownership of `array`, which may be null.
    explicit ArrayPtr(T* array) noexcept : Base(array) {}

    /// @{
    /// Takes the array of a carrier or of another owner, which is left null.
    ArrayPtr(Base& source) noexcept : Base(source) {}
    ArrayPtr(Base&& source) noexcept : Base(source) {}
    /// @}

    /// @{
    /// Releases the owned array and takes that of the source, which is left null. Does nothing when
    /// both are the same object.
    ArrayPtr& operator=(Base& source)
    {
        Base::operator=(source);
        return *this;
    }
    ArrayPtr& operator=(Base&& source)
    {
        Base::operator=(source);
        return *this;
    }
    /// @}

    /// The element at `index`; no bounds are known, so none are checked.
    T& operator[](std::size_t index) const
    {
        return this->get()[index];
    }
};

/// Carries ownership of one array out of a function. An array that nobody takes is released with
/// the carrier.
template <class T> class ArrayPtrRet : public OwnedPtr<T, DisposeArray>
{
    using Base = OwnedPtr<T, DisposeArray>;

public:
    ArrayPtrRet() noexcept = default;

    /// Takes ownership of `array`, which may be null.
    explicit ArrayPtrRet(T* array) noexcept : Base(array) {}

    /// @{
    /// Takes the array of an owner or of another carrier, which is left null.
    ArrayPtrRet(Base& source) noexcept : Base(source) {}
    ArrayPtrRet(Base&& source) noexcept : Base(source) {}
    /// @}

    /// @{
    /// Releases the owned array and takes that of the source, which is left null. Does nothing when
    /// both are the same object.
    ArrayPtrRet& operator=(Base& source)
    {
        Base::operator=(source);
        return *this;
    }
    ArrayPtrRet& operator=(Base&& source)
    {
        Base::operator=(source);
        return *this;
    }
    /// @}

    /// The element at `index`; no bounds are known, so none are checked.
    T& operator[](std::size_t index) const
    {
        return this->get()[index];
    }
};

} // namespace Zu

#endif
