#include "appZlib/lgServiceGzip.h"

#include "app/lgService.h"
#include "app/lgServiceCompressor.h"
#include "base/lgEvent.h"
#include "support/fileTest.h"
#include "support/runningLogger.h"
#include "support/tempDir.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <filesystem>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <thread>
#include <zlib.h>

ZU_DEFINE_LOG_GROUP(Gzip);

namespace
{

using Zu::LgServiceCompressor;

// What zlib's own reader of such files makes of it; "damaged" if it refuses it.
std::string read(const std::string& path)
{
    const gzFile file = gzopen(path.c_str(), "rb");
    std::string text;
    char block[4096];
    int given = 0;
    while ((given = gzread(file, block, sizeof block)) > 0)
        text.append(block, static_cast<std::size_t>(given));
    const bool isPlain = gzdirect(file) != 0;
    return gzclose(file) != Z_OK || given < 0 || isPlain ? "damaged" : text;
}

// Compresses a text that is handed over in pieces of this size.
std::string compressed(const std::string& text, std::size_t piece)
{
    const std::unique_ptr<LgServiceCompressor> compressor = LgServiceCompressor::getFactory()();
    std::string result;
    for (std::size_t at = 0; at < text.size(); at += piece)
        EXPECT_TRUE(
            compressor->add(text.data() + at, std::min(piece, text.size() - at), false, result));
    EXPECT_TRUE(compressor->add(nullptr, 0, true, result));
    return result;
}

TEST(LgServiceGzip, IsTheCompressorOfAProgramThatIncludesIt)
{
    const auto before = LgServiceCompressor::getFactory();
    ASSERT_NE(before, nullptr);
    LgServiceCompressor::setFactory(nullptr);
    EXPECT_TRUE(Zu::LgServiceGzip::use());
    EXPECT_EQ(LgServiceCompressor::getFactory(), before);
}

TEST(LgServiceGzip, MakesFilesThatOthersRead)
{
    const support::TempDir dir;
    const std::string file = dir.file("text.gz");
    const std::string lines(300000, 'x');
    for (const std::string& text : {std::string(), std::string("line\n"), lines,
                                    support::noise(200001), lines + support::noise(70000)})
        for (const std::size_t piece :
             {std::size_t{1000}, std::size_t{65536}, std::size_t{1} << 20})
        {
            const std::string result = compressed(text, piece);
            // The mark of the format.
            EXPECT_EQ(result.substr(0, 3), "\x1f\x8b\x08");
            support::writeFile(file, result);
            EXPECT_EQ(read(file), text);
        }
    EXPECT_LT(compressed(lines, 65536).size(), lines.size() / 100);
}

TEST(LgServiceGzip, RotatedFilesOfAServiceAreCompressed)
{
    const support::TempDir dir;
    const support::RunningLogger logger;
    ZU_START_LOG_GROUP("Gzip", Gzip);
    Zu::LgServiceOptions options;
    options._directory = dir.path();
    options._compress = true;
    options._rotateSize = 4000;
    const std::string file = dir.file("events.log");
    {
        const Zu::LgService service(options);
        for (int i = 0; i < 10; ++i)
        {
            ZU_LOG_WARNING(Gzip, "number " << i << ' ' << std::string(1000, 'x'));
            service.flush(std::chrono::minutes(10));
        }
        while (std::filesystem::exists(file + ".1") || !std::filesystem::exists(file + ".2.gz"))
            std::this_thread::yield();
    }
    std::string all = support::readFile(file);
    for (int number = 1;; ++number)
    {
        // The service may have ended before the oldest ones had their turn.
        const std::string rotated = file + "." + std::to_string(number);
        const bool isPlain = std::filesystem::exists(rotated);
        if (!isPlain && !std::filesystem::exists(rotated + ".gz")) break;
        all.insert(0, isPlain ? support::readFile(rotated) : read(rotated + ".gz"));
    }
    std::size_t place = 0;
    for (int i = 0; i < 10; ++i)
    {
        place = all.find("Gzip number " + std::to_string(i) + ' ', place);
        ASSERT_NE(place, std::string::npos) << i;
    }
    EXPECT_EQ(all.find("damaged"), std::string::npos);
    ZU_STOP_LOG_GROUP(Gzip);
}

} // namespace
