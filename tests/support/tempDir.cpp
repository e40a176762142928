#include "support/tempDir.h"

#include <random>

namespace support
{

TempDir::TempDir()
{
    // Names must differ between concurrent processes, so they are random.
    std::random_device random;
    do
    {
        _path = std::filesystem::temp_directory_path() / ("zuTest" + std::to_string(random()));
    } while (!std::filesystem::create_directory(_path));
}

TempDir::~TempDir()
{
    std::error_code ignored;
    std::filesystem::remove_all(_path, ignored);
}

std::string TempDir::path() const
{
    return _path.string();
}

std::string TempDir::file(const std::string& name) const
{
    return (_path / name).string();
}

} // namespace support
