#include "files/obj/Obj.h"

#include "base/Host.h"
#include "base/MessageText.h"
#include "base/ParallelBlocks.h"
#include "files/FileErrors.h"
#include "files/TextBlocks.h"
#include "files/obj/ObjMesh.h"

#include <algorithm>
#include <optional>

namespace TessaryMesh {
namespace {

using Code = FileError::Code;

bool isLineEnd(char c)
{
    return c == '\n' || c == '\r';
}

// Behind LF, CR LF or CR. A backslash before it may or may not continue the statement, depending on
// where the line has a "#".
bool canCut(std::string_view text, std::size_t at)
{
    if (at == 0 || !isLineEnd(text[at - 1]))
        return false;
    const bool isInside = text[at - 1] == '\r' && at < text.size() && text[at] == '\n';
    const bool isPair = at >= 2 && text[at - 1] == '\n' && text[at - 2] == '\r';
    const std::size_t lineEnd = at - (isPair ? 2 : 1);
    return !isInside && (lineEnd == 0 || text[lineEnd - 1] != '\\');
}

[[noreturn]] void failByZero(const std::string& path, std::size_t place)
{
    failToRead(Code::Unsupported, path,
               "byte " + std::to_string(place) +
                   " is 0: this is binary data or UTF-16, and neither OBJ text nor PLY",
               atByte(place));
}

/// Reads blocks on all threads without knowing what comes before them. Where something in one of them
/// is wrong, the block is read once more, with all that comes before it: then its errors name the
/// right lines, and the first line of the file that is wrong is named.
class ObjReader {
public:
    ObjReader(const Input& input, const std::string& path, std::size_t blockSize)
        : m_input(input),
          m_path(path),
          m_ends(cutIntoBlocks(input, sizeOfByteOrderMark(), blockSize, canCut)),
          m_isWrong(m_ends.size() - 1),
          m_zero(m_ends.size() - 1)
    {
        m_file.blocks.resize(m_ends.size() - 1);
        m_file.starts.resize(1);
    }

    MeshRead read()
    {
        forEachBlock(m_file.blocks.size(), [this](std::size_t block) { readBlock(block); });
        for (const std::optional<std::size_t>& zero : m_zero)
            if (zero)
                failByZero(m_path, *zero);
        for (std::size_t block = 0; block < m_file.blocks.size(); ++block)
            place(block);
        checkReferences();
        if (m_tallies.known == 0 && m_tallies.unknown.count > 0)
            failAtLine(
                m_tallies.unknown.firstLine,
                quoted(m_tallies.firstUnknown) + " begins no OBJ statement; is this a mesh file?",
                Code::Unsupported);
        MeshRead result{nullptr, nullptr, warnings()};
        result.mesh = moveToMesh(m_file);
        return result;
    }

private:
    [[noreturn]] void failAtLine(std::uint64_t line, const std::string& what,
                                 Code code = Code::Malformed) const
    {
        ObjScanner({}, line, m_path).fail(what, code);
    }

    std::size_t sizeOfByteOrderMark() const
    {
        InputBuffer buffer;
        const std::string_view mark = m_input.head(3, buffer);
        if (mark.substr(0, 2) == "\xFE\xFF" || mark.substr(0, 2) == "\xFF\xFE")
            failToRead(Code::Unsupported, m_path, "is UTF-16 text; save it as UTF-8");
        return mark == "\xEF\xBB\xBF" ? 3 : 0;
    }

    // The last line of a file may lack its end, and may end with a backslash for all that.
    ObjBlock parse(std::string_view text, const ObjStart& start) const
    {
        return canCut(text, text.size()) ? parseObjBlock(text, m_path, start)
                                         : parseObjBlock(std::string(text) + "\n\n", m_path, start);
    }

    void readBlock(std::size_t block)
    {
        InputBuffer buffer;
        const std::string_view text = m_input.part(m_ends[block], m_ends[block + 1], buffer);
        const std::size_t zero = text.find('\0');
        if (zero != std::string_view::npos) {
            m_zero[block] = m_ends[block] + zero;
            return;
        }
        try {
            m_file.blocks[block] = parse(text, {});
        } catch (const FileError&) {
            m_isWrong[block] = true;
        }
    }

