#include "files/ply/Ply.h"

#include "base/Host.h"
#include "base/MessageText.h"
#include "files/TextBlocks.h"
#include "files/ply/PlyBytes.h"
#include "files/ply/PlyErrors.h"
#include "files/ply/PlyInput.h"
#include "files/ply/PlyPlan.h"
#include "files/ply/PlyStorage.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace TessaryMesh {
namespace {

using namespace Ply;

/// What a mesh is made of, and how many bytes of the body are behind all elements.
struct Elements {
    Rows points{}, faces{};
    std::size_t bytesLeft = 0;
};

String componentOf(Owner owner)
{
    return owner == Owner::Point  ? Geometry::sPointComp
           : owner == Owner::Face ? Geometry::sFaceComp
                                  : Geometry::sFaceVertexComp;
}

class MeshBuilder {
public:
    MeshBuilder(Plan plan, Elements elements, bool swap, const std::string& path,
                std::vector<std::string>& warnings)
        : m_plan(std::move(plan)),
          m_points(std::move(elements.points)),
          m_faces(std::move(elements.faces)),
          m_swap(swap),
          m_path(path),
          m_warnings(warnings)
    {}

    MutablePtr<Object> build()
    {
        for (const PlannedProperty& property : m_plan.properties)
            m_storages.push_back(allocate(property));
        Array<float3> positions = readPoints();
        Array<uint> faceVertex = readFaces();
        Array<uint> faceOffset =
            m_plan.face ? std::move(m_faces.offsets[m_plan.topology]) : Array<uint>{0};
        finishStorages();
        MutablePtr<Object> mesh =
            Geometry::makeMesh(std::move(positions), std::move(faceOffset), std::move(faceVertex));
        for (std::size_t i = 0; i < m_storages.size(); ++i)
            if (!m_plan.properties[i].isCopy)
                add(m_plan.properties[i], m_storages[i], *mesh);
        return mesh;
    }

private:
    Rows& rowsOf(const PlannedProperty& property)
    {
        return property.owner == Owner::Point ? m_points : m_faces;
    }

    Storage allocate(const PlannedProperty& property)
    {
        const Rows& rows = rowsOf(property);
        const std::size_t rowCount = rows.count();
        if (property.isList()) {
            const Array<uint>& offsets = rows.offsets[property.columns[0]];
            return makeStorage(nameOf(rows.element->properties[property.columns[0]].type),
                               offsets[rowCount]);
        }
        if (property.isEightBit)
            return makeStorage(property.columns.size() == 3 ? "uchar3" : "uchar4", rowCount);
        return makeStorage(property.type, property.owner == Owner::Corner
                                              ? rows.offsets[m_plan.topology][rowCount]
                                              : rowCount);
    }

    // Where the columns of the planned properties of one element go.
    std::vector<Sink> sinksFor(const Rows& rows)
    {
        std::vector<Sink> sinks(rows.element->properties.size());
        for (std::size_t i = 0; i < m_storages.size(); ++i) {
            const PlannedProperty& property = m_plan.properties[i];
            if (&rowsOf(property) != &rows)
                continue;
            const Storage& storage = m_storages[i];
            const std::size_t size = sizeOf(storage.form.scalar);
            for (std::size_t k = 0; storage.bytes && k < property.columns.size(); ++k)
                sinks[property.columns[k]] = {storage.bytes + k * size, size * storage.form.count};
        }
        return sinks;
    }

    Array<float3> readPoints()
    {
        std::vector<Sink> sinks = sinksFor(m_points);
        Array<float3> positions(m_points.count());
        bool isFloat3 = true;
        for (const std::size_t column : m_plan.position)
            isFloat3 = isFloat3 && m_plan.vertex->properties[column].type == Scalar::Float32;
        if (positions.empty())
            return positions;
        if (!isFloat3)
            return convertPoints(std::move(sinks));
        auto* const bytes = reinterpret_cast<unsigned char*>(positions.data());
        for (std::size_t k = 0; k < 3; ++k)
            sinks[m_plan.position[k]] = {bytes + k * sizeof(float), sizeof(float3)};
        copyRows(m_points, sinks);
        if (m_swap)
            swapScalars(bytes, sizeof(float), 3 * positions.size());
        return positions;
    }

    Array<float3> convertPoints(std::vector<Sink> sinks)
    {
        const std::size_t count = m_points.count();
        Storage coordinates[3];
        for (std::size_t k = 0; k < 3; ++k) {
            const Scalar type = m_plan.vertex->properties[m_plan.position[k]].type;
            coordinates[k] = makeStorage(nameOf(type), count);
            sinks[m_plan.position[k]] = {coordinates[k].bytes, sizeOf(type)};
        }
        copyRows(m_points, sinks);
        Array<float3> positions(count);
        std::size_t changed = 0;
        for (std::size_t k = 0; k < 3; ++k) {
            swapIfNeeded(coordinates[k]);
            changed += convert(coordinates[k], &positions[0].x + k);
        }
        if (changed > 0)
            m_warnings.push_back(std::to_string(changed) + " of " + std::to_string(3 * count) +
                                 " point coordinates were rounded to float, the mesh's type");
        return positions;
    }

