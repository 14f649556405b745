#include "files/off/Off.h"

#include "base/MessageText.h"
#include "files/FileErrors.h"
#include "files/TextWords.h"

#include <algorithm>
#include <cstdint>

namespace TessaryMesh {
namespace {

using Code = FileError::Code;

constexpr uint kPollRows = 0xFFF;

/// The letters before "OFF".
struct Letters {
    bool isOff = false;
    bool hasTexcoords = false, hasColours = false, hasNormals = false, hasMore = false;
};

bool take(std::string_view& word, std::string_view prefix)
{
    const bool found = word.substr(0, prefix.size()) == prefix;
    word.remove_prefix(found ? prefix.size() : 0);
    return found;
}

Letters lettersOf(std::string_view word)
{
    Letters letters;
    letters.hasTexcoords = take(word, "ST");
    letters.hasColours = take(word, "C");
    letters.hasNormals = take(word, "N");
    letters.hasMore = take(word, "4");
    letters.hasMore = take(word, "n") || letters.hasMore;
    letters.isOff = word == "OFF";
    return letters;
}

/// Colours of as many numbers as the first one has, scaled when all are there.
class Colours {
public:
    /// The numbers of one colour, 3 or 4; `before` elements before the first one have none.
    void add(const std::vector<std::string_view>& words, std::size_t begin, std::size_t count,
             const TextWords& text, std::size_t before = 0)
    {
        if (m_width == 0) {
            m_width = count;
            for (std::size_t i = 0; i < before; ++i)
                addNone();
        }
        for (std::size_t k = 0; k < m_width; ++k) {
            if (k >= count) {
                m_numbers.push_back(1);  // opaque
                continue;
            }
            const std::string_view word = words[begin + k];
            m_areWhole = m_areWhole && word.find_first_of(".eEnNiI") == std::string_view::npos;
            m_numbers.push_back(text.numberOf<float>(word, "a part of a colour"));
            m_largest = std::max(m_largest, m_numbers[m_numbers.size() - 1]);
        }
        m_opaque.resize(m_numbers.size(), false);
        if (count < m_width)
            m_opaque[m_numbers.size() - 1] = true;
    }

    /// For an element without a colour: the grey that the format names.
    void addNone()
    {
        for (std::size_t k = 0; k < m_width; ++k)
            m_numbers.push_back(k < 3 ? 2.0f / 3 : 1.0f);
        m_opaque.resize(m_numbers.size(), true);
    }

    std::size_t width() const { return m_width; }

    void addTo(Object& mesh, const char* name, const String& component)
    {
        if (m_areWhole && m_largest > 1)
            for (std::size_t i = 0; i < m_numbers.size(); ++i)
                if (!m_opaque[i])
                    m_numbers[i] /= 255;
        if (m_width == 3 || (component == Geometry::sPointComp && m_width == 4 && isOpaque()))
            store<float3>(mesh, name, component);
        else if (m_width == 4)
            store<Korvane::Math::float4>(mesh, name, component);
    }

private:
    // Points have to have four numbers for some programs.
    bool isOpaque() const
    {
        for (std::size_t i = 3; i < m_numbers.size(); i += m_width)
            if (m_numbers[i] != 1)
                return false;
        return true;
    }

    template <class T>
    void store(Object& mesh, const char* name, const String& component) const
    {
        constexpr std::size_t kWidth = sizeof(T) / sizeof(float);
        const auto values = makeMutable<Array<T>>(m_numbers.size() / m_width);
        auto* const to = reinterpret_cast<float*>(values->data());
        for (std::size_t i = 0; i < values->size() * kWidth; ++i)
            to[i] = m_numbers[i / kWidth * m_width + i % kWidth];
        Geometry::addDataGeoProperty<T>(mesh, name, component, values);
    }

    std::size_t m_width = 0;
    bool m_areWhole = true;
    float m_largest = 0;
    Array<float> m_numbers;
    Array<bool> m_opaque;  // numbers that are not to be scaled
};

class OffReader {
public:
    OffReader(std::string_view text, const std::string& path) : m_text(text, path, '#') {}

    MeshRead read()
    {
        readHead();
        for (std::uint64_t i = 0; i < m_pointCount; ++i)
            readPoint(i);
        for (std::uint64_t i = 0; i < m_faceCount; ++i)
            readFace(i);
        if (m_text.nextLine())
            warn(1, "more lines follow the last face and are left out");
        warn(m_extraNumbers, "points with more numbers than the format has; these are left out");
        warn(m_colourIndices,
             "faces with a colour of the viewer's table, which is left out; write r g b");
        warn(m_faceColours.width() > 0 ? m_facesWithoutColour : 0,
             "faces without a colour got the grey 0.667");
        return {mesh(), nullptr, std::move(m_warnings)};
    }

private:
    void warn(std::size_t count, const char* text)
    {
        if (count > 0)
            m_warnings.push_back((count > 1 ? std::to_string(count) + " " : "") + text);
    }

