#include "files/obj/Obj.h"

#include "base/Host.h"
#include "base/MessageText.h"
#include "files/FileErrors.h"
#include "files/obj/ObjContent.h"
#include "files/obj/ObjReference.h"
#include "files/obj/ObjScanner.h"

#include <algorithm>
#include <utility>

namespace TessaryMesh {
namespace {

using Code = FileError::Code;

/// Statements that a mesh has no place for.
constexpr const char* kStatementsNotHeld[] = {
    "p",     "l",     "vp",     "cstype", "deg",      "bmat",     "step",       "curv",
    "curv2", "surf",  "parm",   "trim",   "hole",     "scrv",     "sp",         "end",
    "con",   "mg",    "lod",    "bevel",  "c_interp", "d_interp", "shadow_obj", "trace_obj",
    "ctech", "stech", "usemap", "maplib", "call",     "csh",      "res",        "bsp",
    "bzp",   "cdc",   "cdp",    "fo"};
constexpr std::size_t kStatementNotHeldCount = std::size(kStatementsNotHeld);

/// How often something was met, and where first.
struct Tally {
    std::uint64_t count = 0;
    std::uint64_t firstLine = 0;

    void add(std::uint64_t line)
    {
        if (count++ == 0)
            firstLine = line;
    }
};

std::string countOf(std::uint64_t count, const char* one, const char* many)
{
    return std::to_string(count) + " " + (count == 1 ? one : many);
}

class ObjParser {
public:
    ObjParser(std::string_view text, const std::string& path) : m_scanner(text, path) {}

    MeshRead read()
    {
        while (!m_scanner.atEnd()) {
            if (!m_scanner.atLineEnd())
                readStatement();
            m_scanner.nextLine();
        }
        checkReferences();
        if (m_known == 0 && m_unknown.count > 0)
            m_scanner.fail(
                quoted(m_firstUnknown) + " begins no OBJ statement; is this a mesh file?",
                m_unknown.firstLine, Code::Unsupported);
        MeshRead result{nullptr, nullptr, warnings()};
        result.mesh = moveToMesh(m_content);
        return result;
    }

private:
    void readStatement()
    {
        const std::string_view keyword = m_scanner.word();
        ++m_known;
        if (keyword == "v")
            readPoint();
        else if (keyword == "f")
            readFace();
        else if (keyword == "vt")
            readTexcoord();
        else if (keyword == "vn")
            readNormal();
        else if (!readState(keyword))
            countOther(keyword);
    }

    // Reads the numbers of a statement, as many as there are, and returns how many of them fit.
    template <std::size_t N>
    std::size_t readNumbers(float (&numbers)[N])
    {
        std::size_t count = 0;
        for (; !m_scanner.atLineEnd(); ++count) {
            const float number = m_scanner.number();
            if (count < N)
                numbers[count] = number;
        }
        if (count > N)
            m_extraNumbers.add(m_scanner.line());
        return std::min(count, N);
    }

    void needNumbers(std::size_t found, std::size_t needed, const char* what)
    {
        if (found < needed)
            m_scanner.fail(std::string(what) + " with " + countOf(found, "number", "numbers") +
                           "; it needs " + std::to_string(needed));
    }

    void addTo(ObjReference& reference)
    {
        if (++reference.count >= kNone)
            m_scanner.fail("the file has more values than 32-bit indices can name; split the mesh",
                           Code::TooLarge);
    }

    void readPoint()
    {
        float v[6];
        const std::size_t count = readNumbers(v);
        needNumbers(count, 3, "point");
        addTo(m_pointReference);
        m_content.points.push_back({v[0], v[1], v[2]});
        if (count == 6)
            m_content.addColour({v[3], v[4], v[5]});
        else if (count == 4)
            m_content.addWeight(v[3]);
        else if (count == 5)
            m_extraNumbers.add(m_scanner.line());
    }

    void readTexcoord()
    {
        float v[3] = {};
        const std::size_t count = readNumbers(v);
        needNumbers(count, 1, "texture coordinate");
        addTo(m_texcoordReference);
        m_content.addTexcoord({v[0], v[1], v[2]}, count == 3);
    }

    void readNormal()
    {
        float v[3];
        needNumbers(readNumbers(v), 3, "normal");
        addTo(m_normalReference);
        m_content.normals.push_back({v[0], v[1], v[2]});
    }

    void readFace()
    {
        const std::size_t first = m_content.corners.size();
        while (!m_scanner.atLineEnd())
            readCorner();
        if (m_content.corners.size() == first)
            m_scanner.fail("face without corners; it needs three or more");
        if (m_content.corners.size() >= kNone)
            m_scanner.fail("the file has more corners than 32-bit indices can name; split the mesh",
                           Code::TooLarge);
        m_content.faceOffset.push_back(static_cast<uint>(m_content.corners.size()));
    }

    // Some programs write the slashes also where nothing follows: "1/" and "1//" are points.
    void readCorner()
    {
        const char* const begin = m_scanner.position();
        const std::size_t corner = m_content.corners.size();
        m_content.corners.push_back(m_pointReference.resolve(m_scanner.index(), m_scanner));
        if (m_scanner.slash()) {
            if (!m_scanner.atSlash() && !m_scanner.atSeparator())
                m_content.texcoordIndices.set(
                    corner, m_texcoordReference.resolve(m_scanner.index(), m_scanner));
            if (m_scanner.slash() && !m_scanner.atSeparator())
                m_content.normalIndices.set(
                    corner, m_normalReference.resolve(m_scanner.index(), m_scanner));
        }
        if (!m_scanner.atSeparator())
            m_scanner.failAtIndex(begin);
    }