    // Writes every third float from `to` on, and counts the values that a float cannot hold.
    static std::size_t convert(const Storage& from, float* to)
    {
        return withScalar(from.form.scalar, [&](auto zero) {
            const auto* const values = reinterpret_cast<const decltype(zero)*>(from.bytes);
            std::size_t changed = 0;
            for (std::size_t i = 0; i < from.count; ++i) {
                const double value = static_cast<double>(values[i]);
                const float rounded = toFloat(value);
                to[3 * i] = rounded;
                changed += static_cast<double>(rounded) != value && !std::isnan(value);
            }
            return changed;
        });
    }

    // Where a cast would be undefined, the value becomes infinite.
    static float toFloat(double value)
    {
        if (std::isfinite(value) && std::fabs(value) > std::numeric_limits<float>::max())
            return value > 0 ? std::numeric_limits<float>::infinity()
                             : -std::numeric_limits<float>::infinity();
        return static_cast<float>(value);
    }

    Array<uint> readFaces()
    {
        if (!m_plan.face)
            return {};
        std::vector<Sink> sinks = sinksFor(m_faces);
        const Scalar type = m_plan.face->properties[m_plan.topology].type;
        Array<uint> faceVertex(m_faces.offsets[m_plan.topology][m_faces.count()]);
        const bool isWide = sizeOf(type) == sizeof(uint);
        Storage narrow = isWide ? Storage() : makeStorage(nameOf(type), faceVertex.size());
        auto* const bytes = reinterpret_cast<unsigned char*>(faceVertex.data());
        sinks[m_plan.topology] = {isWide ? bytes : narrow.bytes, 0};
        copyRows(m_faces, sinks);
        if (isWide && m_swap)
            swapScalars(bytes, sizeof(uint), faceVertex.size());
        if (!isWide)
            widen(narrow, faceVertex);
        if (type == Scalar::Int8 || type == Scalar::Int16 || type == Scalar::Int32)
            refuseNegative(faceVertex);
        return faceVertex;
    }

    void widen(Storage& narrow, Array<uint>& faceVertex)
    {
        swapIfNeeded(narrow);
        withScalar(narrow.form.scalar, [&](auto zero) {
            const auto* const values = reinterpret_cast<const decltype(zero)*>(narrow.bytes);
            std::copy(values, values + faceVertex.size(), faceVertex.begin());
        });
    }

    // Points beyond the last one are left to the validation; a negative number would pass there as
    // a large one.
    void refuseNegative(const Array<uint>& faceVertex) const
    {
        uint all = 0;
        for (const uint point : faceVertex)
            all |= point;
        if (all >> 31 == 0)
            return;
        const Array<uint>& offset = m_faces.offsets[m_plan.topology];
        std::size_t corner = 0;
        while (faceVertex[corner] >> 31 == 0)
            ++corner;
        std::size_t face = 0;
        while (offset[face + 1] <= corner)
            ++face;
        FileError::Place place;
        place.element = m_plan.face->name;
        place.row = face;
        fail(m_path, place,
             "face " + std::to_string(face) + " names point " +
                 std::to_string(static_cast<int>(faceVertex[corner])) +
                 "; points are numbered from 0, correct the face");
    }

    void swapIfNeeded(Storage& storage) const
    {
        if (m_swap)
            swapScalars(storage.bytes, sizeOf(storage.form.scalar),
                        storage.count * storage.form.count);
    }

    void finishStorages()
    {
        for (std::size_t i = 0; i < m_storages.size(); ++i) {
            swapIfNeeded(m_storages[i]);
            if (m_plan.properties[i].type == "bool")
                normaliseBools(m_storages[i]);
            if (m_plan.properties[i].isCopy)
                compareCopy(i);
            else if (m_plan.properties[i].isEightBit)
                m_storages[i] = coloursOf(m_storages[i], m_plan.properties[i].type);
        }
    }

    // The exact values come before their copy.
    void compareCopy(std::size_t i)
    {
        const PlannedProperty& copy = m_plan.properties[i];
        for (std::size_t k = 0; k < i; ++k) {
            const PlannedProperty& exact = m_plan.properties[k];
            if (exact.owner != copy.owner || exact.name != copy.name || exact.isEightBit)
                continue;
            const std::size_t count = differencesOf(m_storages[i], m_storages[k]);
            if (count > 0)
                m_warnings.push_back(std::to_string(count) + " 8-bit numbers of " +
                                     nameOf(copy.owner) + " property " + quoted(copy.name) +
                                     " are not those of its exact values, as after an edit; the "
                                     "exact ones are read");
        }
    }

    void add(const PlannedProperty& property, const Storage& storage, Object& mesh)
    {
        const std::string name = freeName(property, mesh);
        if (property.isList())
            addList(property, storage, name, mesh);
        else
            storage.addTo(mesh, name, componentOf(property.owner));
    }