    // Finds what comes before the next block.
    void place(std::size_t i)
    {
        const ObjBlock& block = m_file.blocks[i];
        const ObjCounts start = m_file.starts.back();
        ObjCounts end = start;
        end.add(block);
        bool isWrong = m_isWrong[i] || end.corners >= kNone;
        for (std::size_t kind = 0; kind < kObjKinds; ++kind)
            isWrong = isWrong || end.values[kind] >= kNone ||
                      !block.references[kind].fits(start.values[kind]);
        if (isWrong) {
            readAgain(i, nullptr);
            failToRead(Code::Unreadable, m_path, "changed while it was read; read it again");
        }
        m_tallies.add(block.tallies, start.lines);
        m_file.starts.push_back(end);
    }

    // With all that comes before it; `total` is what the indices are held to.
    ObjBlock readAgain(std::size_t block, const ObjCounts* total) const
    {
        const ObjCounts& counts = m_file.starts[block];
        ObjStart start{counts.lines, counts.corners, {}};
        for (std::size_t kind = 0; kind < kObjKinds; ++kind)
            start.references[kind] =
                ObjReference(counts.values[kind], total ? total->values[kind] : kNone);
        InputBuffer buffer;
        return parse(m_input.part(m_ends[block], m_ends[block + 1], buffer), start);
    }

    // Positive indices may run ahead of the values, but not beyond the last one.
    void checkReferences() const
    {
        const ObjCounts& total = m_file.total();
        for (std::size_t block = 0; block < m_file.blocks.size(); ++block)
            for (std::size_t kind = 0; kind < kObjKinds; ++kind)
                if (m_file.blocks[block].references[kind].furthest() > total.values[kind])
                    failDangling(readAgain(block, &total).references);
    }

    // Several kinds may dangle: the first line of the file is named.
    [[noreturn]] void failDangling(const ObjReferences& references) const
    {
        std::size_t first = kObjKinds;
        for (std::size_t kind = 0; kind < kObjKinds; ++kind)
            if (const std::uint64_t line = references[kind].danglingLine())
                if (first == kObjKinds || line < references[first].danglingLine())
                    first = kind;
        const ObjReference& reference = references[first % kObjKinds];
        failAtLine(reference.danglingLine(),
                   std::string("face names ") + kObjKindNames[first % kObjKinds] + " " +
                       std::to_string(reference.dangling()) + ", but the file has " +
                       std::to_string(m_file.total().values[first % kObjKinds]) +
                       "; correct the face or add what is missing");
    }

    std::vector<std::string> warnings() const
    {
        std::vector<std::string> lines;
        const auto add = [&lines](const Tally& tally, const char* one, const char* many,
                                  const std::string& text) {
            if (tally.count > 0)
                lines.push_back(std::to_string(tally.count) + " " +
                                (tally.count == 1 ? one : many) + text + ", first at line " +
                                std::to_string(tally.firstLine));
        };
        for (std::size_t i = 0; i < std::size(kObjStatementsNotHeld); ++i)
            add(m_tallies.notHeld[i], "statement", "statements",
                std::string(" \"") + kObjStatementsNotHeld[i] + "\" left out");
        add(m_tallies.unknown, "line that is", "lines that are",
            " no OBJ statement left out, such as " + quoted(m_tallies.firstUnknown));
        add(m_tallies.extraNumbers, "line", "lines",
            " with more numbers than the statement has; these are left out");
        add(m_tallies.misplacedSigns, "number", "numbers",
            " with the sign before the \"e\", read as if it stood behind");
        add(m_tallies.otherNames, "name", "names", " not in UTF-8, kept byte for byte");
        if (m_file.colourCount() > 0 && !m_file.hasColours())
            lines.push_back("colours left out: only " + std::to_string(m_file.colourCount()) +
                            " of " + std::to_string(m_file.total().values[kObjPoint]) +
                            " points have one");
        return lines;
    }

    const Input& m_input;
    const std::string& m_path;
    std::vector<std::size_t> m_ends;
    ObjFile m_file;
    std::vector<char> m_isWrong;                     // a byte each, for threads to write
    std::vector<std::optional<std::size_t>> m_zero;  // the first byte of a block that is 0
    ObjTallies m_tallies;
};

}  // namespace

void refuseNoText(std::string_view head, const std::string& path)
{
    const std::size_t zero = head.find('\0');
    const bool hasMark = head.substr(0, 2) == "\xFE\xFF" || head.substr(0, 2) == "\xFF\xFE";
    if (zero != std::string_view::npos && !hasMark)  // the reader knows the marks of UTF-16
        failByZero(path, zero);
}

MeshRead readObj(const Input& input, const std::string& path)
{
    return readObj(input, path, usualBlockSize(input.size()));
}

MeshRead readObj(const Input& input, const std::string& path, std::size_t blockSize)
{
    return ObjReader(input, path, blockSize).read();
}

}  // namespace TessaryMesh
