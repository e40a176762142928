#include "scratchDir.h"

#include <random>
#include <stdexcept>
#include <system_error>

namespace fuzz
{

namespace fs = std::filesystem;

ScratchDir::ScratchDir()
{
    std::random_device random;
    for (int attempt = 0; attempt < 100; ++attempt)
    {
        _path = fs::temp_directory_path() / ("zuFuzz" + std::to_string(random()));
        if (fs::create_directory(_path)) return;
    }
    throw std::runtime_error("no scratch directory can be made");
}

ScratchDir::~ScratchDir()
{
    std::error_code ignored;
    fs::remove_all(_path, ignored);
}

std::string ScratchDir::path() const
{
    return _path.string();
}

std::string ScratchDir::file(const std::string& name) const
{
    return (_path / name).string();
}

} // namespace fuzz
