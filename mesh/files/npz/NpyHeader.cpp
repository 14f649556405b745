#include "files/npz/NpyHeader.h"

#include "files/NumberText.h"

#include <algorithm>

namespace TessaryMesh {
namespace {

constexpr std::string_view kMagic = "\x93NUMPY";
constexpr std::size_t kMostItems = std::size_t{1} << 62;

/// Walks through a dictionary of Python: quoted words, True and False, a tuple of numbers.
class Dictionary {
public:
    explicit Dictionary(std::string_view text) : m_text(text) {}

    bool parse(NpyHeader& header)
    {
        if (!take('{'))
            return false;
        while (!take('}')) {
            std::string_view key;
            if (!takeQuoted(key) || !take(':') || !takeValue(key, header))
                return false;
            if (!take(',') && peek() != '}')
                return false;
        }
        return m_keys == 3;
    }

private:
    char peek()
    {
        m_text.remove_prefix(std::min(m_text.find_first_not_of(" \n\t"), m_text.size()));
        return m_text.empty() ? '\0' : m_text.front();
    }

    bool take(char c)
    {
        const bool found = peek() == c;
        m_text.remove_prefix(found);
        return found;
    }

    bool takeWord(std::string_view word)
    {
        peek();
        const bool found = m_text.substr(0, word.size()) == word;
        m_text.remove_prefix(found ? word.size() : 0);
        return found;
    }

    bool takeQuoted(std::string_view& word)
    {
        const char quote = peek();
        if (quote != '\'' && quote != '"')
            return false;
        const std::size_t end = m_text.find(quote, 1);
        if (end == std::string_view::npos)
            return false;
        word = m_text.substr(1, end - 1);
        m_text.remove_prefix(end + 1);
        return true;
    }

    bool takeValue(std::string_view key, NpyHeader& header)
    {
        ++m_keys;
        if (key == "descr")
            return takeType(header);
        if (key == "shape")
            return takeShape(header.shape);
        header.isFortran = takeWord("True");
        return key == "fortran_order" && (header.isFortran || takeWord("False"));
    }

    bool takeType(NpyHeader& header)
    {
        std::string_view type;
        if (!takeQuoted(type) || type.size() < 3)
            return false;
        header.type = type;
        constexpr char kOther = __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__ ? '>' : '<';
        header.isSwapped = type[0] == kOther;
        header.kind = type[1];
        const char* const last = type.data() + type.size();
        return scanNumber(type.data() + 2, last, header.itemSize) == last &&
               header.itemSize < kMostItems / 8 &&
               (header.kind != 'U' || (header.itemSize *= 4) < kMostItems);
    }

    bool takeShape(Shape& shape)
    {
        shape.clear();
        if (!take('('))
            return false;
        while (!take(')')) {
            std::size_t length = 0;
            peek();
            const char* const last = m_text.data() + m_text.size();
            const char* const end = scanNumber(m_text.data(), last, length);
            if (!end)
                return false;
            m_text.remove_prefix(static_cast<std::size_t>(end - m_text.data()));
            take('L');  // as Python 2 wrote long numbers
            shape.push_back(length);
            if (!take(',') && peek() != ')')
                return false;
        }
        return shape.size() <= 32;
    }

    std::string_view m_text;
    int m_keys = 0;
};

}  // namespace

std::size_t NpyHeader::count() const
{
    std::size_t count = 1;
    for (const std::size_t length : shape)
        if (length == 0)
            return 0;
    for (const std::size_t length : shape)
        count = length > kMostItems / count ? kMostItems : count * length;
    return count;
}

std::size_t npyPrefixSize(std::string_view begin)
{
    if (begin.size() < 12 || begin.substr(0, kMagic.size()) != kMagic || begin[6] < 1 ||
        begin[6] > 3)
        return 0;
    return begin[6] == 1 ? 10 : 12;
}

std::size_t npyDictionarySize(std::string_view begin)
{
    std::size_t size = 0;
    for (std::size_t i = npyPrefixSize(begin); i > 8; --i)
        size = size << 8 | static_cast<unsigned char>(begin[i - 1]);
    return size;
}

bool parseNpyDictionary(std::string_view text, NpyHeader& header)
{
    return Dictionary(text).parse(header);
}

std::string npyHeader(const std::string& type, const Shape& shape)
{
    std::string dictionary = "{'descr': '" + type + "', 'fortran_order': False, ";
    dictionary += "'shape': (";
    for (const std::size_t length : shape)
        dictionary += std::to_string(length) + ", ";
    dictionary += "), }";
    constexpr std::size_t kBefore = 10;
    dictionary.append(63 - (kBefore + dictionary.size()) % 64, ' ');
    dictionary += '\n';
    std::string header("\x93NUMPY\x01\x00", 8);
    header += static_cast<char>(dictionary.size() & 0xFF);
    header += static_cast<char>(dictionary.size() >> 8);
    return header + dictionary;
}

}  // namespace TessaryMesh
