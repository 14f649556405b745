#include "files/obj/Obj.h"

#include "base/Host.h"
#include "files/RowSections.h"
#include "files/obj/ObjProperties.h"

#include <algorithm>
#include <cstdint>
#include <string_view>

namespace TessaryMesh {
namespace {

void putPoint(const ObjProperties& mesh, std::size_t i, TextBuffer& out)
{
    const float3& p = (*mesh.points)[i];
    out << "v " << p.x << ' ' << p.y << ' ' << p.z;
    if (mesh.colour) {
        const float3 c = mesh.colour->valueOf(i);
        out << ' ' << c.x << ' ' << c.y << ' ' << c.z;
    } else if (mesh.weight) {
        out << ' ' << mesh.weight->valueOf(i);
    }
    out << '\n';
}

void putValue(const float2& v, TextBuffer& out)
{
    out << ' ' << v.x << ' ' << v.y;
}

void putValue(const float3& v, TextBuffer& out)
{
    out << ' ' << v.x << ' ' << v.y << ' ' << v.z;
}

/// A section of a statement for each of `count` elements.
template <class Put>
RowSection sectionOf(std::size_t count, const Put& put)
{
    return {count, [put](std::size_t begin, std::size_t end, TextBuffer& out) {
                for (std::size_t i = begin; i < end; ++i)
                    put(i, out);
            }};
}

template <class T>
RowSection valueSection(const std::optional<CornerValues<T>>& property, std::string_view keyword)
{
    return sectionOf(property ? property->values->size() : 0,
                     [&property, keyword](std::size_t i, TextBuffer& out) {
                         out << keyword;
                         putValue((*property->values)[i], out);
                         out << '\n';
                     });
}

void putStatement(const char* keyword, const String& name, TextBuffer& out)
{
    out << keyword << (name.empty() ? "" : " ") << name.view() << '\n';
}

void putStatement(const char* keyword, uint smoothing, TextBuffer& out)
{
    out << keyword << ' ';
    if (smoothing == 0)
        out << "off\n";
    else
        out << smoothing << '\n';
}

/// The statements of a property: one wherever the value of a face differs from that of the face before it.
template <class T>
class FaceStatements {
public:
    FaceStatements(const char* keyword, const std::optional<ElementValues<T>>& property)
        : m_keyword(keyword), m_property(property ? &*property : nullptr)
    {}

    // Readers give the default to the faces before the first statement. Without any other value, a
    // statement still tells that the property is there.
    void putIfAllAreDefault(std::size_t faceCount, TextBuffer& out) const
    {
        if (!m_property)
            return;
        std::size_t face = 0;
        while (face < faceCount && valueIndex(face) == kNone)
            ++face;
        if (face == faceCount)
            putStatement(m_keyword, T(), out);
    }

    /// Begins a row of faces in front of `face`.
    void start(std::size_t face)
    {
        m_index = m_property && face > 0 ? valueIndex(face - 1) : kNone;
    }

    void putBefore(std::size_t face, TextBuffer& out)
    {
        if (!m_property)
            return;
        const uint index = valueIndex(face);
        if (index == m_index)
            return;
        const bool differs = !(value(index) == value(m_index));
        m_index = index;
        if (differs)
            putStatement(m_keyword, value(index), out);
    }

private:
    // kNone stands for every default value.
    uint valueIndex(std::size_t face) const
    {
        const uint index = m_property->indexOf(face);
        return index == kNone || (*m_property->values)[index] == m_default ? kNone : index;
    }

    const T& value(uint index) const
    {
        return index == kNone ? m_default : (*m_property->values)[index];
    }

    const char* m_keyword;
    const ElementValues<T>* m_property;
    const T m_default = T();
    uint m_index = kNone;
};

class FaceText {
public:
    explicit FaceText(const ObjProperties& mesh)
        : m_mesh(mesh),
          m_object("o", mesh.object),
          m_group("g", mesh.group),
          m_material("usemtl", mesh.material),
          m_smoothing("s", mesh.smoothing)
    {}

