#pragma once

#include "files/ShortDecimal.h"

#include <string>
#include <type_traits>

namespace TessaryMesh {

/// Reads one number from the beginning of [first, last) into `value` and returns where it ends;
/// null, with `value` as it was, where no number begins. What may follow is the caller's business.
///
/// float, double  the nearest value, whatever the number of digits: the bits that strtof and strtod
///                give in the "C" locale. Too large is infinite, too small is zero. "5." ".5" "+1"
///                "1.e+10" and, in any case, "nan" "inf" "infinity" are numbers; "0x10" is a 0
/// integers       decimal, with an optional sign; null also where the type cannot hold the value
/// T is float, double or an integer type.
template <class T>
const char* scanNumber(const char* first, const char* last, T& value);

/// The same, quickly for common numbers, where *last can be read and belongs to no number.
template <class T>
const char* scanNumberInText(const char* first, const char* last, T& value)
{
    if constexpr (std::is_floating_point_v<T>)
        if (const char* const end = ShortDecimal::scan(first, value))
            return end;
    return scanNumber(first, last, value);
}

/// Room enough for any number that formatNumber() writes.
inline constexpr int kNumberTextSize = 32;

/// Writes the shortest text that scanNumber() reads back as the same value to `out`, which has room
/// for kNumberTextSize characters, and returns its end. Not-a-number is "nan", infinity "inf".
template <class T>
char* formatNumber(char* out, T value);

/// The same at the end of `text`.
template <class T>
void appendNumber(std::string& text, T value)
{
    char buffer[kNumberTextSize];
    text.append(buffer, formatNumber(buffer, value));
}

}  // namespace TessaryMesh
