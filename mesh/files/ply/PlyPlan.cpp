#include "files/ply/PlyPlan.h"

#include "base/Host.h"
#include "base/MessageText.h"
#include "files/ply/PlyErrors.h"

#include <algorithm>
#include <optional>
#include <unordered_map>

namespace TessaryMesh::Ply {
namespace {

/// The places of an element's properties by their names.
class Columns {
public:
    explicit Columns(const Element& element) : used(element.properties.size())
    {
        for (std::size_t i = 0; i < element.properties.size(); ++i)
            m_places.emplace(element.properties[i].name, i);
    }

    std::optional<std::size_t> find(std::string_view name) const
    {
        const auto found = m_places.find(name);
        return found == m_places.end() ? std::nullopt : std::optional(found->second);
    }

    std::vector<bool> used;

private:
    std::unordered_map<std::string_view, std::size_t> m_places;
};

/// Scalars that many programs write for one value of a point, or for colours of a face.
struct Custom {
    const char* property;
    const char* columns[4];
    std::size_t least;  // of the columns, in their order
    bool isColour;
    bool ofPoints;
};

constexpr Custom kCustoms[] = {
    {"color", {"red", "green", "blue", "alpha"}, 3, true, false},
    {"color", {"diffuse_red", "diffuse_green", "diffuse_blue", nullptr}, 3, true, false},
    {"normal", {"nx", "ny", "nz", nullptr}, 3, false, false},
    {"texcoord", {"s", "t", nullptr, nullptr}, 2, false, true},
    {"texcoord", {"u", "v", nullptr, nullptr}, 2, false, true},
    {"texcoord", {"texture_u", "texture_v", nullptr, nullptr}, 2, false, true},
};

Form formOfName(const std::string& type)
{
    Form form{};
    withElementType(type, [&](auto, Form found) { form = found; });
    return form;
}

class Planner {
public:
    Planner(const Header& header, const std::string& path, std::vector<std::string>& warnings)
        : m_header(header), m_path(path), m_warnings(warnings)
    {}

    Plan plan()
    {
        planPoints();
        planFaces();
        for (const Declaration& declaration : m_header.declarations)
            planDeclared(declaration);
        planCustomary(*m_plan.vertex, *m_pointColumns, Owner::Point);
        planRest(*m_plan.vertex, m_pointColumns->used, Owner::Point);
        if (m_plan.face) {
            planCustomary(*m_plan.face, *m_faceColumns, Owner::Face);
            planRest(*m_plan.face, m_faceColumns->used, Owner::Face);
        }
        return std::move(m_plan);
    }

private:
    // The file may be as PLY wants it, but holds no mesh.
    [[noreturn]] void fail(const std::string& what,
                           FileError::Code code = FileError::Code::Unsupported) const
    {
        Ply::fail(m_path, {}, what, code);
    }

    const Element* checkedElement(std::string_view name) const
    {
        const Element* const element = m_header.find(name);
        if (element && element->count >= 0xFFFFFFFF)
            fail("the header promises " + std::to_string(element->count) + " rows of element " +
                     quoted(name) + ", more than 32-bit indices can name; split the file",
                 FileError::Code::TooLarge);
        return element;
    }

    void planPoints()
    {
        m_plan.vertex = checkedElement("vertex");
        if (!m_plan.vertex)
            fail("the header has no element \"vertex\"; a mesh needs points");
        m_pointColumns.emplace(*m_plan.vertex);
        for (std::size_t k = 0; k < 3; ++k) {
            const std::string name(1, "xyz"[k]);
            const std::optional<std::size_t> column = m_pointColumns->find(name);
            if (!column || m_plan.vertex->properties[*column].isList())
                fail("element \"vertex\" has no scalar property \"" + name +
                     "\"; a point needs x, y and z");
            m_plan.position[k] = *column;
            m_pointColumns->used[*column] = true;
        }
    }

    void planFaces()
    {
        m_plan.face = checkedElement("face");
        if (!m_plan.face)
            return;
        m_faceColumns.emplace(*m_plan.face);
        std::optional<std::size_t> column = m_faceColumns->find("vertex_indices");
        if (!column)
            column = m_faceColumns->find("vertex_index");
        if (!column && m_plan.face->count == 0)
            m_plan.face = nullptr;
        else if (!column || !m_plan.face->properties[*column].isList() ||
                 isFloat(m_plan.face->properties[*column].type))
            fail(
                "element \"face\" has no list \"vertex_indices\" of integers; a face needs "
                "corners");
        if (!m_plan.face)
            return;
        m_plan.topology = *column;
        m_faceColumns->used[*column] = true;
    }

    void planDeclared(const Declaration& declaration)
    {
        const bool isPoint = declaration.owner == Owner::Point;
        const Element* const element = isPoint ? m_plan.vertex : m_plan.face;
        std::optional<Columns>& from = isPoint ? m_pointColumns : m_faceColumns;
        std::vector<std::size_t> columns;
        const std::string mismatch = mismatchOf(declaration, element, from, columns);
        if (!mismatch.empty()) {
            m_warnings.push_back("line " + std::to_string(declaration.line) +
                                 ": the comment that declares " + nameOf(declaration.owner) +
                                 " property " + quoted(declaration.name) +
                                 " is ignored: " + mismatch);
            return;
        }
        for (const std::size_t column : columns)
            from->used[column] = true;
        const bool isEightBit = declaration.type != kListType &&
                                declaration.owner != Owner::Corner &&
                                isFloat(formOfName(declaration.type).scalar) &&
                                element->properties[columns[0]].type == Scalar::UInt8;
        m_plan.properties.push_back({declaration.owner, declaration.type, declaration.name,
                                     std::move(columns), isEightBit});
    }

