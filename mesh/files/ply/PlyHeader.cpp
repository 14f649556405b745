#include "files/ply/PlyFormat.h"

#include "base/MessageText.h"
#include "files/Names.h"
#include "files/NumberText.h"
#include "files/ply/PlyErrors.h"
#include "files/ply/PlyNames.h"

#include <algorithm>
#include <set>

namespace TessaryMesh::Ply {
namespace {

struct ScalarNames {
    Scalar scalar;
    const char* name;
    const char* sizedName;
};

constexpr ScalarNames kScalarNames[] = {
    {Scalar::Int8, "char", "int8"},        {Scalar::UInt8, "uchar", "uint8"},
    {Scalar::Int16, "short", "int16"},     {Scalar::UInt16, "ushort", "uint16"},
    {Scalar::Int32, "int", "int32"},       {Scalar::UInt32, "uint", "uint32"},
    {Scalar::Float32, "float", "float32"}, {Scalar::Float64, "double", "float64"},
};

constexpr Encoding kEncodings[] = {Encoding::Ascii, Encoding::LittleEndian, Encoding::BigEndian};

using Words = std::vector<std::string_view>;

bool isBlank(char c)
{
    return c == ' ' || c == '\t' || c == '\r';
}

Words wordsOf(std::string_view line)
{
    Words words;
    std::size_t i = 0;
    while (i < line.size()) {
        std::size_t end = i;
        while (end < line.size() && !isBlank(line[end]))
            ++end;
        if (end > i)
            words.push_back(line.substr(i, end - i));
        i = end + 1;
    }
    return words;
}

std::optional<Owner> ownerOfName(std::string_view name)
{
    for (const Owner owner : {Owner::Point, Owner::Face, Owner::Corner})
        if (name == nameOf(owner))
            return owner;
    return std::nullopt;
}

class HeaderParser {
public:
    HeaderParser(std::string_view bytes, const std::string& path) : m_bytes(bytes), m_path(path) {}

    Header parse()
    {
        if (nextLine() != Words{"ply"})
            fail("a PLY file starts with the line \"ply\"");
        while (parseLine(nextLine())) {
        }
        if (!m_encoding)
            fail("the header ends without a format; add \"format ascii 1.0\" or the like");
        m_header.encoding = *m_encoding;
        m_header.size = m_position;
        m_header.lines = m_line;
        return std::move(m_header);
    }

private:
    [[noreturn]] void fail(const std::string& what,
                           FileError::Code code = FileError::Code::Malformed) const
    {
        Ply::fail(m_path, atLine(m_line), what, code);
    }

    Words nextLine()
    {
        ++m_line;
        if (m_position >= m_bytes.size())
            fail("the file ends inside the header; it is cut off before \"end_header\"");
        const std::size_t end = std::min(m_bytes.find('\n', m_position), m_bytes.size());
        const std::string_view line = m_bytes.substr(m_position, end - m_position);
        m_position = std::min(end + 1, m_bytes.size());
        return wordsOf(line);
    }

    bool parseLine(const Words& words)
    {
        if (words.empty())
            fail("an empty line in the header; remove it");
        const std::string_view keyword = words[0];
        if (keyword == "format")
            parseFormat(words);
        else if (keyword == "element")
            parseElement(words);
        else if (keyword == "property")
            parseProperty(words);
        else if (keyword == "comment")
            parseComment(words);
        else if (keyword != "obj_info" && keyword != "end_header")
            fail("found " + quoted(keyword) +
                 " where a header line was expected (format, element, "
                 "property, comment, obj_info or end_header); remove it or put \"comment\" before "
                 "it");
        return keyword != "end_header";
    }

    void parseFormat(const Words& words)
    {
        if (words.size() != 3 || words[2] != "1.0")
            fail("the format is not of version 1.0, the only one there is",
                 FileError::Code::Unsupported);
        if (m_encoding)
            fail("the header has a second format line; remove one");
        for (const Encoding encoding : kEncodings)
            if (words[1] == nameOf(encoding))
                m_encoding = encoding;
        if (!m_encoding)
            fail("unknown format " + quoted(words[1]) +
                     "; ascii, binary_little_endian or binary_big_endian was expected",
                 FileError::Code::Unsupported);
    }

