#include "files/obj/ObjProperties.h"

#include "base/Host.h"
#include "base/MessageText.h"
#include "base/PropertyKinds.h"

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
           name.find_first_of(std::string_view("\n\r\0", 3)) == std::string_view::npos &&
           isUtf8(name);
}

class Finder {
public:
    explicit Finder(const Object& mesh) : m_mesh(mesh)
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
        for (const String& name : m_mesh.propertyNames())
            mention(name);
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

    // Plain, or indexed through one range property; arrays must cover the component.
    template <class Found>
    bool find(const char* name, const String& component, std::size_t count,
              std::optional<Found>& found)
    {
        const auto values = Geometry::dataArray<typename Found::Value>(m_mesh, name);
        if (!values || Geometry::getTargetComponent(m_mesh, name) != component)
            return false;
        Found result;
        result.values = values;
        const Array<String> chain = Geometry::getTargetChain(m_mesh, name);
        if (chain.size() == 1)
            if (const auto range = Geometry::getRangeGeoProperty(m_mesh, chain[0]))
                result.indices = Geometry::getRangeGeoPropIndices(*range);
        const std::size_t covered = result.indices ? result.indices->size() : values->size();
        if (chain.size() > 1 || (chain.size() == 1 && !result.indices) || covered != count)
            return false;
        m_handled.push_back(name);
        found = std::move(result);
        return true;
    }

    void findLibrary()
    {
        const Any value = m_mesh.getProperty("material_library");
        const String* const library = value.get<String>();
        if (!library || !isWritableName(library->view()))
            return;
        m_found.materialLibrary = *library;
        m_handled.push_back("material_library");
    }

    // Every property but the topology, components and what is written deserves a warning.
    void mention(const String& name)
    {
        const bool isHandled =
            std::find(m_handled.begin(), m_handled.end(), name.view()) != m_handled.end();
        if (isTopology(name) || isHandled || isComponent(m_mesh, name))
            return;
        if (const auto property = Geometry::getDataGeoProperty(m_mesh, name))
            mentionData(name, *property);
        else if (!Geometry::getRangeGeoProperty(m_mesh, name))
            leaveOut("value \"" + std::string(name.view()) + "\"", "");
        else if (!isTarget(name))
            leaveOut("index array \"" + std::string(name.view()) + "\"", "");
    }

    void mentionData(const String& name, const Object& property)
    {
        std::string type = "of another type";
        bool plyHoldsIt = false;
        Korvane::visitArray(property.getProperty(Geometry::sData),
                            [&](const auto&, const char* typeName) {
                                type = typeName;
                                plyHoldsIt = type != "string" && type != "long" && type != "ulong";
                            });
        const std::string element = elementWord(Geometry::getTargetComponent(m_mesh, name));
        leaveOut(element + (element.empty() ? "" : " ") + "property \"" + std::string(name.view()) +
                     "\" (" + type + ")",
                 plyHoldsIt ? "; write PLY to keep it" : "");
    }

    void leaveOut(const std::string& what, const char* advice)
    {
        m_found.warnings.push_back(what + " cannot be held by OBJ and is left out" + advice);
    }

    // The property that targets a range property is mentioned or written with it.
    bool isTarget(const String& range) const
    {
        const Array<String> names = m_mesh.propertyNames();
        return std::any_of(names.begin(), names.end(), [&](const String& name) {
            const Array<String> chain = Geometry::getTargetChain(m_mesh, name);
            return std::find(chain.begin(), chain.end(), range) != chain.end();
        });
    }

    const Object& m_mesh;
    ObjProperties m_found;
    std::vector<std::string_view> m_handled;
};

}  // namespace

ObjProperties findObjProperties(const Object& mesh)
{
    return Finder(mesh).find();
}

}  // namespace TessaryMesh
