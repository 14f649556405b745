#include "files/ply/PlyRows.h"

#include "base/Host.h"
#include "base/MessageText.h"
#include "files/NumberText.h"
#include "files/ply/PlyErrors.h"

#include <algorithm>
#include <cstring>

namespace TessaryMesh::Ply {
namespace {

constexpr std::uint64_t kRowsPerPoll = std::uint64_t(1) << 20;

bool isBlank(char c)
{
    return c == ' ' || c == '\t' || c == '\r';
}

/// Reads rows, a line each, and appends their values in binary form.
class TextRows {
public:
    TextRows(std::string_view body, std::size_t linesBefore, const std::string& path)
        : m_position(body.data()),
          m_end(body.data() + body.size()),
          m_line(linesBefore),
          m_path(path)
    {}

    void read(const Element& element)
    {
        m_element = &element;
        if (element.properties.empty())
            return;
        requireBytes();
        for (m_row = 0; m_row < element.count; ++m_row) {
            if (m_row % kRowsPerPoll == 0)
                throwIfCancelled();
            startLine();
            for (const Property& property : element.properties)
                readProperty(property);
            endLine();
        }
    }

    std::size_t bytesLeft()
    {
        skipBlankLines();
        return static_cast<std::size_t>(m_end - m_position);
    }

    Array<unsigned char> takeBinary()
    {
        m_binary.resize(m_size);
        return std::move(m_binary);
    }

private:
    [[noreturn]] void fail(const std::string& what) const
    {
        failInRow(m_path, atLine(m_line), *m_element, m_row, what);
    }

    // Every value takes a character and a separator, but the very last one.
    void requireBytes()
    {
        const auto left = static_cast<std::uint64_t>(m_end - m_position) + 1;
        m_row = left / (2 * m_element->properties.size());
        if (m_element->count > m_row)
            fail("the file is too short for it; it is cut off or the count is wrong");
    }

    void skipBlankLines()
    {
        while (m_position < m_end && (isBlank(*m_position) || *m_position == '\n'))
            m_line += *m_position++ == '\n';
    }

    void startLine()
    {
        skipBlankLines();
        if (m_position == m_end)
            fail("the file ends before it; it is cut off or the count is wrong");
        const void* const end =
            std::memchr(m_position, '\n', static_cast<std::size_t>(m_end - m_position));
        m_lineEnd = end ? static_cast<const char*>(end) : m_end;
        ++m_line;
    }

    void endLine()
    {
        skipBlanks();
        if (m_position != m_lineEnd)
            fail("found " + quoted(word()) +
                 " after the last property; the line has more values "
                 "than the header declares");
        m_position += m_position < m_end;
    }

    void skipBlanks()
    {
        while (m_position < m_lineEnd && isBlank(*m_position))
            ++m_position;
    }

    std::string_view word() const
    {
        const char* const end = std::find_if(m_position, m_lineEnd, isBlank);
        return {m_position, static_cast<std::size_t>(end - m_position)};
    }

    void readProperty(const Property& property)
    {
        if (!property.isList()) {
            readValue(property, property.type);
            return;
        }
        for (std::uint64_t left = readCount(property); left > 0; --left)
            readValue(property, property.type);
    }

    std::uint64_t readCount(const Property& property)
    {
        const char* const place = m_position;
        const std::int64_t count = readValue(property, *property.countType);
        if (count < 0) {
            m_position = place;
            skipBlanks();
            fail("its list " + quoted(property.name) + " has the count " + quoted(word()) +
                 "; a count is 0 or more");
        }
        return static_cast<std::uint64_t>(count);
    }

    // The value as an integer, where it is one.
    std::int64_t readValue(const Property& property, Scalar type)
    {
        return withScalar(type, [&](auto value) {
            skipBlanks();
            const char* const end = scanNumber(m_position, m_lineEnd, value);
            if (!end || (end != m_lineEnd && !isBlank(*end)))
                failValue(property, type);
            m_position = end;
            append(&value, sizeof(value));
            return std::is_integral_v<decltype(value)> ? static_cast<std::int64_t>(value) : 0;
        });
    }

    [[noreturn]] void failValue(const Property& property, Scalar type) const
    {
        const std::string expected =
            std::string(nameOf(type)) + " of property " + quoted(property.name) + " was expected";
        if (m_position == m_lineEnd)
            fail("the line ends where a " + expected);
        fail("found " + quoted(word()) + " where a " + expected);
    }

    void append(const void* value, std::size_t size)
    {
        if (m_binary.size() - m_size < size)
            m_binary.resize(std::max<std::size_t>(4096, 2 * m_binary.size()));
        std::memcpy(m_binary.data() + m_size, value, size);
        m_size += size;
    }

    const char* m_position;
    const char* m_lineEnd = nullptr;
    const char* m_end;
    std::size_t m_line;
    const std::string& m_path;
    const Element* m_element = nullptr;
    std::uint64_t m_row = 0;
    Array<unsigned char> m_binary;
    std::size_t m_size = 0;
};

}  // namespace

Array<unsigned char> binaryOfText(const Header& header, std::string_view body,
                                  const std::string& path, std::size_t& bytesLeft)
{
    TextRows rows(body, header.lines, path);
    for (const Element& element : header.elements)
        rows.read(element);
    bytesLeft = rows.bytesLeft();
    return rows.takeBinary();
}

}  // namespace TessaryMesh::Ply
