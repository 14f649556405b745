#include "files/ply/PlyFields.h"

#include "base/Host.h"
#include "base/MessageText.h"
#include "base/ParallelBlocks.h"
#include "base/PropertyKinds.h"
#include "files/ply/PlyColours.h"
#include "files/ply/PlyNames.h"

#include <algorithm>
#include <limits>
#include <numeric>
#include <set>

namespace TessaryMesh::Ply {
namespace {

std::optional<Owner> ownerOfComponent(const String& component)
{
    if (component == Geometry::sPointComp)
        return Owner::Point;
    if (component == Geometry::sFaceComp)
        return Owner::Face;
    if (component == Geometry::sFaceVertexComp)
        return Owner::Corner;
    return std::nullopt;
}

String targetOf(const Object& property)
{
    return entryOf<String>(property, Geometry::sTarget).value_or(String());
}

// The array that a range property leads to, one value per index.
template <class T>
Array<T> expanded(const Array<T>& values, const Array<uint>& indices, const T& otherwise,
                  std::size_t& missing)
{
    constexpr std::size_t kBlock = std::size_t{1} << 16;
    Array<T> out(indices.size());
    std::vector<std::size_t> found((indices.size() + kBlock - 1) / kBlock);
    forEachBlock(found.size(), [&](std::size_t block) {
        std::size_t count = 0;
        for (std::size_t i = block * kBlock; i < std::min((block + 1) * kBlock, indices.size());
             ++i) {
            const bool has = indices[i] < values.size();
            out[i] = has ? values[indices[i]] : otherwise;
            count += !has;
        }
        found[block] = count;
    });
    missing = std::accumulate(found.begin(), found.end(), std::size_t{0});
    return out;
}

class Collector {
public:
    explicit Collector(const Object& mesh) : m_mesh(mesh)
    {
        for (const String& name : mesh.propertyNames())
            m_names.reserveForProperty(name.view());
        for (const String& name : mesh.propertyNames())
            if (const auto property = Geometry::getDataGeoProperty(mesh, name))
                m_targets.insert(targetOf(*property));
    }

    MeshFields collect()
    {
        collectTopology();
        for (const String& name : m_mesh.propertyNames())
            collectProperty(name);
        return std::move(m_fields);
    }

private:
    void collectTopology()
    {
        m_points = Geometry::dataArray<float3>(m_mesh, Geometry::sPointPosition);
        m_offset = Geometry::dataArray<uint>(m_mesh, Geometry::sFaceOffset);
        m_corners = Geometry::dataArray<uint>(m_mesh, Geometry::sFaceVertex);
        m_pointCount = m_points ? m_points->size() : 0;
        m_fields.points.count = m_pointCount;
        m_fields.points.fields.push_back(
            {{"x", "y", "z"}, Scalar::Float32, m_points ? bytesOf(*m_points) : nullptr, 3});
        if (!m_offset || m_offset->empty() || !m_corners)
            return;
        m_faceCount = m_offset->size() - 1;
        m_fields.faces.count = m_faceCount;
        addList(Owner::Face, "vertex_indices",
                m_pointCount <= (1u << 31) ? Scalar::Int32 : Scalar::UInt32, bytesOf(*m_corners), 1,
                *m_offset);
    }

    template <class T>
    static const unsigned char* bytesOf(const Array<T>& array)
    {
        return reinterpret_cast<const unsigned char*>(array.data());
    }

    bool hasFaces() const { return !m_fields.faces.fields.empty(); }

    std::size_t countOf(Owner owner) const
    {
        return owner == Owner::Point  ? m_pointCount
               : owner == Owner::Face ? m_faceCount
                                      : (hasFaces() ? m_corners->size() : 0);
    }

    void leaveOut(const std::string& what, const std::string& why)
    {
        m_fields.warnings.push_back(what + " " + why + " and is left out");
    }

    void collectProperty(const String& name)
    {
        if (isTopology(name))
            return;
        if (isComponent(m_mesh, name))
            return collectComponent(name);
        if (const auto property = Geometry::getDataGeoProperty(m_mesh, name))
            collectData(name, *property);
        else if (Geometry::getRangeGeoProperty(m_mesh, name))
            collectRange(name);
        else
            collectOther(name);
    }

    // Only the mesh's own components and those of lists have a place in a file.
    void collectComponent(const String& name)
    {
        const std::string_view ending = kListComponentEnding;
        const std::string_view stem =
            name.view().substr(0, name.size() - std::min(name.size(), ending.size()));
        const bool isOfList = std::string(stem) + kListComponentEnding == name.view() &&
                              ownerOfList(String(std::string(stem)));
        if (!ownerOfComponent(name) && !isOfList)
            leaveOut("component " + quoted(name.view()), "is neither of points, faces nor corners");
    }

    // An index array speaks through the properties that use it.
    void collectRange(const String& name)
    {
        if (m_targets.count(name) == 0)
            leaveOut("index property " + quoted(name.view()), "has no values that use it");
    }

