#include "mesh/ObjText.h"

#include <gmock/gmock.h>

#include <bit>
#include <clocale>
#include <limits>
#include <locale>
#include <sstream>
#include <string>

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
    return readText(path);
}

std::string floatText(float value) {
    return written([value](ObjText& text) { text.addFloat(value); });
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
        {100000.5f, "100000"},  // halves are rounded to even
        {100001.5f, "100002"},
        {0.0001f, "0.0001"},
        {0.00001f, "1e-05"},
        {-0.000012345f, "-1.2345e-05"},
        {Floats::max(), "3.40282e+38"},
        {Floats::denorm_min(), "1.4013e-45"},
        {Floats::infinity(), "inf"},
        {-Floats::infinity(), "-inf"},
        {Floats::quiet_NaN(), "nan"},  // whatever its sign
        {-Floats::quiet_NaN(), "nan"},
        {std::bit_cast<float>(0xFF800001u), "nan"},
    };
    for (const auto& row : kCases)
        EXPECT_EQ(floatText(row.value), row.text);
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

}  // namespace
