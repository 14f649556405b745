#include "Words.h"

#include <algorithm>
#include <cstdio>
#include <numeric>

namespace Cli {
namespace {

bool isControl(unsigned char c)
{
    return c < ' ' || c == 0x7f;
}

// U+0080 to U+009F, of which terminals know some, are C2 80 to C2 9F in UTF-8.
bool isLongControl(const std::string& text, std::size_t i)
{
    return text[i] == '\xC2' && i + 1 < text.size() &&
           static_cast<unsigned char>(text[i + 1]) >= 0x80 &&
           static_cast<unsigned char>(text[i + 1]) < 0xA0;
}

std::string spelled(unsigned char c)
{
    char text[8];
    std::snprintf(text, sizeof text, "\\x%02x", c);
    return text;
}

// Letters to insert, to remove or to replace.
std::size_t editDistance(const std::string& a, const std::string& b)
{
    std::vector<std::size_t> row(b.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 0; i < a.size(); ++i) {
        std::size_t diagonal = row[0]++;
        for (std::size_t j = 0; j < b.size(); ++j) {
            const std::size_t replaced = diagonal + (a[i] == b[j] ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({replaced, diagonal + 1, row[j] + 1});
        }
    }
    return row.back();
}

}  // namespace

std::string shown(const std::string& text)
{
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (isLongControl(text, i))
            result += spelled(static_cast<unsigned char>(text[++i]));
        else if (isControl(static_cast<unsigned char>(text[i])))
            result += spelled(static_cast<unsigned char>(text[i]));
        else
            result += text[i];
    }
    return result;
}

std::string counted(std::uint64_t count, const std::string& one)
{
    return std::to_string(count) + " " + one + (count == 1 ? "" : "s");
}

std::string listOf(const std::vector<std::string>& words, const std::string& beforeLast)
{
    std::string list;
    for (const std::string& word : words)
        list += (list.empty() ? "" : &word == &words.back() ? beforeLast : ", ") + word;
    return list;
}

std::string nearest(const std::string& word, const std::vector<std::string>& words)
{
    std::string found;
    std::size_t least = word.size() / 3 + 1;
    for (const std::string& candidate : words) {
        const std::size_t distance = editDistance(word, candidate);
        if (distance <= least && (found.empty() || distance < least)) {
            least = distance;
            found = candidate;
        }
    }
    return found;
}

}  // namespace Cli
