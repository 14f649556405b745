#include "files/stl/Stl.h"

#include "base/MessageText.h"
#include "files/FileErrors.h"
#include "files/TextWords.h"
#include "files/stl/PointWelder.h"
#include "files/stl/StlLayout.h"

#include <algorithm>
#include <cstring>

namespace TessaryMesh {
namespace {

using namespace Stl;
using Code = FileError::Code;

/// What facets become, in their order.
class FacetMesh {
public:
    explicit FacetMesh(const std::string& path) : m_path(path) {}

    std::size_t faceCount() const { return m_offsets.size() - 1; }
    std::size_t cornersOfFace() const { return m_corners.size() - m_offsets[m_offsets.size() - 1]; }

    void addCorner(const float3& point) { m_corners.push_back(m_welder.add(point)); }

    void endFace(const float3& normal)
    {
        if (m_corners.size() >= kNone)
            failToRead(Code::TooLarge, m_path,
                       "has more corners than 32-bit indices can name; split the mesh");
        m_offsets.push_back(static_cast<uint>(m_corners.size()));
        m_normals.push_back(normal);
    }

    MutablePtr<Object> mesh()
    {
        MutablePtr<Object> mesh = Geometry::makeMesh(std::move(m_welder.points()),
                                                     std::move(m_offsets), std::move(m_corners));
        addToFaces(*mesh, "normal", std::move(m_normals));
        return mesh;
    }

    template <class T>
    static void addToFaces(Object& mesh, const char* name, Array<T> values)
    {
        Geometry::addDataGeoProperty<T>(mesh, name, Geometry::sFaceComp,
                                        makeMutable<Array<T>>(std::move(values)));
    }

private:
    const std::string& m_path;
    PointWelder m_welder;
    Array<uint> m_corners, m_offsets{0};
    Array<float3> m_normals;
};

float3 vectorAt(const char* bytes)
{
    return {getFloat(bytes), getFloat(bytes + 4), getFloat(bytes + 8)};
}

// The text in front of the zeros or blanks that fill the header up.
std::string_view headerText(std::string_view header)
{
    const std::size_t end = header.find_last_not_of(std::string_view(" \0", 2));
    return header.substr(0, end == std::string_view::npos ? 0 : end + 1);
}

class BinaryReader {
public:
    BinaryReader(const Input& input, const std::string& path) : m_input(input), m_mesh(path) {}

    MeshRead read()
    {
        InputBuffer buffer;
        const std::string_view head = m_input.head(kHeadSize, buffer);
        const std::string header(headerText(head.substr(0, kHeaderSize)));
        m_count = getUint(head.data() + kHeaderSize);
        for (std::size_t first = 0; first < m_count; first += kFacetsPerBlock) {
            throwIfCancelled();
            readBlock(first, std::min(first + kFacetsPerBlock, m_count));
        }
        MeshRead read{m_mesh.mesh(), findFormat("stl"), {}};
        if (std::any_of(m_attributes.begin(), m_attributes.end(), [](auto a) { return a != 0; }))
            FacetMesh::addToFaces(*read.mesh, "stl_attribute", std::move(m_attributes));
        if (!header.empty())
            read.mesh->setProperty("stl_header", String(header));
        return read;
    }

private:
    static constexpr std::size_t kFacetsPerBlock = 16384;

    void readBlock(std::size_t first, std::size_t last)
    {
        InputBuffer buffer;
        const std::string_view bytes =
            m_input.part(kHeadSize + first * kFacetSize, kHeadSize + last * kFacetSize, buffer);
        for (std::size_t at = 0; at < bytes.size(); at += kFacetSize) {
            const char* const facet = bytes.data() + at;
            for (std::size_t corner = 1; corner <= 3; ++corner)
                m_mesh.addCorner(vectorAt(facet + 12 * corner));
            m_mesh.endFace(vectorAt(facet));
            m_attributes.push_back(getUshort(facet + 48));
        }
    }

    const Input& m_input;
    std::size_t m_count = 0;
    FacetMesh m_mesh;
    Array<unsigned short> m_attributes;
};

class TextReader {
public:
    TextReader(std::string_view text, const std::string& path) : m_words(text, path), m_mesh(path)
    {}

