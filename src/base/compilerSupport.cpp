#include "base/compilerSupport.h"

#include "base/compiler.h"

#if ZU_COMPILER_GNU
#include <cpuid.h>
#include <cstdlib>
#include <cxxabi.h>
#include <memory>
#endif

#if __has_include(<ext/stdio_filebuf.h>)
#include <ext/stdio_filebuf.h>
#endif

namespace Zu::Compiler
{

#if ZU_COMPILER_GNU

std::string demangled(const char* name)
{
    int status = 0;
    const std::unique_ptr<char, void (*)(void*)> text(
        abi::__cxa_demangle(name, nullptr, nullptr, &status), &std::free);
    return text ? text.get() : name;
}

CpuidRegisters cpuid(std::uint32_t leaf, std::uint32_t subLeaf)
{
    CpuidRegisters registers{};
    __cpuid_count(leaf, subLeaf, registers._eax, registers._ebx, registers._ecx, registers._edx);
    return registers;
}

#else

std::string demangled(const char* name)
{
    return name;
}

CpuidRegisters cpuid(std::uint32_t, std::uint32_t)
{
    return {};
}

#endif

#if __has_include(<ext/stdio_filebuf.h>)

bool adoptDescriptor(std::ofstream& file, int descriptor, std::ios::openmode mode)
{
    constexpr std::size_t WITHOUT_BUFFER = 1;
    __gnu_cxx::stdio_filebuf<char> buffer(descriptor, mode | std::ios::out, WITHOUT_BUFFER);
    if (!buffer.is_open()) return false;
    file.rdbuf()->swap(buffer);
    file.clear();
    return true;
}

#else

namespace
{

template <class Buffer>
auto open(Buffer& buffer, int descriptor, std::ios::openmode mode, int)
    -> decltype(buffer.__open(descriptor, mode))
{
    return buffer.__open(descriptor, mode);
}

// Without access to the standard library's buffer no descriptor can be adopted.
template <class Buffer> Buffer* open(Buffer&, int, std::ios::openmode, long)
{
    return nullptr;
}

} // namespace

bool adoptDescriptor(std::ofstream& file, int descriptor, std::ios::openmode mode)
{
    file.rdbuf()->pubsetbuf(nullptr, 0);
    if (!open(*file.rdbuf(), descriptor, mode | std::ios::out, 0)) return false;
    file.clear();
    return true;
}

#endif

} // namespace Zu::Compiler
