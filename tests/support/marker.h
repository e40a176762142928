// Files by which two processes inform each other of their progress.

#ifndef ZU_TESTS_MARKER_H
#define ZU_TESTS_MARKER_H

#include <chrono>
#include <fstream>
#include <string>
#include <thread>

namespace support
{

// The limit of a hang; a working test never comes near it.
inline constexpr std::chrono::seconds PATIENCE(120);

inline void setMarker(const std::string& file)
{
    std::ofstream(file) << "set";
}

inline bool isMarked(const std::string& file)
{
    return std::ifstream(file).is_open();
}

// Waits until the marker exists; false if it does not appear.
inline bool awaitMarker(const std::string& file)
{
    const auto end = std::chrono::steady_clock::now() + PATIENCE;
    while (!isMarked(file))
    {
        if (std::chrono::steady_clock::now() > end) return false;
        std::this_thread::yield();
    }
    return true;
}

} // namespace support

#endif