    MeshRead read()
    {
        while (m_words.nextLine()) {
            throwIfCancelled();
            readSolid();
        }
        m_objects.resize(m_mesh.faceCount(), m_name);
        MeshRead read{m_mesh.mesh(), findFormat("stl-ascii"), {}};
        if (m_hasNames)
            FacetMesh::addToFaces(*read.mesh, "object", std::move(m_objects));
        if (m_otherBytes > 0)
            read.warnings.push_back(std::to_string(m_otherBytes) +
                                    (m_otherBytes == 1 ? " name is" : " names are") +
                                    " not UTF-8 and kept byte for byte");
        return read;
    }

private:
    void expect(std::string_view keyword)
    {
        const std::string_view found = m_words.word();
        if (!isWord(found, keyword))
            m_words.fail((found.empty() ? "the file ends" : quoted(found)) + " where \"" +
                         std::string(keyword) + "\" was expected; correct the line");
    }

    void readSolid()
    {
        expect("solid");
        const std::string_view name = m_words.restOfLine();
        m_objects.resize(m_mesh.faceCount(), m_name);
        m_name = String(std::string(name));
        m_hasNames = m_hasNames || !name.empty();
        m_otherBytes += !isUtf8(name);
        for (;;) {
            const std::string_view keyword = m_words.word();
            if (isWord(keyword, "facet"))
                readFacet();
            else if (isWord(keyword, "endsolid"))
                break;
            else
                m_words.fail((keyword.empty() ? "the file ends" : quoted(keyword)) +
                             " where \"facet\" or \"endsolid\" was expected; correct the line");
        }
        m_words.restOfLine();  // the name again
    }

    void readFacet()
    {
        expect("normal");
        const float3 normal = readVector();
        expect("outer");
        expect("loop");
        std::string_view keyword = m_words.word();
        for (; isWord(keyword, "vertex"); keyword = m_words.word())
            m_mesh.addCorner(readVector());
        if (!isWord(keyword, "endloop"))
            m_words.fail((keyword.empty() ? "the file ends" : quoted(keyword)) +
                         " where \"vertex\" or \"endloop\" was expected; correct the line");
        if (m_mesh.cornersOfFace() == 0)
            m_words.fail("facet without corners; it needs three or more");
        expect("endfacet");
        m_mesh.endFace(normal);
    }

    float3 readVector()
    {
        const float x = m_words.number<float>("a coordinate");
        const float y = m_words.number<float>("a coordinate");
        return {x, y, m_words.number<float>("a coordinate")};
    }

    TextWords m_words;
    FacetMesh m_mesh;
    String m_name;
    Array<String> m_objects;
    bool m_hasNames = false;
    std::size_t m_otherBytes = 0;  // names that are not UTF-8
};

}  // namespace

namespace Stl {

bool isWord(std::string_view found, std::string_view keyword)
{
    return found.size() == keyword.size() &&
           std::equal(found.begin(), found.end(), keyword.begin(),
                      [](char a, char b) { return (a >= 'A' && a <= 'Z' ? a + 32 : a) == b; });
}

}  // namespace Stl

bool isBinaryStl(std::string_view bytes, std::uint64_t size)
{
    return bytes.size() >= kHeadSize &&
           size == kHeadSize + std::uint64_t{kFacetSize} * getUint(bytes.data() + kHeaderSize);
}

bool isAsciiStl(std::string_view bytes)
{
    const std::string path;
    TextWords words(bytes, path);
    if (!isWord(words.word(), "solid") || bytes.find('\0') != std::string_view::npos)
        return false;
    words.restOfLine();
    const std::string_view next = words.word();
    return isWord(next, "facet") || isWord(next, "endsolid");
}

MeshRead readStl(const Input& input, const std::string& path)
{
    InputBuffer buffer;
    const std::string_view head = input.head(4096, buffer);
    if (isBinaryStl(head, input.size()))
        return BinaryReader(input, path).read();
    if (isAsciiStl(head))
        return TextReader(input.part(0, input.size(), buffer), path).read();
    if (head.size() < kHeadSize)
        failToRead(Code::Malformed, path,
                   "is neither ASCII STL nor long enough for a binary one; write it again",
                   atByte(head.size()));
    failToRead(Code::Malformed, path,
               "byte 80: binary STL of " + std::to_string(getUint(head.data() + kHeaderSize)) +
                   " facets has another size than the file's " + std::to_string(input.size()) +
                   " bytes; write it again",
               atByte(kHeaderSize));
}

}  // namespace TessaryMesh
