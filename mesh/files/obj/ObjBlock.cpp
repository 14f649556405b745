#include "files/obj/ObjBlock.h"

#include "base/MessageText.h"
#include "files/Names.h"
#include "files/obj/ObjScanner.h"

#include <algorithm>

namespace TessaryMesh {
namespace {

using Code = FileError::Code;

std::string countOf(std::size_t count, const char* one, const char* many)
{
    return std::to_string(count) + " " + (count == 1 ? one : many);
}

class ObjParser {
public:
    ObjParser(std::string_view text, const std::string& path, const ObjStart& start)
        : m_scanner(text, start.lines + 1, path), m_cornersBefore(start.corners)
    {
        m_block.references = start.references;
    }

    ObjBlock parse()
    {
        const std::uint64_t firstLine = m_scanner.line();
        while (!m_scanner.atEnd()) {
            if (!m_scanner.atLineEnd())
                readStatement();
            m_scanner.nextLine();
        }
        m_block.lines = m_scanner.line() - firstLine;
        m_tallies.misplacedSigns = m_scanner.misplacedSigns();
        return std::move(m_block);
    }

private:
    void readStatement()
    {
        const std::string_view keyword = m_scanner.word();
        ++m_tallies.known;
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
            m_tallies.extraNumbers.add(m_scanner.line());
        return std::min(count, N);
    }

    void needNumbers(std::size_t found, std::size_t needed, const char* what)
    {
        if (found < needed)
            m_scanner.fail(std::string(what) + " with " + countOf(found, "number", "numbers") +
                           "; it needs " + std::to_string(needed));
    }

    void addTo(ObjKind kind)
    {
        m_block.references[kind].addValue();
        if (m_block.references[kind].count() >= kNone)
            m_scanner.fail("the file has more values than 32-bit indices can name; split the mesh",
                           Code::TooLarge);
    }

    void readPoint()
    {
        float v[6];
        const std::size_t count = readNumbers(v);
        needNumbers(count, 3, "point");
        addTo(kObjPoint);
        m_block.points.push_back({v[0], v[1], v[2]});
        if (count == 6)
            m_block.addColour({v[3], v[4], v[5]});
        else if (count == 4)
            m_block.addWeight(v[3]);
        else if (count == 5)
            m_tallies.extraNumbers.add(m_scanner.line());
    }

    void readTexcoord()
    {
        float v[3] = {};
        const std::size_t count = readNumbers(v);
        needNumbers(count, 1, "texture coordinate");
        addTo(kObjTexcoord);
        m_block.addTexcoord({v[0], v[1], v[2]}, count == 3);
    }

    void readNormal()
    {
        float v[3];
        needNumbers(readNumbers(v), 3, "normal");
        addTo(kObjNormal);
        m_block.normals.push_back({v[0], v[1], v[2]});
    }

    void readFace()
    {
        const std::size_t first = m_block.corners.size();
        while (!m_scanner.atLineEnd())
            readCorner();
        if (m_block.corners.size() == first)
            m_scanner.fail("face without corners; it needs three or more");
        if (m_cornersBefore + m_block.corners.size() >= kNone)
            m_scanner.fail("the file has more corners than 32-bit indices can name; split the mesh",
                           Code::TooLarge);
        m_block.faceEnds.push_back(static_cast<uint>(m_block.corners.size()));
    }

    // Some programs write the slashes also where nothing follows: "1/" and "1//" are points.
    void readCorner()
    {
        const char* const begin = m_scanner.position();
        const std::size_t corner = m_block.corners.size();
        readIndex<kObjPoint>(corner);
        if (m_scanner.slash()) {
            if (!m_scanner.atSlash() && !m_scanner.atSeparator())
                readIndex<kObjTexcoord>(corner);
            if (m_scanner.slash() && !m_scanner.atSeparator())
                readIndex<kObjNormal>(corner);
        }
        if (!m_scanner.atSeparator())
            m_scanner.failAtIndex(begin);
    }

