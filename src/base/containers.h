/// @file
/// The array and the list of public signatures.

#ifndef ZU_BASE_CONTAINERS_H
#define ZU_BASE_CONTAINERS_H

#include <cstddef>
#include <list>
#include <stdexcept>
#include <utility>
#include <vector>

namespace Zu
{

/// A contiguous growable array with the interface of the standard vector. It owns its elements as
/// values: a `Vector<T*>` does not own what its pointers point to.
///
/// A length beyond `max_size()` raises `std::length_error` "vector<T> too long".
template <class T> class Vector : public std::vector<T>
{
    using Base = std::vector<T>;

public:
    using typename Base::const_iterator;
    using typename Base::iterator;
    using typename Base::size_type;

    using Base::assign;
    using Base::Base;
    using Base::insert;

    Vector() = default;
    explicit Vector(size_type count) : Base(checkedLength(count)) {}
    Vector(size_type count, const T& value) : Base(checkedLength(count), value) {}
    Vector(const Base& elements) : Base(elements) {}
    Vector(Base&& elements) noexcept : Base(std::move(elements)) {}

    void reserve(size_type count)
    {
        Base::reserve(checkedLength(count));
    }

    void resize(size_type count)
    {
        Base::resize(checkedLength(count));
    }

    void resize(size_type count, const T& value)
    {
        Base::resize(checkedLength(count), value);
    }

    void assign(size_type count, const T& value)
    {
        Base::assign(checkedLength(count), value);
    }

    iterator insert(const_iterator position, size_type count, const T& value)
    {
        if (count > Base().max_size() - this->size()) throwTooLong();
        return Base::insert(position, count, value);
    }

private:
    [[noreturn]] static void throwTooLong()
    {
        throw std::length_error("vector<T> too long");
    }

    static size_type checkedLength(size_type count)
    {
        if (count > Base().max_size()) throwTooLong();
        return count;
    }
};

/// A doubly linked list with the interface of the standard list; it owns its elements as values.
template <class T> using List = std::list<T>;

} // namespace Zu

#endif
