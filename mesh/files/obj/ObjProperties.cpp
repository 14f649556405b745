#include "files/obj/ObjProperties.h"

#include "base/Host.h"
#include "base/MessageText.h"

#include <algorithm>
#include <string_view>

namespace TessaryMesh {
namespace {

// Whether a reader finds the name again as it is.
bool isWritableName(std::string_view name)
{
    const auto isBlank = [](char c) { return c == ' ' || c == '\t'; };
    if (name.empty())
        return true;
    return !isBlank(name.front()) && !isBlank(name.back()) && name.back() != '\\' &&
           name.find_first_of(std::string_view("\n\r\0", 3)) == std::string_view::npos;
}

class Finder {
public:
    explicit Finder(const Object& mesh) : m_mesh(mesh), m_search(mesh, "OBJ")
    {
        m_found.points = Geometry::dataArray<float3>(mesh, Geometry::sPointPosition);
        m_found.faceOffset = Geometry::dataArray<uint>(mesh, Geometry::sFaceOffset);
        m_found.faceVertex = Geometry::dataArray<uint>(mesh, Geometry::sFaceVertex);
        if (!m_found.faceOffset || !m_found.faceVertex)
            m_found.faceOffset = m_found.faceVertex = nullptr;
    }

    ObjProperties find()
    {
        findPointValues();
        findCornerValues("texcoord", m_found.texcoord);
        findCornerValues("texcoord", m_found.wideTexcoord);
        findCornerValues("normal", m_found.normal);
        findFaceNames("object", m_found.object);
        findFaceNames("group", m_found.group);
        findFaceNames("material", m_found.material);
        find("smoothing", Geometry::sFaceComp, m_found.faceCount(), m_found.smoothing);
        findLibrary();
        findTags();
        for (std::string& warning : m_search.leftOut())
            m_found.warnings.push_back(std::move(warning));
        return std::move(m_found);
    }

private:
    // A line of a point has room for a colour or a weight.
    void findPointValues()
    {
        find("color", Geometry::sPointComp, m_found.points->size(), m_found.colour);
        if (!m_found.colour)
            find("weight", Geometry::sPointComp, m_found.points->size(), m_found.weight);
    }

    template <class T>
    void findCornerValues(const char* name, std::optional<CornerValues<T>>& found)
    {
        const std::size_t corners = m_found.faceVertex ? m_found.faceVertex->size() : 0;
        if (!find(name, Geometry::sFaceVertexComp, corners, found) &&
            find(name, Geometry::sPointComp, m_found.points->size(), found))
            found->onPoints = true;
    }

    void findFaceNames(const char* name, std::optional<ElementValues<String>>& found)
    {
        if (!find(name, Geometry::sFaceComp, m_found.faceCount(), found))
            return;
        const Array<String>& values = *found->values;
        for (std::size_t i = 0; i < values.size(); ++i) {
            const bool sameAsBefore = i > 0 && values[i] == values[i - 1];
            if (sameAsBefore || isWritableName(values[i].view()))
                continue;
            m_found.warnings.push_back("face property \"" + std::string(name) +
                                       "\" is left out: OBJ cannot hold the name " +
                                       quoted(values[i].view()) + " (value " + std::to_string(i) +
                                       "); use names of one line without blanks around them");
            found.reset();
            return;
        }
    }

    template <class Found>
    bool find(const char* name, const String& component, std::size_t count,
              std::optional<Found>& found)
    {
        return m_search.find(name, component, count, found);
    }

    void findLibrary()
    {
        const Any value = m_mesh.getProperty("material_library");
        const String* const library = value.get<String>();
        if (library && isWritableName(library->view()))
            m_found.materialLibrary = m_search.findText("material_library");
    }

    // A line each.
    void findTags()
    {
        const Any value = m_mesh.getProperty("subdivision_tags");
        const String* const tags = value.get<String>();
        if (!tags || tags->empty())
            return;
        for (std::string_view rest = tags->view(); !rest.empty();) {
            const std::string_view tag = rest.substr(0, rest.find('\n'));
            if (tag.empty() || !isWritableName(tag))
                return;
            rest.remove_prefix(std::min(tag.size() + 1, rest.size()));
        }
        m_found.tags = m_search.findText("subdivision_tags");
    }

    const Object& m_mesh;
    ObjProperties m_found;
    PropertySearch m_search;
};

}  // namespace

ObjProperties findObjProperties(const Object& mesh)
{
    return Finder(mesh).find();
}

}  // namespace TessaryMesh
