// An alias that belongs to no package, for code that binds aliases by their keys alone.

#ifndef ZU_TESTS_FAKEALIAS_H
#define ZU_TESTS_FAKEALIAS_H

#include "base/inContextAliasBase.h"

#include <cstdint>
#include <string>
#include <utility>

namespace support
{

class FakeAlias : public Zu::InContextAliasBase
{
public:
    explicit FakeAlias(std::string key) : InContextAliasBase("fake"), _key(std::move(key)) {}

    InContextAliasBase* clone() const override
    {
        return nullptr;
    }

    std::uint32_t getPriority() const override
    {
        return 0;
    }

    const char* getKey() const override
    {
        return _key.c_str();
    }

private:
    std::string _key;
};

} // namespace support

#endif
