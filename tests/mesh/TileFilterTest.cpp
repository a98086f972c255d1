#include "mesh/TileFilter.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

TileFilter filterOf(std::string_view text) {
    TileFilter filter;
    filter.add(text);
    return filter;
}

// Of the numbers 0 to 20 and a few others, those that the filter lists.
std::vector<std::string> listed(std::string_view text) {
    const TileFilter filter = filterOf(text);
    std::vector<std::string> names;
    for (int i = 0; i <= 20; ++i)
        names.push_back(std::to_string(i));
    names.insert(names.end(), {"-5", "05", "1001", "2147483647", "u0v0", "5\r"});
    std::erase_if(names, [&](const std::string& name) { return !filter.contains(name); });
    return names;
}

using Names = std::vector<std::string>;

struct FilterCase {
    std::string_view text;
    Names listed;
};

TEST(TileFilter, ListsNamesAndRanges) {
    const FilterCase cases[] = {
        {"3", {"3"}},
        {"3-6, 11", {"3", "4", "5", "6", "11"}},
        {" 3 - 5 ,1 1", {"3", "4", "5", "11"}},
        {"1\n2,4\n", {"1", "2", "4"}},
        {",,7,,\n\n,9", {"7", "9"}},
        {"6-3", {}},
        {"4-4", {"4"}},
        {"u0v0", {"u0v0"}},
        {"05", {"05"}},
        {"5-6\r\n", {"5", "6"}},
        {"5\r\n", {"5\r"}},
        {"\t3-4x", {"3", "4"}},
        {"+3-+4", {"3", "4"}},
        {"-2", {"0", "1", "2"}},
        {"3-", {}},
        {"x-2", {"0", "1", "2"}},
        {"3-5-9", {"3", "4", "5"}},
        {"3--5", {}},
        {"8-9,2-3,3-4,8-8", {"2", "3", "4", "8", "9"}},
        {"2147483646-99999999999", {"2147483647"}},
        {"2-5,3-4", {"2", "3", "4", "5"}},
        {"0-+-5", {"0"}},
        {"3--99999999999", {}},
    };
    for (const FilterCase& test : cases)
        EXPECT_EQ(listed(test.text), test.listed) << test.text;
}

TEST(TileFilter, ARangeOfEveryNumberCostsNothing) {
    const TileFilter filter = filterOf("1-2147483647");
    EXPECT_TRUE(filter.contains("1"));
    EXPECT_TRUE(filter.contains("1073741824"));
    EXPECT_TRUE(filter.contains("2147483647"));
    EXPECT_FALSE(filter.contains("0"));
    EXPECT_FALSE(filter.contains("2147483648"));
    EXPECT_FALSE(filter.contains("01001"));
}

TEST(TileFilter, IsEmptyUntilSomethingIsListed) {
    EXPECT_TRUE(filterOf("").isEmpty());
    EXPECT_TRUE(filterOf(" , \n,").isEmpty());
    EXPECT_TRUE(filterOf("9-1").isEmpty());
    EXPECT_FALSE(filterOf("9").isEmpty());
    EXPECT_FALSE(filterOf("1-9").isEmpty());
}

TEST(TileFilter, ClearForgetsNamesAndRanges) {
    TileFilter filter = filterOf("1, 3-5");
    filter.clear();
    EXPECT_TRUE(filter.isEmpty());
    EXPECT_FALSE(filter.contains("1"));
    EXPECT_FALSE(filter.contains("4"));
}

}  // namespace