    void putDefaults(TextBuffer& out) const
    {
        m_object.putIfAllAreDefault(m_mesh.faceCount(), out);
        m_group.putIfAllAreDefault(m_mesh.faceCount(), out);
        m_material.putIfAllAreDefault(m_mesh.faceCount(), out);
        m_smoothing.putIfAllAreDefault(m_mesh.faceCount(), out);
    }

    void put(std::size_t begin, std::size_t end, TextBuffer& out)
    {
        m_object.start(begin);
        m_group.start(begin);
        m_material.start(begin);
        m_smoothing.start(begin);
        for (std::size_t face = begin; face < end; ++face)
            putFace(face, out);
    }

private:
    void putFace(std::size_t face, TextBuffer& out)
    {
        m_object.putBefore(face, out);
        m_group.putBefore(face, out);
        m_material.putBefore(face, out);
        m_smoothing.putBefore(face, out);
        out << 'f';
        const Array<uint>& offset = *m_mesh.faceOffset;
        for (uint corner = offset[face]; corner < offset[face + 1]; ++corner)
            putCorner(corner, out);
        out << '\n';
    }

    void putCorner(uint corner, TextBuffer& out) const
    {
        const uint point = (*m_mesh.faceVertex)[corner];
        const uint texcoord = m_mesh.texcoord       ? m_mesh.texcoord->indexAt(corner, point)
                              : m_mesh.wideTexcoord ? m_mesh.wideTexcoord->indexAt(corner, point)
                                                    : kNone;
        const uint normal = m_mesh.normal ? m_mesh.normal->indexAt(corner, point) : kNone;
        out << ' ';
        putIndex(point, out);
        if (texcoord != kNone || normal != kNone)
            out << '/';
        if (texcoord != kNone)
            putIndex(texcoord, out);
        if (normal != kNone) {
            out << '/';
            putIndex(normal, out);
        }
    }

    static void putIndex(uint index, TextBuffer& out) { out << std::uint64_t{index} + 1; }

    const ObjProperties& m_mesh;
    FaceStatements<String> m_object, m_group, m_material;
    FaceStatements<uint> m_smoothing;
};

void putHeader(const ObjProperties& mesh, TextBuffer& out)
{
    out << "# " << mesh.points->size() << " points, " << mesh.faceCount() << " faces\n";
    if (mesh.materialLibrary)
        putStatement("mtllib", *mesh.materialLibrary, out);
}

// Behind the faces, which some of them speak of.
void putTags(const ObjProperties& mesh, TextBuffer& out)
{
    for (std::string_view rest = mesh.tags ? mesh.tags->view() : ""; !rest.empty();) {
        const std::string_view tag = rest.substr(0, rest.find('\n'));
        out << "t " << tag << '\n';
        rest.remove_prefix(std::min(tag.size() + 1, rest.size()));
    }
}

}  // namespace

std::vector<std::string> writeObj(const Object& mesh, OutputFile& output)
{
    ObjProperties properties = findObjProperties(mesh);
    const auto put = [&properties](auto function) {
        return [&properties, function](std::size_t, TextBuffer& out) { function(properties, out); };
    };
    const auto putDefaults = [](const ObjProperties& all, TextBuffer& out) {
        FaceText(all).putDefaults(out);
    };
    writeSections(
        {sectionOf(1, put(putHeader)),
         sectionOf(properties.points->size(),
                   [&properties](std::size_t i, TextBuffer& out) { putPoint(properties, i, out); }),
         valueSection(properties.texcoord, "vt"),
         valueSection(properties.wideTexcoord, "vt"),
         valueSection(properties.normal, "vn"),
         sectionOf(1, put(putDefaults)),
         {properties.faceCount(),
          [&properties](std::size_t begin, std::size_t end, TextBuffer& out) {
              FaceText(properties).put(begin, end, out);
          }},
         sectionOf(1, put(putTags))},
        output);
    return std::move(properties.warnings);
}

}  // namespace TessaryMesh