    std::string nameFrom(std::string_view word) const
    {
        if (word.size() > kLongestName)
            fail("a name of " + std::to_string(word.size()) + " bytes; names have up to " +
                 std::to_string(kLongestName));
        if (!isUtf8(word))
            fail("the name " + quoted(word) + " is not UTF-8; rename it");
        return std::string(word);
    }

    void parseElement(const Words& words)
    {
        if (words.size() != 3)
            fail("an element line has a name and a count: \"element vertex 8\"");
        std::string name = nameFrom(words[1]);
        if (!m_elementNames.insert(name).second)
            fail("element " + quoted(name) + " occurs twice; rename one");
        m_header.elements.push_back({std::move(name), countFrom(words[2]), {}});
        m_propertyNames.clear();
    }

    std::uint64_t countFrom(std::string_view word) const
    {
        unsigned long long count = 0;
        const char* const last = word.data() + word.size();
        if (word[0] < '0' || word[0] > '9' || scanNumber(word.data(), last, count) != last)
            fail("found " + quoted(word) + " where the element's count was expected");
        return count;
    }

    void parseProperty(const Words& words)
    {
        if (m_header.elements.empty())
            fail("a property comes before any element");
        const bool isList = words.size() > 1 && words[1] == "list";
        if (words.size() != (isList ? 5u : 3u))
            fail(
                "a property line is \"property TYPE NAME\" or \"property list COUNT-TYPE TYPE "
                "NAME\"");
        Property property;
        property.type = typeFrom(words[words.size() - 2]);
        property.name = nameFrom(words.back());
        if (isList)
            property.countType = countTypeFrom(words[2]);
        if (!m_propertyNames.insert(property.name).second)
            fail("element " + quoted(m_header.elements.back().name) + " has a second property " +
                 quoted(property.name) + "; rename one");
        m_header.elements.back().properties.push_back(std::move(property));
    }

    Scalar typeFrom(std::string_view word) const
    {
        const std::optional<Scalar> type = scalarOfName(word);
        if (!type)
            fail("unknown type " + quoted(word) +
                 "; char, uchar, short, ushort, int, uint, float or double was expected");
        return *type;
    }

    Scalar countTypeFrom(std::string_view word) const
    {
        const Scalar type = typeFrom(word);
        if (isFloat(type))
            fail("a list cannot be counted with " + quoted(word) + "; use an integer type");
        return type;
    }

    // Whatever does not have the form of a declaration is somebody else's comment.
    void parseComment(const Words& words)
    {
        if (words.size() < 6 || words[1] != "property")
            return;
        const std::optional<Owner> owner = ownerOfName(words[2]);
        const auto ignoreType = [](auto, Form) {};
        if (!owner || !(words[3] == kListType || withElementType(words[3], ignoreType)))
            return;
        Declaration declaration{
            *owner, std::string(words[3]), decodedName(nameFrom(words[4])), {}, m_line};
        for (std::size_t i = 5; i < words.size(); ++i)
            declaration.columns.push_back(nameFrom(words[i]));
        m_header.declarations.push_back(std::move(declaration));
    }

    std::string_view m_bytes;
    const std::string& m_path;
    std::size_t m_position = 0;
    std::size_t m_line = 0;
    Header m_header{};
    std::optional<Encoding> m_encoding;
    std::set<std::string> m_elementNames;
    std::set<std::string> m_propertyNames;  // of the last element
};

}  // namespace

const char* nameOf(Encoding encoding)
{
    return encoding == Encoding::Ascii       ? "ascii"
           : encoding == Encoding::BigEndian ? "binary_big_endian"
                                             : "binary_little_endian";
}

const char* nameOf(Scalar scalar)
{
    return kScalarNames[static_cast<std::size_t>(scalar)].name;
}

const char* nameOf(Owner owner)
{
    return owner == Owner::Point ? "point" : owner == Owner::Face ? "face" : "corner";
}

std::optional<Scalar> scalarOfName(std::string_view name)
{
    for (const ScalarNames& names : kScalarNames)
        if (name == names.name || name == names.sizedName)
            return names.scalar;
    return std::nullopt;
}

const Element* Header::find(std::string_view element) const
{
    for (const Element& candidate : elements)
        if (candidate.name == element)
            return &candidate;
    return nullptr;
}

Header parseHeader(std::string_view bytes, const std::string& path)
{
    return HeaderParser(bytes, path).parse();
}

}  // namespace TessaryMesh::Ply
