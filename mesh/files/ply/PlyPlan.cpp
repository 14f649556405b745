#include "files/ply/PlyPlan.h"

#include "base/Host.h"
#include "base/MessageText.h"
#include "files/ply/PlyErrors.h"

#include <optional>

namespace TessaryMesh::Ply {
namespace {

std::optional<std::size_t> findProperty(const Element& element, std::string_view name)
{
    for (std::size_t i = 0; i < element.properties.size(); ++i)
        if (element.properties[i].name == name)
            return i;
    return std::nullopt;
}

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
        planRest(*m_plan.vertex, m_isPointColumnUsed, Owner::Point);
        if (m_plan.face)
            planRest(*m_plan.face, m_isFaceColumnUsed, Owner::Face);
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
        m_isPointColumnUsed.resize(m_plan.vertex->properties.size());
        for (std::size_t k = 0; k < 3; ++k) {
            const std::string name(1, "xyz"[k]);
            const std::optional<std::size_t> column = findProperty(*m_plan.vertex, name);
            if (!column || m_plan.vertex->properties[*column].isList())
                fail("element \"vertex\" has no scalar property \"" + name +
                     "\"; a point needs x, y and z");
            m_plan.position[k] = *column;
            m_isPointColumnUsed[*column] = true;
        }
    }

    void planFaces()
    {
        m_plan.face = checkedElement("face");
        if (!m_plan.face)
            return;
        std::optional<std::size_t> column = findProperty(*m_plan.face, "vertex_indices");
        if (!column)
            column = findProperty(*m_plan.face, "vertex_index");
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
        m_isFaceColumnUsed.resize(m_plan.face->properties.size());
        m_isFaceColumnUsed[*column] = true;
    }

    void planDeclared(const Declaration& declaration)
    {
        const bool isPoint = declaration.owner == Owner::Point;
        const Element* const element = isPoint ? m_plan.vertex : m_plan.face;
        std::vector<bool>& used = isPoint ? m_isPointColumnUsed : m_isFaceColumnUsed;
        std::vector<std::size_t> columns;
        const std::string mismatch = mismatchOf(declaration, element, used, columns);
        if (!mismatch.empty()) {
            m_warnings.push_back("line " + std::to_string(declaration.line) +
                                 ": the comment that declares " + nameOf(declaration.owner) +
                                 " property " + quoted(declaration.name) +
                                 " is ignored: " + mismatch);
            return;
        }
        for (const std::size_t column : columns)
            used[column] = true;
        m_plan.properties.push_back(
            {declaration.owner, declaration.type, declaration.name, std::move(columns)});
    }

    // Why the declaration does not fit the properties of the file; empty where it does.
    static std::string mismatchOf(const Declaration& declaration, const Element* element,
                                  const std::vector<bool>& used, std::vector<std::size_t>& columns)
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
            const std::optional<std::size_t> column = findProperty(*element, name);
            if (!column)
                return "the file has no property " + quoted(name);
            const Property& property = element->properties[*column];
            if (property.isList() != wantsList || (!isList && property.type != form.scalar))
                return quoted(name) + " is of another type";
            for (const std::size_t earlier : columns)
                if (earlier == *column)
                    return "it names " + quoted(name) + " twice";
            if (used[*column])
                return quoted(name) + " belongs to another property";
            columns.push_back(*column);
        }
        return {};
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
    std::vector<bool> m_isPointColumnUsed;
    std::vector<bool> m_isFaceColumnUsed;
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
