#include "files/obj/Obj.h"

#include "base/Host.h"
#include "files/TextWriter.h"
#include "files/obj/ObjProperties.h"

#include <cstdint>

namespace TessaryMesh {
namespace {

void writePoints(const ObjProperties& mesh, TextWriter& out)
{
    for (std::size_t i = 0; i < mesh.points->size(); ++i) {
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
}

void writeValue(const float2& v, TextWriter& out)
{
    out << ' ' << v.x << ' ' << v.y;
}

void writeValue(const float3& v, TextWriter& out)
{
    out << ' ' << v.x << ' ' << v.y << ' ' << v.z;
}

template <class T>
void writeValues(const std::optional<CornerValues<T>>& property, std::string_view keyword,
                 TextWriter& out)
{
    if (!property)
        return;
    for (const T& value : *property->values) {
        out << keyword;
        writeValue(value, out);
        out << '\n';
    }
}

void writeStatement(const char* keyword, const String& name, TextWriter& out)
{
    out << keyword << (name.empty() ? "" : " ") << name.view() << '\n';
}

void writeStatement(const char* keyword, uint smoothing, TextWriter& out)
{
    out << keyword << ' ';
    if (smoothing == 0)
        out << "off\n";
    else
        out << smoothing << '\n';
}

/// Writes a statement wherever the value of a face differs from that of the face before it.
template <class T>
class StateWriter {
public:
    StateWriter(const char* keyword, const std::optional<ElementValues<T>>& property,
                std::size_t faceCount, TextWriter& out)
        : m_keyword(keyword), m_property(property ? &*property : nullptr), m_out(out)
    {
        if (!m_property)
            return;
        std::size_t face = 0;
        while (face < faceCount && valueIndex(face) == kNone)
            ++face;
        // Readers give the default to the faces before the first statement. Without any other
        // value, a statement still tells that the property is there.
        if (face == faceCount)
            writeStatement(m_keyword, T(), m_out);
    }

    void beginFace(std::size_t face)
    {
        if (!m_property)
            return;
        const uint index = valueIndex(face);
        if (index == m_index)
            return;
        const bool differs = !(value(index) == value(m_index));
        m_index = index;
        if (differs)
            writeStatement(m_keyword, value(index), m_out);
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
    TextWriter& m_out;
    const T m_default = T();
    uint m_index = kNone;
};

class FaceWriter {
public:
    FaceWriter(const ObjProperties& mesh, TextWriter& out) : m_mesh(mesh), m_out(out) {}

    void write()
    {
        const std::size_t faces = m_mesh.faceCount();
        StateWriter<String> object("o", m_mesh.object, faces, m_out);
        StateWriter<String> group("g", m_mesh.group, faces, m_out);
        StateWriter<String> material("usemtl", m_mesh.material, faces, m_out);
        StateWriter<uint> smoothing("s", m_mesh.smoothing, faces, m_out);
        for (std::size_t face = 0; face < faces; ++face) {
            object.beginFace(face);
            group.beginFace(face);
            material.beginFace(face);
            smoothing.beginFace(face);
            m_out << 'f';
            for (uint corner = (*m_mesh.faceOffset)[face]; corner < (*m_mesh.faceOffset)[face + 1];
                 ++corner)
                writeCorner(corner);
            m_out << '\n';
        }
    }

private:
    void writeCorner(uint corner)
    {
        const uint point = (*m_mesh.faceVertex)[corner];
        const uint texcoord = m_mesh.texcoord       ? m_mesh.texcoord->indexAt(corner, point)
                              : m_mesh.wideTexcoord ? m_mesh.wideTexcoord->indexAt(corner, point)
                                                    : kNone;
        const uint normal = m_mesh.normal ? m_mesh.normal->indexAt(corner, point) : kNone;
        m_out << ' ';
        writeIndex(point);
        if (texcoord != kNone || normal != kNone)
            m_out << '/';
        if (texcoord != kNone)
            writeIndex(texcoord);
        if (normal != kNone) {
            m_out << '/';
            writeIndex(normal);
        }
    }

    void writeIndex(uint index) { m_out << std::uint64_t{index} + 1; }

    const ObjProperties& m_mesh;
    TextWriter& m_out;
};

}  // namespace

std::vector<std::string> writeObj(const Object& mesh, OutputFile& output)
{
    ObjProperties properties = findObjProperties(mesh);
    TextWriter out(output);
    out << "# " << properties.points->size() << " points, " << properties.faceCount() << " faces\n";
    if (properties.materialLibrary)
        writeStatement("mtllib", *properties.materialLibrary, out);
    writePoints(properties, out);
    writeValues(properties.texcoord, "vt", out);
    writeValues(properties.wideTexcoord, "vt", out);
    writeValues(properties.normal, "vn", out);
    FaceWriter(properties, out).write();
    out.flush();
    return std::move(properties.warnings);
}

}  // namespace TessaryMesh
