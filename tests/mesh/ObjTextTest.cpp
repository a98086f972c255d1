#include "mesh/ObjText.h"

#include <gmock/gmock.h>

#include <bit>
#include <clocale>
#include <cmath>
#include <cstdio>
#include <limits>
#include <locale>
#include <sstream>
#include <string>

#include "support/ColourBlock.h"
#include "support/Faults.h"
#include "support/TempDir.h"

namespace {

using Floats = std::numeric_limits<float>;

template <typename Add>
std::string written(Add add) {
    const TempDir dir;
    const std::string path = dir.path("text.obj");
    {
        ObjText text;
        EXPECT_TRUE(text.create(path.c_str()));
        add(text);
    }
    const ByteList bytes = readBytes(path);
    return {bytes.begin(), bytes.end()};
}

std::string floatText(float value) {
    return written([value](ObjText& text) { text.addFloat(value); });
}

std::string colourBlock(std::size_t count) {
    const ByteList colours(4 * count, 0xAB);
    return written([&](ObjText& text) {
        text.addColourBlock(colours.data(), static_cast<std::uint32_t>(count));
    });
}

std::string repeated(std::string_view part, std::size_t count) {
    std::string text;
    while (count-- > 0)
        text += part;
    return text;
}

TEST(ObjText, FloatsHaveSixSignificantDigitsInTheirShortestForm) {
    const struct {
        float value;
        const char* text;
    } kCases[] = {
        {0.0f, "0"},
        {-0.0f, "-0"},
        {1.0f, "1"},
        {-2.5f, "-2.5"},
        {0.1f, "0.1"},
        {1.0f / 3.0f, "0.333333"},
        {123456.0f, "123456"},
        {1234567.0f, "1.23457e+06"},
        {1e6f, "1e+06"},
        {999999.5f, "1e+06"},
        {0.0001f, "0.0001"},
        {0.00001f, "1e-05"},
        {-0.000012345f, "-1.2345e-05"},
        {Floats::max(), "3.40282e+38"},
        {Floats::denorm_min(), "1.4013e-45"},
    };
    for (const auto& row : kCases)
        EXPECT_EQ(floatText(row.value), row.text);
}

TEST(ObjText, HalvesAreRoundedToEven) {
    EXPECT_EQ(floatText(100000.5f), "100000");
    EXPECT_EQ(floatText(100001.5f), "100002");
}

TEST(ObjText, InfinitiesHaveASignAndNansHaveNone) {
    EXPECT_EQ(floatText(Floats::infinity()), "inf");
    EXPECT_EQ(floatText(-Floats::infinity()), "-inf");
    EXPECT_EQ(floatText(Floats::quiet_NaN()), "nan");
    EXPECT_EQ(floatText(-Floats::quiet_NaN()), "nan");
    EXPECT_EQ(floatText(std::bit_cast<float>(0xFF800001u)), "nan");
}

// The C library prints the same values; the stride reaches every exponent.
TEST(ObjText, FloatsAreThoseOfTheCConversion) {
    std::string expected;
    const std::string text = written([&](ObjText& out) {
        for (std::uint64_t pattern = 0; pattern <= 0xFFFFFFFF; pattern += 40'009) {
            const auto value = std::bit_cast<float>(static_cast<std::uint32_t>(pattern));
            if (std::isnan(value)) continue;
            char line[32];
            std::snprintf(line, sizeof line, "%g\n", static_cast<double>(value));
            expected += line;
            out.addFloat(value);
            out.add("\n");
        }
    });
    EXPECT_TRUE(text == expected);
}

// German numbers, as a host may have set them for the whole process.
class CommaLocale {
public:
    CommaLocale() : before_(std::locale::global(std::locale(std::locale(), new Commas))) {
        std::setlocale(LC_ALL, "de_DE.UTF-8");  // stays "C" where it is not installed
    }
    CommaLocale(const CommaLocale&) = delete;
    CommaLocale& operator=(const CommaLocale&) = delete;
    ~CommaLocale() {
        std::setlocale(LC_ALL, "C");
        std::locale::global(before_);
    }

private:
    struct Commas : std::numpunct<char> {
        char do_decimal_point() const override { return ','; }
        char do_thousands_sep() const override { return '.'; }
        std::string do_grouping() const override { return "\3"; }
    };
    std::locale before_;
};

TEST(ObjText, NoLocaleChangesNumbers) {
    const CommaLocale german;
    std::ostringstream stream;
    stream << 1.5 << ' ' << 12345;
    ASSERT_EQ(stream.str(), "1,5 12.345");

    EXPECT_EQ(floatText(1.5f), "1.5");
    EXPECT_EQ(floatText(12345.5f), "12345.5");
    EXPECT_EQ(written([](ObjText& text) { text.addInteger(1234567); }), "1234567");
}

TEST(ObjText, IntegersKeepTheirSign) {
    EXPECT_EQ(written([](ObjText& text) { text.addInteger(-2147483647); }), "-2147483647");
    EXPECT_EQ(written([](ObjText& text) { text.addInteger(2147483648); }), "2147483648");
}

TEST(ObjText, ColoursAreRedGreenBlue) {
    const std::uint8_t colours[] = {0x10, 0x20, 0x30, 0x99, 0xFF, 0x00, 0x0A, 0, 1, 2, 3, 4};
    EXPECT_EQ(written([&](ObjText& text) { text.addColourBlock(colours, 3); }),
              kColourBlockStart + "#RGB  302010 0a00ff 030201\n# End of RGB block\n");
}

TEST(ObjText, ABlockWithoutColoursHasAnEmptyLine) {
    EXPECT_EQ(colourBlock(0), kColourBlockStart + "\n# End of RGB block\n");
}

TEST(ObjText, ALastRowOfColoursThatIsFullIsFollowedByAnEmptyLine) {
    const std::string row = "#RGB " + repeated(" ababab", 32) + "\n";
    EXPECT_EQ(colourBlock(32), kColourBlockStart + row + "\n# End of RGB block\n");
    EXPECT_EQ(colourBlock(64), kColourBlockStart + row + row + "\n# End of RGB block\n");
}

TEST(ObjText, The33rdColourStartsARow) {
    EXPECT_EQ(colourBlock(33), kColourBlockStart + "#RGB " + repeated(" ababab", 32) +
                                   "\n#RGB  ababab\n# End of RGB block\n");
}

// The 7 bytes of a part do not divide those of a piece.
TEST(ObjText, TextOfManyPiecesIsWrittenWhole) {
    const std::string text = written([](ObjText& out) {
        for (int i = 0; i < 100'000; ++i)
            out.add("1234567");
    });
    EXPECT_TRUE(text == repeated("1234567", 100'000));
}

TEST(ObjText, ATextLongerThanAPieceIsWrittenWhole) {
    const std::string longText = repeated("0123456789", 60'000);
    EXPECT_TRUE(written([&](ObjText& text) {
                    text.add("a");
                    text.add(longText);
                }) == "a" + longText);
}

TEST(ObjText, AFileThatCannotBeCreatedIsNotOpen) {
    const TempDir dir;
    EXPECT_FALSE(ObjText().create(dir.path("no/text.obj").c_str()));
    EXPECT_FALSE(ObjText().create(nullptr));
}

TEST(ObjText, AfterAFailureNothingMoreIsWritten) {
    const TempDir dir;
    const std::string path = dir.path("text.obj");
    {
        const FullDisk disk(100);
        ObjText text;
        EXPECT_TRUE(text.create(path.c_str()));
        text.add(repeated("0123456789", 60'000));
    }
    EXPECT_EQ(readBytes(path).size(), 100u);
}

}  // namespace
