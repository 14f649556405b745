#pragma once

#include <string>

namespace MeshIo {

/// Reads one number from the beginning of [first, last) into `value` and returns where it ends;
/// null, with `value` as it was, where no number begins. What may follow is the caller's business.
///
/// float, double  the nearest value, whatever the number of digits: the bits that strtof and strtod
///                give in the "C" locale. Too large is infinite, too small is zero. "5." ".5" "+1"
///                "1.e+10" and, in any case, "nan" "inf" "infinity" are numbers; "0x10" is a 0
/// integers       decimal, with an optional sign; null also where the type cannot hold the value
const char* scanNumber(const char* first, const char* last, float& value);
const char* scanNumber(const char* first, const char* last, double& value);
const char* scanNumber(const char* first, const char* last, signed char& value);
const char* scanNumber(const char* first, const char* last, unsigned char& value);
const char* scanNumber(const char* first, const char* last, short& value);
const char* scanNumber(const char* first, const char* last, unsigned short& value);
const char* scanNumber(const char* first, const char* last, int& value);
const char* scanNumber(const char* first, const char* last, unsigned int& value);
const char* scanNumber(const char* first, const char* last, long long& value);
const char* scanNumber(const char* first, const char* last, unsigned long long& value);

/// Room enough for any number that formatNumber() writes.
inline constexpr int kNumberTextSize = 32;

/// Writes the shortest text that scanNumber() reads back as the same value to `out`, which has room
/// for kNumberTextSize characters, and returns its end. Not-a-number is "nan", infinity "inf".
char* formatNumber(char* out, float value);
char* formatNumber(char* out, double value);
char* formatNumber(char* out, long long value);
char* formatNumber(char* out, unsigned long long value);

/// The same at the end of `text`; smaller integers are converted to the two above.
template <class T>
void appendNumber(std::string& text, T value)
{
    char buffer[kNumberTextSize];
    if constexpr (static_cast<T>(0.5) != T(0))
        text.append(buffer, formatNumber(buffer, value));
    else if constexpr (static_cast<T>(-1) < T(0))
        text.append(buffer, formatNumber(buffer, static_cast<long long>(value)));
    else
        text.append(buffer, formatNumber(buffer, static_cast<unsigned long long>(value)));
}

}  // namespace MeshIo
