// A compressor for tests, whose result can be read.

#ifndef ZU_TESTS_APP_BRACKETS_H
#define ZU_TESTS_APP_BRACKETS_H

#include "app/lgServiceCompressor.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <string>

namespace support
{

// Puts brackets around a file.
class Brackets : public Zu::LgServiceCompressor
{
public:
    // What happens while a file is compressed; returns whether the compressor goes on.
    inline static std::function<bool()> meanwhile;

    bool add(const char* data, std::size_t size, bool isLast, std::string& out) override
    {
        if (!_hasBegun) out += '[';
        _hasBegun = true;
        out.append(data, size);
        if (isLast) out += ']';
        return !isLast || !meanwhile || meanwhile();
    }

    static std::unique_ptr<Zu::LgServiceCompressor> make()
    {
        return std::make_unique<Brackets>();
    }

private:
    bool _hasBegun = false;
};

} // namespace support

#endif
