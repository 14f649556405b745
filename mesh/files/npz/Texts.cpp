#include "files/npz/Texts.h"

#include "base/MessageText.h"
#include "files/PercentCodes.h"

#include <algorithm>

namespace TessaryMesh {
namespace {

constexpr std::size_t kLongestText = 256;

void appendUtf8(std::string& text, char32_t c)
{
    if (c > 0x10FFFF || (c >= 0xD800 && c < 0xE000))
        c = 0xFFFD;
    if (c < 0x80) {
        text += static_cast<char>(c);
        return;
    }
    const int more = c < 0x800 ? 1 : c < 0x10000 ? 2 : 3;
    text += static_cast<char>((0xFF00u >> (more + 1) & 0xFF) | c >> (6 * more));
    for (int i = more - 1; i >= 0; --i)
        text += static_cast<char>(0x80 | (c >> (6 * i) & 0x3F));
}

}  // namespace

std::string textOf(const char32_t* characters, std::size_t count)
{
    while (count > 0 && characters[count - 1] == 0)
        --count;
    std::string text;
    for (std::size_t i = 0; i < count; ++i)
        appendUtf8(text, characters[i]);
    return text;
}

std::size_t longestOf(const Array<String>& texts)
{
    std::size_t longest = 1;
    for (const String& text : texts)
        longest = std::max(longest, charactersOf(text.view()).size());
    return longest;
}

std::vector<char32_t> paddedTexts(const Array<String>& texts, std::size_t width)
{
    std::vector<char32_t> all(width * texts.size());
    for (std::size_t i = 0; i < texts.size(); ++i) {
        const std::vector<char32_t> characters = charactersOf(texts[i].view());
        std::copy(characters.begin(), characters.end(), all.data() + i * width);
    }
    return all;
}

bool fitIntoRows(const Array<String>& texts)
{
    std::size_t bytes = 0;
    for (const String& text : texts) {
        const std::string_view view = text.view();
        if (!isUtf8(view) || (!view.empty() && view.back() == '\0'))
            return false;
        bytes += view.size();
    }
    const std::size_t width = longestOf(texts);
    return width <= kLongestText && width * texts.size() <= 8 * (bytes + texts.size()) + 65536;
}

std::string escaped(std::string_view text)
{
    const bool isText = isUtf8(text);
    return percentCoded(text, [isText](unsigned char byte) { return byte >= 0x80 && !isText; });
}

}  // namespace TessaryMesh
