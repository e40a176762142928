// Where the members of an object stand, private ones, too.

#ifndef ZU_TESTS_MEMBERORDER_H
#define ZU_TESTS_MEMBERORDER_H

namespace support
{

// Instantiated explicitly, which no access is asked for, it defines the function that a test has
// declared in this namespace.
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