    bool readState(std::string_view keyword)
    {
        if (keyword == "usemtl")
            m_content.material.set(m_content.faceCount(), readName("material"));
        else if (keyword == "g")
            m_content.group.set(m_content.faceCount(), readName("group"));
        else if (keyword == "o")
            m_content.object.set(m_content.faceCount(), readName("object"));
        else if (keyword == "s")
            m_content.smoothing.set(m_content.faceCount(), readSmoothing());
        else if (keyword == "mtllib")
            m_content.addLibrary(readName("material library"));
        else
            return false;
        return true;
    }

    String readName(const char* what)
    {
        const std::uint64_t line = m_scanner.line();
        std::string name = m_scanner.restOfLine();
        if (!isUtf8(name))
            m_scanner.fail(std::string(what) + " name " + quoted(name) +
                               " is not valid UTF-8; convert the file",
                           line);
        return name;
    }

    uint readSmoothing()
    {
        const std::string text = m_scanner.restOfLine();
        const std::string_view word = std::string_view(text).substr(0, text.find_first_of(" \t#"));
        uint group = 0;
        if (word == "off")
            return 0;
        if (word == "on")
            return 1;
        if (scanNumber(word.data(), word.data() + word.size(), group) != word.data() + word.size())
            m_scanner.fail(quoted(text) + " is no smoothing group; write a number or \"off\"");
        return group;
    }

    void countOther(std::string_view keyword)
    {
        for (std::size_t i = 0; i < kStatementNotHeldCount; ++i)
            if (keyword == kStatementsNotHeld[i]) {
                m_notHeld[i].add(m_scanner.line());
                skipStatement();
                return;
            }
        --m_known;
        if (m_unknown.count == 0)
            m_firstUnknown = keyword;
        m_unknown.add(m_scanner.line());
    }

    // Curves and surfaces are often continued over several lines.
    void skipStatement()
    {
        while (!m_scanner.atLineEnd())
            m_scanner.word();
    }

    // Several kinds may dangle: the first line of the file is named.
    void checkReferences() const
    {
        const ObjReference* first = nullptr;
        for (const ObjReference* reference :
             {&m_pointReference, &m_texcoordReference, &m_normalReference}) {
            const std::uint64_t line = reference->firstDangling();
            if (line != 0 && (!first || line < first->firstDangling()))
                first = reference;
        }
        if (first)
            first->failDangling(m_scanner);
    }

    std::vector<std::string> warnings() const
    {
        std::vector<std::string> lines;
        const auto add = [&](std::uint64_t count, const std::string& text, std::uint64_t line) {
            if (count > 0)
                lines.push_back(text + ", first at line " + std::to_string(line));
        };
        for (std::size_t i = 0; i < kStatementNotHeldCount; ++i)
            add(m_notHeld[i].count,
                countOf(m_notHeld[i].count, "statement", "statements") + " \"" +
                    kStatementsNotHeld[i] + "\" left out",
                m_notHeld[i].firstLine);
        add(m_unknown.count,
            countOf(m_unknown.count, "line that is", "lines that are") +
                " no OBJ statement left out, such as " + quoted(m_firstUnknown),
            m_unknown.firstLine);
        add(m_extraNumbers.count,
            countOf(m_extraNumbers.count, "line", "lines") +
                " with more numbers than the statement has; these are left out",
            m_extraNumbers.firstLine);
        add(m_scanner.misplacedSigns(),
            countOf(m_scanner.misplacedSigns(), "number", "numbers") +
                " with the sign before the \"e\", read as if it stood behind",
            m_scanner.firstMisplacedSign());
        if (m_content.colourCount > 0 && !m_content.hasColours())
            lines.push_back("colours left out: only " + std::to_string(m_content.colourCount) +
                            " of " + std::to_string(m_content.points.size()) + " points have one");
        return lines;
    }

    ObjScanner m_scanner;
    ObjContent m_content;
    ObjReference m_pointReference{"point"}, m_texcoordReference{"texture coordinate"},
        m_normalReference{"normal"};

    std::uint64_t m_known = 0;  // statements that OBJ defines
    Tally m_notHeld[kStatementNotHeldCount];
    Tally m_unknown, m_extraNumbers;
    std::string_view m_firstUnknown;
};

std::string_view withoutByteOrderMark(std::string_view text)
{
    return text.substr(0, 3) == "\xEF\xBB\xBF" ? text.substr(3) : text;
}

void rejectBinary(std::string_view text, const std::string& path)
{
    const std::string_view mark = text.substr(0, 2);
    if (mark == "\xFE\xFF" || mark == "\xFF\xFE")
        failToRead(Code::Unsupported, path, "is UTF-16 text; save it as UTF-8");
    const std::size_t zero = text.find('\0');
    if (zero != std::string_view::npos)
        failToRead(Code::Unsupported, path,
                   "byte " + std::to_string(zero) +
                       " is 0: this is binary data or UTF-16, and neither OBJ text nor PLY",
                   atByte(zero));
}

}  // namespace

MeshRead readObj(std::string_view text, const std::string& path)
{
    rejectBinary(text, path);
    return ObjParser(withoutByteOrderMark(text), path).read();
}

}  // namespace TessaryMesh
