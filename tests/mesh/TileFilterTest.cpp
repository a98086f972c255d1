#include "mesh/TileFilter.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

// Of the numbers 0 to 20 and a few others, those that the filter lists.
std::vector<std::string> listed(std::string_view text) {
    TileFilter filter;
    filter.add(text);
    std::vector<std::string> names;
    for (int i = 0; i <= 20; ++i)
        names.push_back(std::to_string(i));
    names.insert(names.end(), {"-5", "05", "2147483647", "2147483648", "u0v0", "5\r"});
    std::erase_if(names, [&](const std::string& name) { return !filter.contains(name); });
    return names;
}

TEST(TileFilter, ListsNamesAndRanges) {
    const struct {
        std::string_view text;
        std::vector<std::string> listed;
    } cases[] = {
        {"3", {"3"}},
        {"3-6, 11", {"3", "4", "5", "6", "11"}},
        {" 3 - 5 ,1 1", {"3", "4", "5", "11"}},
        {"1\n2,4\n", {"1", "2", "4"}},
        {",,7,,\n\n,9", {"7", "9"}},
        {"6-3", {}},
        {"4-4", {"4"}},
        {"u0v0", {"u0v0"}},
        {"05", {"05"}},
        {"2147483647,2147483648", {"2147483647", "2147483648"}},
        {"4,3,3-4,4,20", {"3", "4", "20"}},
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
        {"19-2147483647", {"19", "20", "2147483647"}},  // kept as a range
        {"2147483646-99999999999", {"2147483647"}},
        {"2-5,3-4", {"2", "3", "4", "5"}},
        {"0-+-5", {"0"}},
        {"3--99999999999", {}},
    };
    for (const auto& test : cases)
        EXPECT_EQ(listed(test.text), test.listed) << test.text;
}

}  // namespace
