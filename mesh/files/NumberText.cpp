#include "files/NumberText.h"

#include "files/ShortestFloat.h"

#include <fast_float/fast_float.h>

#include <charconv>
#include <system_error>
#include <type_traits>

namespace TessaryMesh {
namespace {

// The parsers take a minus only.
const char* withoutPlus(const char* first, const char* last)
{
    const bool isPlus = first < last && *first == '+' && !(last - first > 1 && first[1] == '-');
    return first + isPlus;
}

template <class Float>
const char* scanFloat(const char* first, const char* last, Float& value)
{
    Float read;
    const auto [end, error] = fast_float::from_chars(first, last, read);
    if (error == std::errc::invalid_argument)
        return nullptr;
    value = read;  // infinite or zero where it is out of range
    return end;
}

template <class Integer>
const char* scanInteger(const char* first, const char* last, Integer& value)
{
    const auto [end, error] = std::from_chars(first, last, value);
    return error == std::errc() ? end : nullptr;
}

}  // namespace

template <class T>
const char* scanNumber(const char* first, const char* last, T& value)
{
    first = withoutPlus(first, last);
    if constexpr (std::is_floating_point_v<T>)
        return scanFloat(first, last, value);
    else
        return scanInteger(first, last, value);
}

template <class T>
char* formatNumber(char* out, T value)
{
    if constexpr (std::is_same_v<T, float>)
        if (char* const end = formatShortestFloat(out, value))
            return end;
    return std::to_chars(out, out + kNumberTextSize, value).ptr;
}

template <class T>
using Reference = T&;

#define TESSARY_NUMBER(T)                                                             \
    template const char* scanNumber<T>(const char*, const char*, Reference<T> value); \
    template char* formatNumber<T>(char*, T)
TESSARY_NUMBER(float);
TESSARY_NUMBER(double);
TESSARY_NUMBER(signed char);
TESSARY_NUMBER(unsigned char);
TESSARY_NUMBER(short);
TESSARY_NUMBER(unsigned short);
TESSARY_NUMBER(int);
TESSARY_NUMBER(unsigned int);
TESSARY_NUMBER(long);
TESSARY_NUMBER(unsigned long);
TESSARY_NUMBER(long long);
TESSARY_NUMBER(unsigned long long);
#undef TESSARY_NUMBER

}  // namespace TessaryMesh
