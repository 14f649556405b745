#include "files/ply/PlyRows.h"

#include "base/Host.h"
#include "base/MessageText.h"
#include "base/ParallelBlocks.h"
#include "files/NumberText.h"
#include "files/TextBlocks.h"
#include "files/ply/PlyErrors.h"

#include <algorithm>
#include <cstring>
#include <exception>

namespace TessaryMesh::Ply {
namespace {

bool isBlank(char c)
{
    return c == ' ' || c == '\t' || c == '\r';
}

/// A row, by its element's place in the header.
struct RowPlace {
    std::size_t element;
    std::uint64_t row;
};

/// Whether an element's rows are lines of their own.
bool hasLines(const Element& element)
{
    return element.count > 0 && !element.properties.empty();
}

/// Reads the rows of a block of lines, a line each, and appends their values in binary form.
class TextRows {
public:
    /// What a block is part of.
    struct Context {
        const Header& header;
        const std::string& path;
        RowPlace place;           // the row of the block's first line that is not blank
        std::size_t linesBefore;  // of the block
        std::size_t bytesAfter;   // it
    };

    TextRows(std::string_view text, const Context& context)
        : m_position(text.data()),
          m_end(text.data() + text.size()),
          m_context(context),
          m_place(context.place),
          m_line(context.linesBefore)
    {}

    /// The elements that begin with the body.
    void begin()
    {
        m_place = {0, 0};
        beginElements();
    }

    /// All rows of the block. The last block has what is left of the header's.
    void read()
    {
        while (!isDone() && startLine()) {
            for (const Property& property : element().properties)
                readProperty(property);
            endLine();
            if (++m_place.row == element().count) {
                m_place = {m_place.element + 1, 0};
                beginElements();
            }
        }
    }

    bool isDone() const { return m_place.element == m_context.header.elements.size(); }

    /// Bytes of the block behind the last row, from the first one on that is not blank.
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
    const Element& element() const { return m_context.header.elements[m_place.element]; }

    [[noreturn]] void fail(const std::string& what) const
    {
        failInRow(m_context.path, atLine(m_line), element(), m_place.row, what);
    }

    // Goes to the next element with lines.
    void beginElements()
    {
        for (; !isDone(); ++m_place.element) {
            if (!element().properties.empty())
                requireBytes();
            if (hasLines(element()))
                return;
        }
    }

    // Every value takes a character and a separator, but the very last one.
    void requireBytes()
    {
        const auto left = static_cast<std::uint64_t>(m_end - m_position) + m_context.bytesAfter + 1;
        const std::uint64_t room = left / (2 * element().properties.size());
        if (element().count <= room)
            return;
        m_place.row = room;
        fail("the file is too short for it; it is cut off or the count is wrong");
    }

    void skipBlankLines()
    {
        while (m_position < m_end && (isBlank(*m_position) || *m_position == '\n'))
            m_line += *m_position++ == '\n';
    }

    // False at the end of a block that others follow.
    bool startLine()
    {
        skipBlankLines();
        if (m_position == m_end && m_context.bytesAfter > 0)
            return false;
        if (m_position == m_end)
            fail("the file ends before it; it is cut off or the count is wrong");
        const void* const end =
            std::memchr(m_position, '\n', static_cast<std::size_t>(m_end - m_position));
        m_lineEnd = end ? static_cast<const char*>(end) : m_end;
        ++m_line;
        return true;
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
            const char* const end = scanNumberInText(m_position, m_lineEnd, value);
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
    const Context& m_context;
    RowPlace m_place;
    std::size_t m_line;
    Array<unsigned char> m_binary;
    std::size_t m_size = 0;
};

bool endsLine(std::string_view text, std::size_t at)
{
    return at > 0 && text[at - 1] == '\n';
}

/// An ASCII body in blocks of lines. Where each block's rows belong is known once the lines of all blocks
/// are counted.
class TextBody {
public:
    TextBody(const Header& header, const Input& input, const std::string& path,
             std::size_t blockSize)
        : m_header(header),
          m_input(input),
          m_path(path),
          m_ends(cutIntoBlocks(input, header.size, blockSize, endsLine)),
          m_blocks(std::max<std::size_t>(m_ends.size(), 2) - 1)
    {
        m_ends.resize(m_blocks.size() + 1, header.size);  // a body without a byte is a block, too
    }