    void collectOther(const String& name)
    {
        const Any value = m_mesh.getProperty(name);
        const bool isString = value.get<String>() != nullptr;
        leaveOut("value " + quoted(name.view()) + (isString ? " (string)" : "") + " of the mesh",
                 "cannot be held by PLY");
        if (isString && (name == "material_library" || name == "subdivision_tags"))
            m_fields.warnings.back() += "; write OBJ to keep it";
    }

    void collectData(const String& name, const Object& property)
    {
        if (isListOffset(name, property))
            return;  // goes with its list
        const Array<String> chain = Geometry::getTargetChain(m_mesh, name);
        const std::optional<Owner> owner =
            ownerOfComponent(Geometry::getTargetComponent(m_mesh, name));
        const std::string shown =
            (owner ? nameOf(*owner) + std::string(" ") : "") + "property " + quoted(name.view());
        const bool known = Korvane::visitArray(
            property.getProperty(Geometry::sData), [&](const auto& array, const char* typeName) {
                if (owner && chain.size() < 2)
                    collectValues(name, property, *owner, chain, array, typeName, shown);
                else
                    collectList(name, array, typeName, shown);
            });
        if (!known)
            leaveOut(shown, "is of a type that PLY cannot hold");
    }

    template <class T>
    void collectValues(const String& name, const Object& property, Owner owner,
                       const Array<String>& chain, const Ptr<Array<T>>& array, const char* typeName,
                       const std::string& shown)
    {
        constexpr std::optional<Form> form = formOf<T>();
        if constexpr (form.has_value()) {
            Ptr<Array<T>> values = array;
            if (chain.size() == 1)
                values = expandIndexed(property, chain[0], array, shown);
            if (owner != Owner::Point && !hasFaces())
                leaveOut(shown, "belongs to faces, which the mesh has not");
            else if (values->size() != countOf(owner))
                leaveOut(shown, "has " + std::to_string(values->size()) + " values for " +
                                    std::to_string(countOf(owner)) + " elements");
            else if constexpr (hasColours<T>())
                addColour(name, owner, typeName, values, shown);
            else
                addProperty(name, owner, typeName, *form, bytesOf(*values), shown);
        } else {
            leaveOut(shown + " (" + typeName + ")", "cannot be held by PLY");
            if (std::is_same_v<T, String> && owner == Owner::Face && isObjString(name))
                m_fields.warnings.back() += "; write OBJ to keep it";
        }
    }

    static bool isObjString(const String& name)
    {
        return name == "object" || name == "group" || name == "material";
    }

    template <class T>
    Ptr<Array<T>> expandIndexed(const Object& property, const String& range,
                                const Ptr<Array<T>>& values, const std::string& shown)
    {
        const Ptr<Array<uint>> indices =
            Geometry::getRangeGeoPropIndices(*Geometry::getRangeGeoProperty(m_mesh, range));
        std::size_t missing = 0;
        Ptr<Array<T>> out = makeMutable<Array<T>>(expanded(
            *values, *indices, entryOf<T>(property, Geometry::sDefault).value_or(T()), missing));
        std::string warning = shown +
                              " is indexed, which PLY cannot hold; it is written value by "
                              "value, without " +
                              quoted(range.view());
        if (missing > 0)
            warning += ", and " + std::to_string(missing) + " without a value get the default";
        m_fields.warnings.push_back(std::move(warning));
        m_fields.owned.push_back(out);
        return out;
    }

    template <class T>
    static constexpr bool hasColours()
    {
        return std::is_floating_point_v<typename Scalars<T>::Type> && Scalars<T>::kRows == 0 &&
               (Scalars<T>::kCount == 3 || Scalars<T>::kCount == 4);
    }

    // As 8-bit numbers, for others; where these do not hold every colour exactly, as it is, too.
    template <class T>
    void addColour(const String& name, Owner owner, const char* typeName,
                   const Ptr<Array<T>>& values, const std::string& shown)
    {
        constexpr Form form = *formOf<T>();
        const std::vector<std::string> columns =
            m_names.eightBitColumnsFor(name.view(), owner, form.count);
        if (columns.empty())
            return addProperty(name, owner, typeName, form, bytesOf(*values), shown);
        bool isExact = true;
        const auto eightBit = makeMutable<Array<unsigned char>>(eightBits(*values, isExact));
        ElementFields& element = owner == Owner::Point ? m_fields.points : m_fields.faces;
        element.fields.push_back({columns, Scalar::UInt8, eightBit->data(), form.count});
        m_fields.owned.push_back(Ptr<Array<unsigned char>>(eightBit));
        if (isExact)
            m_fields.declarations.push_back(
                {owner, typeName, std::string(name.view()), columns, 0});
        else
            addProperty(name, owner, typeName, form, bytesOf(*values), shown);
    }

