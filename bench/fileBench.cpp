// Files and directories, compared with the bare system calls.

#include "base/osDirectory.h"
#include "base/osFileReader.h"
#include "base/osFileTools.h"
#include "base/osFileWriter.h"

#include <benchmark/benchmark.h>
#include <cstdlib>
#include <dirent.h>
#include <fcntl.h>
#include <string>
#include <unistd.h>
#include <vector>

namespace
{

constexpr std::uint32_t CHUNK = 65536;
constexpr std::int64_t SIZE = 64 << 20;
constexpr std::int64_t COPY_SIZE = 256 << 20;
constexpr int ENTRIES = 10000;

// A directory that is removed at the end of the program.
class Place
{
public:
    Place() : _path("fileBench.tmp")
    {
        if (Zu::OsFile(_path).exists()) Zu::OsFileTools::removeWithAllContents(_path);
        Zu::OsDirectory(_path).create(Zu::OsFileTypes::Permissions(7, 5, 5));
    }

    ~Place()
    {
        Zu::OsFileTools::removeWithAllContents(_path);
    }

    Zu::OsFilePath file(const char* name) const
    {
        return _path + name;
    }

private:
    Zu::OsFilePath _path;
};

const Place& place()
{
    static const Place thePlace;
    return thePlace;
}

const std::vector<char>& chunk()
{
    static const std::vector<char> theChunk(CHUNK, 'x');
    return theChunk;
}

void fill(const Zu::OsFilePath& path, std::int64_t size)
{
    Zu::OsFileWriter writer(path, {}, false);
    for (std::int64_t done = 0; done < size; done += CHUNK) writer.write(chunk().data(), CHUNK);
}

const Zu::OsFilePath& filled(const char* name, std::int64_t size)
{
    static Zu::OsFilePath path;
    path = place().file(name);
    if (!Zu::OsFile(path).exists()) fill(path, size);
    return path;
}

void setBytes(benchmark::State& state, std::int64_t size)
{
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * size);
}

void readFile(benchmark::State& state)
{
    const Zu::OsFilePath path = filled("read", SIZE);
    std::vector<char> buffer(CHUNK);
    for (auto _ : state)
    {
        Zu::OsFileReader reader(path);
        while (reader.read(buffer.data(), CHUNK) != 0) benchmark::ClobberMemory();
    }
    setBytes(state, SIZE);
}

void readBare(benchmark::State& state)
{
    const Zu::OsFilePath path = filled("read", SIZE);
    std::vector<char> buffer(CHUNK);
    for (auto _ : state)
    {
        const int file = open(path.getChars(), O_RDONLY | O_CLOEXEC);
        while (read(file, buffer.data(), CHUNK) > 0) benchmark::ClobberMemory();
        close(file);
    }
    setBytes(state, SIZE);
}

void writeFile(benchmark::State& state)
{
    const Zu::OsFilePath path = place().file("write");
    for (auto _ : state) fill(path, SIZE);
    setBytes(state, SIZE);
}

void writeBare(benchmark::State& state)
{
    const Zu::OsFilePath path = place().file("write");
    for (auto _ : state)
    {
        const int file = open(path.getChars(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
        for (std::int64_t done = 0; done < SIZE; done += CHUNK)
            if (write(file, chunk().data(), CHUNK) != CHUNK) std::abort();
        close(file);
    }
    setBytes(state, SIZE);
}

void copyFile(benchmark::State& state)
{
    const Zu::OsFilePath source = filled("copySource", COPY_SIZE);
    const Zu::OsFilePath target = place().file("copyTarget");
    for (auto _ : state) Zu::OsFile(source).copyTo(target);
    setBytes(state, COPY_SIZE);
}

void copyBare(benchmark::State& state)
{
    const Zu::OsFilePath source = filled("copySource", COPY_SIZE);
    const Zu::OsFilePath target = place().file("copyTarget");
    std::vector<char> buffer(CHUNK);
    for (auto _ : state)
    {
        const int from = open(source.getChars(), O_RDONLY | O_CLOEXEC);
        const int to = open(target.getChars(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
        for (;;)
        {
            const ssize_t count = read(from, buffer.data(), CHUNK);
            if (count <= 0) break;
            if (write(to, buffer.data(), static_cast<std::size_t>(count)) != count) std::abort();
        }
        close(to);
        close(from);
    }
    setBytes(state, COPY_SIZE);
}

const Zu::OsFilePath& fullDirectory()
{
    static const Zu::OsFilePath path = []
    {
        const Zu::OsFilePath directory = place().file("entries");
        Zu::OsDirectory(directory).create(Zu::OsFileTypes::Permissions(7, 5, 5));
        for (int i = 0; i < ENTRIES; ++i)
            Zu::OsFile(directory + ("entry" + std::to_string(i) + ".txt").c_str()).create({}, true);
        return directory;
    }();
    return path;
}

void listDirectory(benchmark::State& state)
{
    const Zu::OsDirectory directory(fullDirectory());
    for (auto _ : state)
        benchmark::DoNotOptimize(
            directory.getChildrenPath(Zu::OsFileTypes::PathFull, Zu::OsPassThroughFilter()));
}

// Makes the same paths as the library: one for the filter, one for the list.
void listBare(benchmark::State& state)
{
    const Zu::OsFilePath path = fullDirectory();
    for (auto _ : state)
    {
        Zu::Vector<Zu::OsFilePath> paths;
        DIR* const directory = opendir(path.getChars());
        while (const dirent* const entry = readdir(directory))
        {
            if (entry->d_name[0] == '.') continue;
            const Zu::OsFilePath child = path + static_cast<const char*>(entry->d_name);
            benchmark::DoNotOptimize(child.getChars());
            paths.push_back(path + static_cast<const char*>(entry->d_name));
        }
        closedir(directory);
        benchmark::DoNotOptimize(paths);
    }
}

BENCHMARK(readFile)->Unit(benchmark::kMillisecond);
BENCHMARK(readBare)->Unit(benchmark::kMillisecond);
BENCHMARK(writeFile)->Unit(benchmark::kMillisecond);
BENCHMARK(writeBare)->Unit(benchmark::kMillisecond);
BENCHMARK(copyFile)->Unit(benchmark::kMillisecond);
BENCHMARK(copyBare)->Unit(benchmark::kMillisecond);
BENCHMARK(listDirectory)->Unit(benchmark::kMillisecond);
BENCHMARK(listBare)->Unit(benchmark::kMillisecond);

} // namespace
