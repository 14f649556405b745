#include <mesh/files/NumberText.h>

#include <gtest/gtest.h>

#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <random>
#include <sstream>
#include <string>

namespace {

using TessaryMesh::scanNumber;

// Both ways, which must agree.
template <class T>
const char* scan(const std::string& text, T& value)
{
    const char* const last = text.c_str() + text.size();
    T quick = value;
    const char* const end = scanNumber(text.c_str(), last, value);
    EXPECT_EQ(TessaryMesh::scanNumberInText(text.c_str(), last, quick), end) << text;
    EXPECT_EQ(std::memcmp(&quick, &value, sizeof(T)), 0) << text;
    return end;
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

// Digits of all numbers, and those next to the midpoint of two floats, where rounding twice would show.
TEST(NumberText, ReadsShortNumbersAsTheLibraryDoes)
{
    std::mt19937 random(3);
    const auto digits = [&random](unsigned most) {
        std::string text;
        for (unsigned i = random() % (most + 1); i > 0; --i)
            text += static_cast<char>('0' + random() % 10);
        return text;
    };
    for (int i = 0; i < 200000; ++i) {
        std::string text = (random() % 2 ? "-" : "") + digits(11) + (random() % 4 ? "." : "");
        text += digits(11);
        if (i % 4 == 0) {
            const float low = std::ldexp(static_cast<float>(random()), -40);
            const double middle = (low + double(std::nextafter(low, 1e9f))) / 2;
            char exact[64];
            std::snprintf(exact, sizeof exact, "%.*f", static_cast<int>(random() % 19), middle);
            text = exact;
        }
        float real = 7;
        double wide = 7;
        scan(text, real);
        scan(text, wide);
    }
}

TEST(NumberText, WritesFloatsAsTheLibraryDoes)
{
    char ours[TessaryMesh::kNumberTextSize], theirs[TessaryMesh::kNumberTextSize];
    const auto check = [&](float value) {
        char* const end = TessaryMesh::formatNumber(ours, value);
        const std::string_view expected(
            theirs, std::to_chars(theirs, theirs + sizeof theirs, value).ptr - theirs);
        ASSERT_EQ(std::string_view(ours, end - ours), expected);
    };
    for (std::uint64_t bits = 0; bits < 0x100000000; bits += 9973) {
        const auto word = static_cast<std::uint32_t>(bits);
        float value;
        std::memcpy(&value, &word, sizeof value);
        check(value);
    }
    for (int exponent = -40; exponent < 30; ++exponent)  // powers of two, and of ten
        for (const float value : {std::ldexp(1.0f, exponent), std::pow(10.0f, exponent * 0.5f)})
            for (const float near : {0.0f, value, 1e9f})
                check(std::nextafter(value, near));
}

}  // namespace
