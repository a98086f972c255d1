#include <gmock/gmock.h>

#include <fstream>

#include "host/Quillon.h"

namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

TEST(Describe, PrintsArgumentsStatusesAndOutput) {
    const Ended ended = quillon({"describe", "getUVsMask"});
    EXPECT_EQ(ended.exitStatus, 0);
    EXPECT_THAT(ended.out, StartsWith("### getUVsMask\n\nWrites a mesh once per tile"));
    for (const char* part :
         {"| `text` | mesh |\n", "| `value` | naming mode 0 to 3. ",
          "| `buffer1` | output path |\n", "| *n* ≥ 0 | success | *n* tiles were written |\n",
          "| -1760 | failure | ", "| -19 | failure | ", "| 1501 + *k* | failure | ",
          "| -9 | failure | `text` or `buffer1` is null, or there is too little memory "
          "|\n",
          "$ quillon call getUVsMask model.Vemo", "\nWhen it fails: "})
        EXPECT_THAT(ended.out, HasSubstr(part));
}

TEST(Describe, TheReferenceHasASectionForEveryExport) {
    const std::string page = quillon({"reference"}).out;
    std::ifstream list(QUILLON_EXPORT_LIST);
    int exports = 0;
    for (std::string name; std::getline(list, name) && !name.starts_with("_Z"); ++exports)
        EXPECT_THAT(page, HasSubstr("\n### " + name + "\n"));
    EXPECT_EQ(exports, 34);
    EXPECT_THAT(page, HasSubstr("| -9 | failure | `text` is null, `value` is not channels 1 "
                                "or 3, or there is too little memory |\n"));
}

}  // namespace
