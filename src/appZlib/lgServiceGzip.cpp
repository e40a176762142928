#include "appZlib/lgServiceGzip.h"

#include "app/lgServiceCompressor.h"

#include <cstddef>
#include <limits>
#include <memory>
#include <string>
#include <zlib.h>

namespace Zu
{

namespace
{

class Gzip : public LgServiceCompressor
{
public:
    Gzip()
    {
        constexpr int WINDOW_BITS = 15;
        constexpr int WITH_GZIP_HEADER = 16;
        constexpr int MEMORY_LEVEL = 8;
        _isReady =
            deflateInit2(&_stream, Z_DEFAULT_COMPRESSION, Z_DEFLATED,
                         WINDOW_BITS + WITH_GZIP_HEADER, MEMORY_LEVEL, Z_DEFAULT_STRATEGY) == Z_OK;
    }

    ~Gzip() override
    {
        if (_isReady) deflateEnd(&_stream);
    }

    bool isReady() const
    {
        return _isReady;
    }

    bool add(const char* data, std::size_t size, bool isLast, std::string& out) override
    {
        if (size > std::numeric_limits<uInt>::max()) return false;
        // The library's interface does not say const; it only reads.
        _stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(data));
        _stream.avail_in = static_cast<uInt>(size);
        Bytef room[16384];
        do
        {
            _stream.next_out = room;
            _stream.avail_out = sizeof room;
            const int result = deflate(&_stream, isLast ? Z_FINISH : Z_NO_FLUSH);
            if (result == Z_STREAM_ERROR) return false;
            out.append(reinterpret_cast<const char*>(room), sizeof room - _stream.avail_out);
            if (result == Z_STREAM_END) return true;
        } while (_stream.avail_out == 0);
        return !isLast && _stream.avail_in == 0;
    }

private:
    z_stream _stream = {};
    bool _isReady = false;
};

std::unique_ptr<LgServiceCompressor> makeGzip()
{
    auto compressor = std::make_unique<Gzip>();
    if (!compressor->isReady()) return nullptr;
    return compressor;
}

} // namespace

bool LgServiceGzip::use() noexcept
{
    LgServiceCompressor::setFactory(&makeGzip);
    return true;
}

} // namespace Zu
