#include <mesh/files/NumberText.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <random>
#include <sstream>
#include <string>

namespace {

using TessaryMesh::scanNumber;

template <class T>
const char* scan(const std::string& text, T& value)
{
    return scanNumber(text.data(), text.data() + text.size(), value);
}

// Value and length are those of strtof or strtod.
template <class T>
void expectLikeTheCLibrary(const std::string& text)
{
    char* end = nullptr;
    const T expected = static_cast<T>(sizeof(T) == sizeof(float) ? std::strtof(text.c_str(), &end)
                                                                 : std::strtod(text.c_str(), &end));
    T value = 0;
    EXPECT_EQ(scan(text, value), end) << text;
    EXPECT_EQ(std::memcmp(&value, &expected, sizeof(T)), 0)
        << text << " gave " << value << " instead of " << expected;
}

std::string printed(const char* format, int precision, double value)
{
    char text[400];
    std::snprintf(text, sizeof text, format, precision, value);
    return text;
}

TEST(NumberText, ReadsTheNearestValueOfEveryForm)
{
    std::istringstream forms(
        "1 -0 +1 5. .5 -.5 1.e+10 1e5 1E-5 1e 1e+ 3.1+e2 inf -Infinity 1e40 -1e40 1e-50 "
        "1e999999999999 1e-999999999999 0e999999999999 0.000000000000000000000000001e30 "
        "123456789012345678901234567890 3.4028235677973366e38 3.4028235677973367e38 "
        "1.17549429e-38 7.0064923216240853e-46 7.0064923216240862e-46 16777217 "
        "16777217.0000000001 9007199254740993 9007199254740993.0000000001");
    for (std::string text; forms >> text;) {
        expectLikeTheCLibrary<float>(text);
        expectLikeTheCLibrary<double>(text);
    }
}

// Half-way cases between two floats are where a detour through double would show.
TEST(NumberText, ReadsTheNearestValueOfRandomNumbers)
{
    std::mt19937_64 random(7);
    for (int i = 0; i < 100000; ++i) {
        const std::uint64_t bits = random();
        float single;
        double twice;
        std::memcpy(&single, &bits, sizeof single);
        std::memcpy(&twice, &bits, sizeof twice);
        if (!std::isfinite(single) || !std::isfinite(twice))
            continue;
        const double halfWay = (static_cast<double>(single) + std::nextafter(single, 1e38f)) / 2;
        for (const std::string& text :
             {printed("%.*g", 1 + i % 12, single), printed("%.*g", 1 + i % 20, twice),
              printed("%.*g", 15 + i % 40, halfWay), printed("%.*f", i % 9, i * 0.37)}) {
            expectLikeTheCLibrary<float>(text);
            expectLikeTheCLibrary<double>(text);
        }
        if (HasFailure())
            return;
    }
}

TEST(NumberText, RefusesWhatIsNoNumberAndLeavesTheValue)
{
    for (const char* text : {"", "-", "+", ".", "-.", "--1", "+-1", "e5", "x"}) {
        float real = 7;
        int integer = 7;
        EXPECT_FALSE(scan(text, real) || scan(text, integer)) << text;
        EXPECT_TRUE(real == 7 && integer == 7) << text;
    }
    const std::string hexadecimal = "0x10";
    float value = 7;
    EXPECT_EQ(scan(hexadecimal, value), hexadecimal.data() + 1);
    EXPECT_EQ(value, 0);
}

TEST(NumberText, ReadsIntegersThatFit)
{
    const auto valueOf = [](const char* text, auto value) {
        return scan(text, value) ? static_cast<int>(value) : -1000;
    };
    EXPECT_EQ(valueOf("+5", 0), 5);
    EXPECT_EQ(valueOf("-5x", 0), -5);
    EXPECT_EQ(valueOf("255", static_cast<unsigned char>(0)), 255);
    EXPECT_EQ(valueOf("256", static_cast<unsigned char>(0)), -1000);
    EXPECT_EQ(valueOf("-1", 0u), -1000);
    EXPECT_EQ(valueOf("-32768", static_cast<short>(0)), -32768);
    EXPECT_EQ(valueOf("99999999999999999999", 0LL), -1000);
}

TEST(NumberText, WritesWhatReadsBackTheSame)
{
    std::mt19937 random(3);
    for (int i = 0; i < 100000; ++i) {
        const std::uint32_t bits = random();
        float value, back = 0;
        std::memcpy(&value, &bits, sizeof value);
        std::string text;
        TessaryMesh::appendNumber(text, value);
        ASSERT_EQ(scan(text, back), text.data() + text.size());
        ASSERT_TRUE(std::isnan(value) ? std::isnan(back) : value == back) << text;
    }
    std::string text;
    TessaryMesh::appendNumber(text, 0.1f);
    TessaryMesh::appendNumber(text += ' ', static_cast<signed char>(-7));
    TessaryMesh::appendNumber(text += ' ', 4000000000u);
    EXPECT_EQ(text, "0.1 -7 4000000000");
}

}  // namespace
