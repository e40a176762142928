// The places of an object's members, private ones included.

#ifndef ZU_TESTS_MEMBERORDER_H
#define ZU_TESTS_MEMBERORDER_H

namespace support
{

// Its explicit instantiation, which is exempt from access checks, defines the function that a test
// has declared in this namespace.
template <class Object, auto... Members> struct MemberOrder
{
    friend bool standInOrder(const Object& object)
    {
        const void* last = nullptr;
        const auto isBehind = [&last](const void* place)
        {
            const bool result = last < place;
            last = place;
            return result;
        };
        return (isBehind(&(object.*Members)) && ...);
    }
};

} // namespace support

#endif
