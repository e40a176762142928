/// @file
/// The generator matrices of the Niederreiter sequence. Internal to the library.

#ifndef ZU_BASE_RNNIEDERREITERTABLES_H
#define ZU_BASE_RNNIEDERREITERTABLES_H

#include <cstdint>

/// Everything is computed at compile time.
namespace Zu::RnNiederreiterTables
{

inline constexpr int DIMENSIONS = 4;
inline constexpr int BITS = 31;
inline constexpr int BYTES = 4;
inline constexpr int BYTE_VALUES = 256;

/// A polynomial over the field of two elements; bit k is the coefficient of x^k.
using Polynomial = std::uint64_t;

/// One for each dimension, irreducible.
inline constexpr Polynomial POLYNOMIALS[DIMENSIONS] = {0b10, 0b11, 0b111, 0b1011};

constexpr int degreeOf(Polynomial polynomial)
{
    int degree = -1;
    for (; polynomial != 0; polynomial >>= 1) ++degree;
    return degree;
}

constexpr Polynomial product(Polynomial a, Polynomial b)
{
    Polynomial result = 0;
    for (; b != 0; b >>= 1, a <<= 1)
        if (b & 1) result ^= a;
    return result;
}

/// The words of one dimension, by the bits of the point's number. Row 0 of a column is bit 30.
struct Columns
{
    std::uint32_t _words[32] = {};
};

/// The numbers v of the construction, for a power of the dimension's polynomial.
struct Recurrence
{
    bool _v[2 * BITS + 8] = {};

    constexpr Recurrence(Polynomial power, int lowerDegree)
    {
        const int degree = degreeOf(power);
        for (int r = lowerDegree; r < degree; ++r) _v[r] = true;
        for (int r = 0; r + degree < 2 * BITS + 8; ++r)
        {
            bool sum = false;
            for (int k = 0; k < degree; ++k) sum ^= (power >> k & 1) != 0 && _v[r + k];
            _v[r + degree] = sum;
        }
    }
};

constexpr Columns columnsOf(Polynomial polynomial)
{
    Columns columns;
    const int step = degreeOf(polynomial);
    Polynomial power = 1;
    for (int row = 0; row < BITS;)
    {
        const int lowerDegree = degreeOf(power);
        power = product(power, polynomial);
        const Recurrence recurrence(power, lowerDegree);
        for (int u = 0; u < step && row < BITS; ++u, ++row)
            for (int column = 0; column < BITS; ++column)
                if (recurrence._v[column + u]) columns._words[column] |= 1U << (BITS - 1 - row);
    }
    return columns;
}

inline constexpr Columns COLUMNS[DIMENSIONS] = {
    columnsOf(POLYNOMIALS[0]), columnsOf(POLYNOMIALS[1]), columnsOf(POLYNOMIALS[2]),
    columnsOf(POLYNOMIALS[3])};

/// What each value of each byte of a point's number contributes: a point takes four look-ups.
struct ByteTable
{
    std::uint32_t _words[BYTES][BYTE_VALUES][DIMENSIONS] = {};
};

constexpr ByteTable makeByteTable()
{
    ByteTable table;
    for (int byte = 0; byte < BYTES; ++byte)
        for (int value = 1; value < BYTE_VALUES; ++value)
        {
            int lowest = 0;
            while ((value >> lowest & 1) == 0) ++lowest;
            for (int d = 0; d < DIMENSIONS; ++d)
                table._words[byte][value][d] = table._words[byte][value & (value - 1)][d] ^
                                               COLUMNS[d]._words[8 * byte + lowest];
        }
    return table;
}

/// The low byte's part once more, with the values of a dimension side by side.
struct LowTable
{
    std::uint32_t _words[DIMENSIONS][BYTE_VALUES] = {};
};

constexpr LowTable makeLowTable(const ByteTable& bytes)
{
    LowTable table;
    for (int d = 0; d < DIMENSIONS; ++d)
        for (int value = 0; value < BYTE_VALUES; ++value)
            table._words[d][value] = bytes._words[0][value][d];
    return table;
}

inline constexpr ByteTable BYTE_TABLE = makeByteTable();
inline constexpr LowTable LOW_TABLE = makeLowTable(BYTE_TABLE);

} // namespace Zu::RnNiederreiterTables

#endif
