/// @file
/// The array and list types used in public signatures.

#ifndef ZU_BASE_CONTAINERS_H
#define ZU_BASE_CONTAINERS_H

#include <iterator>
#include <list>
#include <stdexcept>
#include <type_traits>
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

    template <class Iterator>
    using IfIterator = typename std::iterator_traits<Iterator>::iterator_category;

public:
    using typename Base::const_iterator;
    using typename Base::iterator;
    using typename Base::size_type;

    using Base::assign;
    using Base::Base;
    using Base::insert;

    Vector() = default;

    /// @{
    /// `count` elements, or those of a range. The length is checked first where it is known.
    explicit Vector(size_type count) : Base(checkedLength(count)) {}
    Vector(size_type count, const T& value) : Base(checkedLength(count), value) {}
    template <class Iterator, class = IfIterator<Iterator>>
    Vector(Iterator first, Iterator last) : Base(checkedBegin(first, last), last)
    {
    }
    /// @}

    /// @{
    /// The elements of a standard vector, copied or moved.
    Vector(const Base& elements) : Base(elements) {}
    Vector(Base&& elements) noexcept : Base(std::move(elements)) {}
    /// @}

    /// @{
    /// The same as in the standard vector, but the length is checked first where it is known.
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

    template <class Iterator, class = IfIterator<Iterator>>
    void assign(Iterator first, Iterator last)
    {
        Base::assign(checkedBegin(first, last), last);
    }

    iterator insert(const_iterator position, size_type count, const T& value)
    {
        checkLength(count, this->size());
        return Base::insert(position, count, value);
    }

    template <class Iterator, class = IfIterator<Iterator>>
    iterator insert(const_iterator position, Iterator first, Iterator last)
    {
        return Base::insert(position, checkedBegin(first, last, this->size()), last);
    }
    /// @}

private:
    static void checkLength(size_type count, size_type present = 0)
    {
        if (count > Base().max_size() - present) throw std::length_error("vector<T> too long");
    }

    static size_type checkedLength(size_type count)
    {
        checkLength(count);
        return count;
    }

    // The length of a multi-pass range is known before its elements are copied.
    template <class Iterator>
    static Iterator checkedBegin(Iterator first, Iterator last, size_type present = 0)
    {
        using Category = typename std::iterator_traits<Iterator>::iterator_category;
        if constexpr (std::is_base_of_v<std::forward_iterator_tag, Category>)
            checkLength(static_cast<size_type>(std::distance(first, last)), present);
        return first;
    }
};

/// A doubly linked list with the interface of the standard list; it owns its elements as values.
template <class T> using List = std::list<T>;

} // namespace Zu

#endif