    // Why the declaration does not fit the properties of the file; empty where it does.
    static std::string mismatchOf(const Declaration& declaration, const Element* element,
                                  const std::optional<Columns>& from,
                                  std::vector<std::size_t>& columns)
    {
        if (!element)
            return "the file has no faces";
        const bool isList = declaration.type == kListType;
        const bool wantsList = isList || declaration.owner == Owner::Corner;
        if (isList && declaration.owner == Owner::Corner)
            return "corners have no lists";
        const Form form = isList ? Form{} : formOfName(declaration.type);
        if (declaration.columns.size() != (wantsList ? 1 : form.count))
            return "it names " + std::to_string(declaration.columns.size()) +
                   " properties of the file";
        for (const std::string& name : declaration.columns) {
            const std::optional<std::size_t> column = from->find(name);
            if (!column)
                return "the file has no property " + quoted(name);
            const Property& property = element->properties[*column];
            const bool isEightBit =
                isFloat(form.scalar) && form.count > 1 && property.type == Scalar::UInt8 &&
                !wantsList &&
                (columns.empty() || element->properties[columns[0]].type == property.type);
            if (property.isList() != wantsList ||
                (!isList && !isEightBit &&
                 (property.type != form.scalar ||
                  (!columns.empty() && element->properties[columns[0]].type != form.scalar))))
                return quoted(name) + " is of another type";
            for (const std::size_t earlier : columns)
                if (earlier == *column)
                    return "it names " + quoted(name) + " twice";
            if (from->used[*column])
                return quoted(name) + " belongs to another property";
            columns.push_back(*column);
        }
        return {};
    }

    // What other programs write as scalars of its own is one value to them, too.
    void planCustomary(const Element& element, Columns& columns, Owner owner)
    {
        for (const Custom& custom : kCustoms) {
            std::vector<std::size_t> places;
            for (const char* const name : custom.columns) {
                const auto place = name ? columns.find(name) : std::nullopt;
                if (!place || columns.used[*place] || element.properties[*place].isList() ||
                    (!places.empty() &&
                     element.properties[*place].type != element.properties[places[0]].type))
                    break;
                places.push_back(*place);
            }
            if (places.size() >= custom.least && (!custom.ofPoints || owner == Owner::Point))
                planTogether(element, columns, owner, custom, std::move(places));
        }
    }

    // Colours of faces are called otherwise beside those of points.
    static bool isNameOf(const Custom& custom, Owner owner, std::string_view name)
    {
        return name == custom.property ||
               (custom.isColour && owner == Owner::Face && name == "face_color");
    }

    void planTogether(const Element& element, Columns& columns, Owner owner, const Custom& custom,
                      std::vector<std::size_t> places)
    {
        const Scalar scalar = element.properties[places[0]].type;
        const bool isEightBit = custom.isColour && scalar == Scalar::UInt8;
        const bool isPlanned = std::any_of(
            m_plan.properties.begin(), m_plan.properties.end(), [&](const PlannedProperty& other) {
                return other.owner == owner && isNameOf(custom, owner, other.name) && !other.isCopy;
            });
        if ((!isFloat(scalar) && !isEightBit) || (isPlanned && !isEightBit))
            return;
        for (const std::size_t place : places)
            columns.used[place] = true;
        const std::string type =
            (scalar == Scalar::Float64 ? "double" : "float") + std::to_string(places.size());
        m_plan.properties.push_back(
            {owner, type, custom.property, std::move(places), isEightBit, isPlanned});
    }

    void planRest(const Element& element, const std::vector<bool>& used, Owner owner)
    {
        for (std::size_t i = 0; i < element.properties.size(); ++i) {
            const Property& property = element.properties[i];
            if (used[i])
                continue;
            const bool isTexcoord = owner == Owner::Face && property.name == "texcoord" &&
                                    property.isList() && isFloat(property.type);
            if (isTexcoord)
                m_plan.properties.push_back(
                    {Owner::Corner,
                     property.type == Scalar::Float32 ? "float2" : "double2",
                     property.name,
                     {i}});
            else
                m_plan.properties.push_back(
                    {owner,
                     property.isList() ? std::string(kListType) : nameOf(property.type),
                     property.name,
                     {i}});
        }
    }

    const Header& m_header;
    const std::string& m_path;
    std::vector<std::string>& m_warnings;
    Plan m_plan{};
    std::optional<Columns> m_pointColumns, m_faceColumns;
};

bool hasOneValuePerCorner(const Array<uint>& offsets, const Array<uint>& faceOffset,
                          unsigned scalars)
{
    for (std::size_t i = 0; i < faceOffset.size(); ++i)
        if (offsets[i] != std::uint64_t(faceOffset[i]) * scalars)
            return false;
    return true;
}

}  // namespace

Plan planProperties(const Header& header, const std::string& path,
                    std::vector<std::string>& warnings)
{
    return Planner(header, path, warnings).plan();
}

void demoteUnevenCorners(Plan& plan, const Rows& faces, std::vector<std::string>& warnings)
{
    for (PlannedProperty& property : plan.properties) {
        if (property.owner != Owner::Corner)
            continue;
        const unsigned scalars = formOfName(property.type).count;
        if (hasOneValuePerCorner(faces.offsets[property.columns[0]], faces.offsets[plan.topology],
                                 scalars))
            continue;
        warnings.push_back("face list " + quoted(property.name) + " has not " +
                           std::to_string(scalars) +
                           " values per corner in every face; it is kept as a list of each face");
        property.owner = Owner::Face;
        property.type = kListType;
    }
}

}  // namespace TessaryMesh::Ply
