#include "app/lgServiceCompressor.h"

#include <atomic>

namespace Zu
{

namespace
{

// Set before main, by the objects of any source.
constinit std::atomic<LgServiceCompressor::Factory> theFactory{nullptr};

} // namespace

LgServiceCompressor::~LgServiceCompressor() = default;

void LgServiceCompressor::setFactory(Factory factory) noexcept
{
    theFactory = factory;
}

LgServiceCompressor::Factory LgServiceCompressor::getFactory() noexcept
{
    return theFactory;
}

} // namespace Zu