    Array<unsigned char> binary(std::size_t& bytesLeft)
    {
        forEachBlock(m_blocks.size(), [this](std::size_t block) { countLines(block); });
        placeBlocks();
        forEachBlock(m_blocks.size(), [this](std::size_t block) { readBlock(block); });
        for (const Block& block : m_blocks)
            if (block.error)
                std::rethrow_exception(block.error);
        bytesLeft = 0;
        for (const Block& block : m_blocks)
            if (bytesLeft == 0)
                bytesLeft = block.bytesLeft;
        return joined();
    }

private:
    struct Block {
        std::size_t lines = 0;
        std::uint64_t rows = 0;  // lines that are not blank
        RowPlace place{0, 0};
        std::size_t linesBefore = 0;
        Array<unsigned char> binary;
        std::size_t begin = 0;      // of the block's binary form in that of the body
        std::size_t bytesLeft = 0;  // up to the end of the file, where the block has more than rows
        std::exception_ptr error;   // the first block's is that of the file
    };

    std::string_view textOf(std::size_t block, InputBuffer& buffer) const
    {
        return m_input.part(m_ends[block], m_ends[block + 1], buffer);
    }

    void countLines(std::size_t i)
    {
        InputBuffer buffer;
        const std::string_view text = textOf(i, buffer);
        for (std::size_t begin = 0; begin < text.size();) {
            const std::size_t end = std::min(text.find('\n', begin), text.size());
            m_blocks[i].lines += end < text.size();
            m_blocks[i].rows += !std::all_of(text.begin() + begin, text.begin() + end, isBlank);
            begin = end + 1;
        }
    }

    void placeBlocks()
    {
        RowPlace place{0, 0};
        std::size_t lines = m_header.lines;
        for (Block& block : m_blocks) {
            place = firstWithLines(place);
            block.place = place;
            block.linesBefore = lines;
            lines += block.lines;
            place.row += block.rows;
        }
    }

    // The element and the row in it, of a row that may lie beyond its element.
    RowPlace firstWithLines(RowPlace place) const
    {
        for (; place.element < m_header.elements.size(); ++place.element) {
            const Element& element = m_header.elements[place.element];
            if (!hasLines(element))
                continue;
            if (place.row < element.count)
                break;
            place.row -= element.count;
        }
        return place;
    }

    void readBlock(std::size_t i)
    {
        Block& block = m_blocks[i];
        InputBuffer buffer;
        std::string_view text = textOf(i, buffer);
        const std::string copy(endsLine(text, text.size()) ? "" : text);  // its end can be read
        if (!copy.empty())
            text = copy;
        const std::size_t bytesAfter = m_input.size() - m_ends[i + 1];
        const TextRows::Context context{m_header, m_path, block.place, block.linesBefore,
                                        bytesAfter};
        TextRows rows(text, context);
        try {
            if (i == 0)
                rows.begin();
            rows.read();
        } catch (const FileError&) {
            block.error = std::current_exception();
            return;
        }
        block.binary = rows.takeBinary();
        const std::size_t left = rows.isDone() ? rows.bytesLeft() : 0;
        block.bytesLeft = left > 0 ? left + bytesAfter : 0;
    }

    Array<unsigned char> joined()
    {
        std::size_t size = 0;
        for (Block& block : m_blocks) {
            block.begin = size;
            size += block.binary.size();
        }
        Array<unsigned char> all(size);
        forEachBlock(m_blocks.size(), [&](std::size_t i) {
            Block& block = m_blocks[i];
            std::copy(block.binary.begin(), block.binary.end(), all.begin() + block.begin);
            block.binary = {};
        });
        return all;
    }

    const Header& m_header;
    const Input& m_input;
    const std::string& m_path;
    std::vector<std::size_t> m_ends;
    std::vector<Block> m_blocks;
};

}  // namespace

Array<unsigned char> binaryOfText(const Header& header, const Input& input, const std::string& path,
                                  std::size_t blockSize, std::size_t& bytesLeft)
{
    return TextBody(header, input, path, blockSize).binary(bytesLeft);
}

}  // namespace TessaryMesh::Ply
