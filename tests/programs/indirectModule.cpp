// A shared library with a function whose address is chosen when it is loaded, and is in another
// library; Linux only.

#include <cstddef>
#include <cstring>

extern "C"
{

    using Length = std::size_t (*)(const char*);

    __attribute__((visibility("default"))) int directTwice(int value)
    {
        return 2 * value;
    }

    // Referred to only by a string; clang finds it only if it is exported.
    Length chooseLength()
    {
        return std::strlen;
    }

    __attribute__((visibility("default"), ifunc("chooseLength"))) std::size_t
    indirectLength(const char* text);

} // extern "C"
