#include <mesh/files/NumberText.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <limits>
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
    T value = 7;
    EXPECT_EQ(scan(text, value), end) << text;
    EXPECT_EQ(std::memcmp(&value, &expected, sizeof(T)), 0) << text << " gave " << value;
}

TEST(NumberText, ReadsTheNearestValueOfEveryForm)
{
    std::istringstream forms(
        "1 -0 +1 5. .5 -.5 +.5 1.e+10 1E-5 1e 1e+ 3.1+e2 inf +inf -Infinity nan -NaN 1e40 -1e40 "
        "1e-50 -1e-400 1e999999999999 -1e-999999999999 0e999999999999 16777217.0000000001");
    for (std::string text; forms >> text;) {
        expectLikeTheCLibrary<float>(text);
        expectLikeTheCLibrary<double>(text);
    }
    float value = 7;
    const std::string hexadecimal = "0x10";
    EXPECT_EQ(scan(hexadecimal, value), hexadecimal.data() + 1);
}

TEST(NumberText, RefusesWhatIsNoNumberAndLeavesTheValue)
{
    for (const char* text : {"", "-", "+", ".", "-.", "--1", "+-1", "++1", "e5", " 1", "x"}) {
        double real = 7;
        int integer = 7;
        EXPECT_FALSE(scan(text, real) || scan(text, integer)) << text;
        EXPECT_TRUE(real == 7 && integer == 7) << text;
    }
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

TEST(NumberText, WritesTheShortestTextThatReadsBackTheSame)
{
    std::string text;
    for (const float value : {0.1f, 16777216.0f, -0.0f, 3e38f, 1e-45f})
        TessaryMesh::appendNumber(text += ' ', value);
    TessaryMesh::appendNumber(text += ' ', 0.1);
    TessaryMesh::appendNumber(text += ' ', static_cast<signed char>(-7));
    TessaryMesh::appendNumber(text += ' ', 4000000000u);
    TessaryMesh::appendNumber(text += ' ', std::numeric_limits<double>::infinity());
    EXPECT_EQ(text, " 0.1 16777216 -0 3e+38 1e-45 0.1 -7 4000000000 inf");
}

}  // namespace
