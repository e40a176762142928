// A shared library that needs no other one, for tests of loading.

#include <typeinfo>

#if defined(_WIN32)
#define SAMPLE_EXPORT extern "C" __declspec(dllexport)
#else
#define SAMPLE_EXPORT extern "C" __attribute__((visibility("default")))
#endif

SAMPLE_EXPORT int sampleProduct(int a, int b);
SAMPLE_EXPORT int sampleCount();
SAMPLE_EXPORT const std::type_info* sampleType();

namespace sample
{
struct Type
{
};
} // namespace sample

int sampleProduct(int a, int b)
{
    return a * b;
}

// How often it was called since the library was loaded.
int sampleCount()
{
    static int count = 0;
    return ++count;
}

// A type that is unloaded with the library.
const std::type_info* sampleType()
{
    return &typeid(sample::Type);
}
