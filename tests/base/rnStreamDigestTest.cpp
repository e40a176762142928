// The bits of whole streams, as digests computed by a program in another language from the rules of
// IEEE 754 alone. They are the same on every platform and at every optimisation level.

#include "base/rnHistogram.h"
#include "base/rnHistogramRng.h"
#include "base/rnLecuyerUniformRng.h"
#include "base/rnMexicanHatRng.h"
#include "base/rnNiederreiterMultiRng.h"
#include "base/rnNumRecUniformRng.h"
#include "base/rnVanDerCorputRng.h"

#include <cstdint>
#include <cstring>
#include <gtest/gtest.h>
#include <type_traits>
#include <vector>

namespace
{

constexpr unsigned int LENGTH = 20000;

// FNV-1a over the bytes of the samples, in their order.
class Digest
{
public:
    template <class T> void add(T value)
    {
        unsigned char bytes[sizeof value];
        std::memcpy(bytes, &value, sizeof value);
        for (const unsigned char byte : bytes) _value = (_value ^ byte) * 0x100000001b3;
    }

    std::uint64_t value() const
    {
        return _value;
    }

private:
    std::uint64_t _value = 0xcbf29ce484222325;
};

// The expectations for `float` and `double`.
template <class T> void expectDigest(const Digest& digest, std::uint64_t single, std::uint64_t both)
{
    EXPECT_EQ(digest.value(), (std::is_same_v<T, float> ? single : both));
}

// Two sources of the same state: by single draws and as a sequence.
template <class T>
void expectStream(Zu::RnRng<T>& draws, Zu::RnRng<T>& sequence, std::uint64_t single,
                  std::uint64_t both)
{
    Digest ofDraws;
    for (unsigned int i = 0; i < LENGTH; ++i) ofDraws.add(draws());
    expectDigest<T>(ofDraws, single, both);
    std::vector<T> values(LENGTH);
    sequence.getSequence(LENGTH, values.data());
    Digest ofSequence;
    for (const T value : values) ofSequence.add(value);
    expectDigest<T>(ofSequence, single, both);
}

template <class T> class RnStreamDigestTest : public testing::Test
{
};

using Types = testing::Types<float, double>;
TYPED_TEST_SUITE(RnStreamDigestTest, Types);

TYPED_TEST(RnStreamDigestTest, OfTheCombinedGenerator)
{
    Zu::RnLecuyerUniformRng<TypeParam> draws;
    Zu::RnLecuyerUniformRng<TypeParam> sequence;
    expectStream<TypeParam>(draws, sequence, 0x0a1e5c3518189b55, 0x415558a8d70fc6ca);
}

TYPED_TEST(RnStreamDigestTest, OfTheShufflingGenerator)
{
    Zu::RnNumRecUniformRng<TypeParam> draws(7);
    Zu::RnNumRecUniformRng<TypeParam> sequence(7);
    expectStream<TypeParam>(draws, sequence, 0x7c5db0a10cf92c0c, 0xbd2cd36ccf83d79e);
}

TYPED_TEST(RnStreamDigestTest, OfRadicalInversesBehind2To25)
{
    const struct
    {
        unsigned int _base;
        std::uint64_t _single;
        std::uint64_t _double;
    } rows[] = {{2, 0xac80a210c361c6bd, 0x863e84762761cefc},
                {3, 0xcc905b21446d33a6, 0x81234d77e49809a3},
                {5, 0xd443977a43be2221, 0xc69f0700bb5e0d61},
                {7, 0x2be96a83923b10e2, 0x3f75d83fb4750b68}};
    for (const auto& row : rows)
    {
        Zu::RnVanDerCorputRng<TypeParam> draws(row._base);
        Zu::RnVanDerCorputRng<TypeParam> sequence(row._base);
        draws.restart(1U << 25);
        sequence.restart(1U << 25);
        expectStream<TypeParam>(draws, sequence, row._single, row._double);
    }
}

TYPED_TEST(RnStreamDigestTest, OfTheNiederreiterSequence)
{
    Zu::RnNiederreiterMultiRng<TypeParam> draws;
    Zu::RnNiederreiterMultiRng<TypeParam> sequence;
    std::vector<TypeParam> coordinates[4];
    TypeParam* arrays[4];
    for (int d = 0; d < 4; ++d)
    {
        coordinates[d].resize(LENGTH);
        arrays[d] = coordinates[d].data();
    }
    sequence.getSequence(LENGTH, arrays);
    Digest ofDraws;
    Digest ofSequence;
    for (unsigned int i = 0; i < LENGTH; ++i)
    {
        TypeParam values[4];
        draws.getSample(values);
        for (int d = 0; d < 4; ++d)
        {
            ofDraws.add(values[d]);
            ofSequence.add(coordinates[d][i]);
        }
    }
    expectDigest<TypeParam>(ofDraws, 0x1c3db13cf895f123, 0xd0e98537c0a7356b);
    expectDigest<TypeParam>(ofSequence, 0x1c3db13cf895f123, 0xd0e98537c0a7356b);
}

TYPED_TEST(RnStreamDigestTest, OfATriangle)
{
    Zu::RnLecuyerUniformRng<TypeParam> source;
    Zu::RnLecuyerUniformRng<TypeParam> other;
    Zu::RnMexicanHatRng<TypeParam> draws(&source, TypeParam(3), TypeParam(1.5));
    Zu::RnMexicanHatRng<TypeParam> sequence(&other, TypeParam(3), TypeParam(1.5));
    expectStream<TypeParam>(draws, sequence, 0xa67655a77fd45326, 0xc4c96a317b093282);
}

TYPED_TEST(RnStreamDigestTest, OfAHistogramWithAnEmptyBin)
{
    const int weights[] = {3, 1, 0, 4, 1, 5, 9, 2, 6, 5};
    Zu::RnHistogram<TypeParam> histogram(10, TypeParam(-1), TypeParam(2));
    for (int i = 0; i < 10; ++i)
        histogram.addValue(TypeParam(-1) + TypeParam(0.3) * (TypeParam(i) + TypeParam(0.5)),
                           static_cast<TypeParam>(weights[i]));
    Zu::RnLecuyerUniformRng<TypeParam> source;
    Zu::RnLecuyerUniformRng<TypeParam> other;
    Zu::RnHistogramRng<TypeParam> draws(histogram, &source);
    Zu::RnHistogramRng<TypeParam> sequence(histogram, &other);
    expectStream<TypeParam>(draws, sequence, 0x8ce17a0f3b858cb6, 0x8c59459b2109ae51);
}

} // namespace