    void addProperty(const String& name, Owner owner, const char* typeName, Form form,
                     const unsigned char* bytes, const std::string& shown)
    {
        std::vector<std::string> columns = m_names.columnsFor(name.view(), owner, form);
        if (owner != Owner::Corner) {
            ElementFields& element = owner == Owner::Point ? m_fields.points : m_fields.faces;
            element.fields.push_back({columns, form.scalar, bytes, form.count});
        } else if (std::uint64_t(form.count) * m_corners->size() < 0xFFFFFFFF) {
            addList(Owner::Face, columns[0], form.scalar, bytes, form.count, *m_offset);
        } else {
            leaveOut(shown, "has more than 4294967294 numbers, which a list property cannot hold");
            return;
        }
        m_fields.declarations.push_back({owner, typeName, std::string(name.view()), columns, 0});
    }

    void addList(Owner owner, const std::string& column, Scalar type, const unsigned char* bytes,
                 unsigned scalars, const Array<uint>& offsets)
    {
        std::uint64_t longest = 0;
        for (std::size_t i = 0; i + 1 < offsets.size(); ++i)
            longest = std::max<std::uint64_t>(longest, offsets[i + 1] - offsets[i]);
        longest *= scalars;
        const Scalar countType = longest <= 255                               ? Scalar::UInt8
                                 : longest <= std::numeric_limits<int>::max() ? Scalar::Int32
                                                                              : Scalar::UInt32;
        ElementFields& element = owner == Owner::Point ? m_fields.points : m_fields.faces;
        element.fields.push_back({{column}, type, bytes, scalars, offsets.data(), countType});
    }

    // What the entries of a list are called NAME, its offsets must be called.
    bool isListOffset(const String& name, const Object& property) const
    {
        const String list = targetOf(property);
        return name.view() == std::string(list.view()) + kListOffsetEnding &&
               ownerOfList(list).has_value();
    }

    // Points or faces, where the data property `name` with its offsets is a list of theirs.
    std::optional<Owner> ownerOfList(const String& name) const
    {
        const std::string offsetName = std::string(name.view()) + kListOffsetEnding;
        const Ptr<Object> list = Geometry::getDataGeoProperty(m_mesh, name);
        const Ptr<Object> offsetProperty = Geometry::getDataGeoProperty(m_mesh, offsetName);
        const auto offsets = Geometry::dataArray<uint>(m_mesh, offsetName);
        if (!list || !offsets || offsets->empty() || targetOf(*offsetProperty) != name ||
            targetOf(*list).view() != std::string(name.view()) + kListComponentEnding)
            return std::nullopt;
        std::optional<Owner> owner = ownerOfComponent(declaredOwner(*offsetProperty));
        if (!owner || owner == Owner::Corner)
            owner = hasFaces() && offsets->size() == m_faceCount + 1 ? Owner::Face : Owner::Point;
        const bool fits = offsets->size() == countOf(*owner) + 1 && (*offsets)[0] == 0 &&
                          (*offsets)[offsets->size() - 1] == sizeOfScalarList(*list) &&
                          std::is_sorted(offsets->begin(), offsets->end()) &&
                          (*owner == Owner::Point || hasFaces());
        return fits ? owner : std::nullopt;
    }

    // The number of entries, or what no offset is where they are not scalars that PLY holds.
    static std::size_t sizeOfScalarList(const Object& list)
    {
        std::size_t size = std::numeric_limits<std::size_t>::max();
        Korvane::visitArray(list.getProperty(Geometry::sData), [&](const auto& array, const char*) {
            using T = typename std::decay_t<decltype(*array)>::value_type;
            constexpr std::optional<Form> form = formOf<T>();
            if constexpr (form.has_value() && !std::is_same_v<T, bool>)
                if (form->count == 1)
                    size = array->size();
        });
        return size;
    }

    template <class T>
    void collectList(const String& name, const Ptr<Array<T>>& array, const char* typeName,
                     const std::string& shown)
    {
        const std::optional<Owner> owner = ownerOfList(name);
        constexpr std::optional<Form> form = formOf<T>();
        if constexpr (form.has_value()) {
            if (owner) {
                const std::string offsetName = std::string(name.view()) + kListOffsetEnding;
                std::vector<std::string> columns =
                    m_names.columnsFor(name.view(), *owner, Form{form->scalar, 1});
                addList(*owner, columns[0], form->scalar, bytesOf(*array), 1,
                        *Geometry::dataArray<uint>(m_mesh, offsetName));
                m_fields.declarations.push_back({*owner, std::string(kListType),
                                                 std::string(name.view()), std::move(columns), 0});
                return;
            }
        }
        leaveOut(shown + " (" + typeName + ")",
                 "belongs to neither points, faces nor corners and cannot be held by PLY");
    }

    const Object& m_mesh;
    MeshFields m_fields;
    ColumnNames m_names;
    std::set<String> m_targets;  // of all data properties
    Ptr<Array<float3>> m_points;
    Ptr<Array<uint>> m_offset;
    Ptr<Array<uint>> m_corners;
    std::size_t m_pointCount = 0;
    std::size_t m_faceCount = 0;
};

}  // namespace

MeshFields fieldsOfMesh(const Object& mesh)
{
    return Collector(mesh).collect();
}

}  // namespace TessaryMesh::Ply