    // Corners before this one without such an index get none.
    template <ObjKind kind>
    void readIndex(std::size_t corner)
    {
        Array<uint>& indices = m_block.indicesOf(kind);
        if (indices.size() < corner)
            indices.resize(corner, kNone);
        indices.push_back(m_block.references[kind].resolve(m_scanner.index(), corner,
                                                           kObjKindNames[kind], m_scanner));
    }

    bool readState(std::string_view keyword)
    {
        if (keyword == "usemtl")
            set(m_block.material, readName());
        else if (keyword == "g")
            set(m_block.group, readName());
        else if (keyword == "o")
            set(m_block.object, readName());
        else if (keyword == "s")
            set(m_block.smoothing, readSmoothing());
        else if (keyword == "mtllib")
            m_block.libraries.push_back(readName());
        else if (keyword == "t")
            m_block.tags.push_back(readTag());
        else
            return false;
        return true;
    }

    template <class T>
    void set(FaceRuns<T>& runs, T value)
    {
        runs.emplace_back(m_block.faceEnds.size(), std::move(value));
    }

    String readName()
    {
        const std::uint64_t line = m_scanner.line();
        std::string name = m_scanner.restOfLine();
        if (name.size() > kLongestName)
            m_scanner.fail("a name of " + std::to_string(name.size()) +
                               " bytes; names have up to " + std::to_string(kLongestName),
                           line);
        if (!isUtf8(name))
            m_tallies.otherNames.add(line);
        return name;
    }

    // Of any length: a tag may list all sharp edges of a mesh.
    String readTag()
    {
        const std::uint64_t line = m_scanner.line();
        const std::string tag = m_scanner.restOfLine();
        if (!isUtf8(tag))
            m_tallies.otherNames.add(line);
        return tag;
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
        for (std::size_t i = 0; i < std::size(kObjStatementsNotHeld); ++i)
            if (keyword == kObjStatementsNotHeld[i]) {
                m_tallies.notHeld[i].add(m_scanner.line());
                skipStatement();
                return;
            }
        --m_tallies.known;
        if (m_tallies.unknown.count == 0)
            m_tallies.firstUnknown = keyword;
        m_tallies.unknown.add(m_scanner.line());
    }

    // Curves and surfaces are often continued over several lines.
    void skipStatement()
    {
        while (!m_scanner.atLineEnd())
            m_scanner.word();
    }

    ObjScanner m_scanner;
    std::uint64_t m_cornersBefore;
    ObjBlock m_block;
    ObjTallies& m_tallies = m_block.tallies;
};

}  // namespace

void ObjTallies::add(const ObjTallies& later, std::uint64_t linesBefore)
{
    if (unknown.count == 0)
        firstUnknown = later.firstUnknown;
    known += later.known;
    for (std::size_t i = 0; i < std::size(notHeld); ++i)
        notHeld[i].add(later.notHeld[i], linesBefore);
    unknown.add(later.unknown, linesBefore);
    extraNumbers.add(later.extraNumbers, linesBefore);
    otherNames.add(later.otherNames, linesBefore);
    misplacedSigns.add(later.misplacedSigns, linesBefore);
}

void ObjBlock::addColour(const float3& colour)
{
    ++colourCount;
    if (colours.size() + 1 == points.size())
        colours.push_back(colour);
}

void ObjBlock::addWeight(float weight)
{
    if (weight == 1)
        return;
    weights.resize(points.size() - 1, 1.0f);
    weights.push_back(weight);
}

void ObjBlock::addTexcoord(const float3& texcoord, bool hasW)
{
    if (hasW && !hasWideTexcoords) {
        hasWideTexcoords = true;
        wideTexcoords.resize(texcoords.size());
        for (std::size_t i = 0; i < texcoords.size(); ++i)
            wideTexcoords[i] = {texcoords[i].x, texcoords[i].y, 0};
        texcoords = {};
    }
    if (hasWideTexcoords)
        wideTexcoords.push_back(texcoord);
    else
        texcoords.push_back({texcoord.x, texcoord.y});
}

ObjBlock parseObjBlock(std::string_view text, const std::string& path, const ObjStart& start)
{
    return ObjParser(text, path, start).parse();
}

}  // namespace TessaryMesh
