// A shared library with a function whose place is chosen when it is loaded, and lies in another
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

    // Named by a text alone; clang finds it only if it is shown.
    Length chooseLength()
    {
        return std::strlen;
    }

    __attribute__((visibility("default"), ifunc("chooseLength"))) std::size_t
    indirectLength(const char* text);

} // extern "C"