    void readHead()
    {
        m_letters = lettersOf(m_text.word());
        if (m_letters.hasMore)
            m_text.fail(
                "points of more than three coordinates (4OFF, nOFF) are not read; write OFF",
                Code::Unsupported);
        std::string_view word = m_text.word();
        if (word == "BINARY")
            m_text.fail("binary OFF is not read; save it as ASCII OFF", Code::Unsupported);
        m_pointCount = m_text.numberOf<std::uint64_t>(word, "a number of points");
        m_faceCount = m_text.number<std::uint64_t>("a number of faces");
        m_text.restOfLine();  // the number of edges, which nobody needs
        if (std::max(m_pointCount, m_faceCount) >= kNone)
            m_text.fail("more points or faces than 32-bit indices can name; split the mesh",
                        Code::TooLarge);
    }

    // The words of the next line.
    void readRow(const char* what, std::uint64_t row, std::uint64_t count)
    {
        if ((row & kPollRows) == 0)
            throwIfCancelled();
        m_words.clear();
        if (!m_text.nextLine())
            m_text.fail("the file ends at " + std::string(what) + " " + std::to_string(row) +
                        " of " + std::to_string(count));
        for (std::string_view word = m_text.wordOfLine(); !word.empty(); word = m_text.wordOfLine())
            m_words.push_back(word);
    }

    float3 vectorAt(std::size_t at) const
    {
        return {m_text.numberOf<float>(m_words[at], "a number"),
                m_text.numberOf<float>(m_words[at + 1], "a number"),
                m_text.numberOf<float>(m_words[at + 2], "a number")};
    }

    void readPoint(std::uint64_t row)
    {
        readRow("point", row, m_pointCount);
        const std::size_t least = 3 + 3 * m_letters.hasNormals + 2 * m_letters.hasTexcoords;
        const std::size_t count = m_words.size();
        if (count < least)
            m_text.fail("point with " + std::to_string(count) + " numbers; it needs " +
                        std::to_string(least));
        m_points.push_back(vectorAt(0));
        std::size_t at = 3;
        if (m_letters.hasNormals) {
            m_normals.push_back(vectorAt(at));
            at += 3;
        }
        const std::size_t end = count - (m_letters.hasTexcoords ? 2 : 0), left = end - at;
        const bool hasColour = (left == 3 || left == 4) && (row == 0 || m_colours.width() > 0);
        if (hasColour)
            m_colours.add(m_words, at, left, m_text);
        else if (m_colours.width() > 0 || (m_letters.hasColours && row == 0))
            m_text.fail("point with a colour of " + std::to_string(left) +
                        " numbers; write three or four for every point");
        else
            m_extraNumbers += left > 0;
        if (m_letters.hasTexcoords)
            m_texcoords.push_back({m_text.numberOf<float>(m_words[end], "a number"),
                                   m_text.numberOf<float>(m_words[end + 1], "a number")});
    }

    void readFace(std::uint64_t row)
    {
        readRow("face", row, m_faceCount);
        const auto size = m_text.numberOf<std::uint64_t>(m_words[0], "a number of corners");
        if (size > m_words.size() - 1)
            m_text.fail("face of " + std::to_string(size) + " corners with " +
                        std::to_string(m_words.size() - 1) + " numbers; correct the line");
        if (m_corners.size() + size >= kNone)
            m_text.fail("more corners than 32-bit indices can name; split the mesh",
                        Code::TooLarge);
        for (std::size_t k = 1; k <= size; ++k)
            m_corners.push_back(m_text.numberOf<uint>(m_words[k], "the number of a point"));
        m_offsets.push_back(static_cast<uint>(m_corners.size()));
        readFaceColour(1 + static_cast<std::size_t>(size));
    }

    void readFaceColour(std::size_t at)
    {
        const std::size_t count = m_words.size() - at;
        if (count == 3 || count == 4)
            return m_faceColours.add(m_words, at, count, m_text, m_facesWithoutColour);
        m_colourIndices += count > 0;
        ++m_facesWithoutColour;
        m_faceColours.addNone();
    }

    MutablePtr<Object> mesh()
    {
        MutablePtr<Object> mesh =
            Geometry::makeMesh(std::move(m_points), std::move(m_offsets), std::move(m_corners));
        if (m_letters.hasNormals)
            Geometry::addDataGeoProperty<float3>(*mesh, "normal", Geometry::sPointComp,
                                                 makeMutable<Array<float3>>(std::move(m_normals)));
        m_colours.addTo(*mesh, "color", Geometry::sPointComp);
        if (m_letters.hasTexcoords)
            Geometry::addDataGeoProperty<float2>(
                *mesh, "texcoord", Geometry::sPointComp,
                makeMutable<Array<float2>>(std::move(m_texcoords)));
        m_faceColours.addTo(*mesh, "face_color", Geometry::sFaceComp);
        return mesh;
    }

    TextWords m_text;
    Letters m_letters;
    std::vector<std::string_view> m_words;
    std::uint64_t m_pointCount = 0, m_faceCount = 0;
    Array<float3> m_points, m_normals;
    Array<float2> m_texcoords;
    Array<uint> m_corners, m_offsets{0};
    Colours m_colours, m_faceColours;
    std::size_t m_extraNumbers = 0, m_colourIndices = 0, m_facesWithoutColour = 0;
    std::vector<std::string> m_warnings;
};

}  // namespace

bool isOff(std::string_view bytes)
{
    const std::string path;
    return lettersOf(TextWords(bytes, path, '#').word()).isOff;
}

MeshRead readOff(const Input& input, const std::string& path)
{
    InputBuffer buffer;
    return OffReader(input.part(0, input.size(), buffer), path).read();
}

}  // namespace TessaryMesh
