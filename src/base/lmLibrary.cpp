#include "base/lmLibrary.h"

#include "base/duplicateString.h"

namespace Zu
{

LmLibrary::LmLibrary() : LmLibrary(nullptr, "Unknown") {}

LmLibrary::LmLibrary(void* base, const char* path)
    : _base(base), _address(base), _path(duplicateString(path))
{
}

LmLibrary::LmLibrary(const LmLibrary& other)
    : _base(other._base), _address(other._address), _path(duplicateString(other._path.get())),
      _blocks(other._blocks)
{
}

LmLibrary::LmLibrary(LmLibrary&& other) noexcept = default;

LmLibrary& LmLibrary::operator=(const LmLibrary& other)
{
    if (this != &other) *this = LmLibrary(other);
    return *this;
}

LmLibrary& LmLibrary::operator=(LmLibrary&& other) noexcept = default;

LmLibrary::~LmLibrary() = default;

} // namespace Zu
