// Names the tests of a table by the names of its rows.

#ifndef ZU_TESTS_ROWNAME_H
#define ZU_TESTS_ROWNAME_H

#include <gtest/gtest.h>
#include <string>

namespace support
{

// For rows with a member `_name`, which is a text of letters and digits.
struct RowName
{
    template <class Row> std::string operator()(const testing::TestParamInfo<Row>& test) const
    {
        return test.param._name;
    }
};

} // namespace support

#endif