    static bool isFree(const std::string& name, const PlannedProperty& property, const Object& mesh)
    {
        if (mesh.hasProperty(name) || name == Geometry::sRenderSettings.view())
            return false;
        return !property.isList() || (!mesh.hasProperty(name + kListComponentEnding) &&
                                      !mesh.hasProperty(name + kListOffsetEnding));
    }

    // A mesh has one property of a name; a PLY file may have it on points and on faces.
    std::string freeName(const PlannedProperty& property, const Object& mesh)
    {
        if (isFree(property.name, property, mesh))
            return property.name;
        std::string name = nameOf(property.owner) + ("_" + property.name);
        while (!isFree(name, property, mesh))
            name += '_';
        m_warnings.push_back(std::string(nameOf(property.owner)) + " property " +
                             quoted(property.name) + " is called " + quoted(name) +
                             " in the mesh, where the name is taken");
        return name;
    }

    void addList(const PlannedProperty& property, const Storage& storage, const std::string& name,
                 Object& mesh)
    {
        const auto component = Korvane::createObject();
        Geometry::populateComponentGeoProperty(static_cast<uint>(storage.count), *component);
        mesh.setProperty(name + kListComponentEnding, component);
        storage.addTo(mesh, name, name + kListComponentEnding);

        Array<uint>& offsets = rowsOf(property).offsets[property.columns[0]];
        const String offsetName = name + kListOffsetEnding;
        Geometry::addDataGeoProperty<uint>(mesh, offsetName, name,
                                           makeMutable<Array<uint>>(std::move(offsets)));
        const auto offsetProperty =
            makeMutable<Object>(*Geometry::getDataGeoProperty(mesh, offsetName));
        offsetProperty->setProperty(
            Geometry::sDependsOn,
            makeMutable<Array<String>>(Array<String>{componentOf(property.owner)}));
        mesh.setProperty(offsetName, offsetProperty);
    }

    Plan m_plan;
    Rows m_points;
    Rows m_faces;
    bool m_swap;
    const std::string& m_path;
    std::vector<std::string>& m_warnings;
    std::vector<Storage> m_storages;
};

// Of the body's elements a mesh takes two.
Elements findRows(const Header& header, const Plan& plan, std::string_view body,
                  const std::string& path, std::vector<std::string>& warnings)
{
    RowFinder finder(body, header.size, needsSwap(header.encoding), path);
    Elements found;
    for (const Element& element : header.elements) {
        Rows rows = finder.take(element);
        if (&element == plan.vertex)
            found.points = std::move(rows);
        else if (&element == plan.face)
            found.faces = std::move(rows);
        else if (element.count > 0)
            warnings.push_back("element " + quoted(element.name) + " of " +
                               std::to_string(element.count) +
                               " rows is left out; a mesh has points and faces only");
    }
    found.bytesLeft = finder.bytesLeft();
    return found;
}

// Some programs write it in front of any text.
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

const Format* formatOf(Encoding encoding)
{
    return findFormat(encoding == Encoding::Ascii       ? "ply-ascii"
                      : encoding == Encoding::BigEndian ? "ply-big"
                                                        : "ply");
}

}  // namespace

bool isPly(std::string_view bytes)
{
    if (bytes.substr(0, kByteOrderMark.size()) == kByteOrderMark)
        bytes.remove_prefix(kByteOrderMark.size());
    return bytes.substr(0, 3) == "ply" &&
           (bytes.size() == 3 || bytes[3] == '\n' || bytes[3] == '\r');
}

MeshRead readPly(const Input& input, const std::string& path)
{
    return readPly(input, path, usualBlockSize(input.size()));
}

MeshRead readPly(const Input& input, const std::string& path, std::size_t blockSize)
{
    InputBuffer headBuffer;
    if (input.head(kByteOrderMark.size(), headBuffer) == kByteOrderMark) {
        std::string rest(input.size() - kByteOrderMark.size(), '\0');
        input.read(kByteOrderMark.size(), input.size(), rest.data());
        return readPly(rest, path, blockSize);
    }
    const Header header = parseHeader(headOf(input, headBuffer), path);
    MeshRead read{nullptr, formatOf(header.encoding), {}};
    Plan plan = planProperties(header, path, read.warnings);

    const bool isText = header.encoding == Encoding::Ascii;
    std::size_t bytesLeft = 0;
    const Array<unsigned char> binary =
        isText ? binaryOfText(header, input, path, blockSize, bytesLeft)
               : bytesFrom(input, header.size);
    const std::string_view body(reinterpret_cast<const char*>(binary.data()), binary.size());
    Elements elements = findRows(header, plan, body, path, read.warnings);
    bytesLeft += elements.bytesLeft;
    if (bytesLeft > 0)
        read.warnings.push_back(std::to_string(bytesLeft) +
                                " bytes follow the last element and are left out");
    if (plan.face)
        demoteUnevenCorners(plan, elements.faces, read.warnings);
    read.mesh = MeshBuilder(std::move(plan), std::move(elements), needsSwap(header.encoding), path,
                            read.warnings)
                    .build();
    return read;
}

}  // namespace TessaryMesh
