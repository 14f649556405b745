#include "Geometry.h"
#include "Module.h"

#include <Korvane/ElementTypes.h>
#include <Korvane/Geometry.h>
#include <TessaryMesh/Arrays.h>
#include <TessaryMesh/Check.h>

#include <algorithm>

namespace TessaryPython {
namespace {

using namespace Korvane::Geometry;
using Korvane::Object;
using Pelon::Any;
using Pelon::String;
using TessaryMesh::Component;
using TessaryMesh::PropertyFacts;
using TessaryMesh::View;
using Interpolation = Common::DataInterpolationMode;

Component componentOf(const std::string& name)
{
    return name == "point"  ? Component::Point
           : name == "face" ? Component::Face
                            : Component::Corner;
}

// The entry of a property is replaced in a copy of the property, which others may share.
void setEntry(Object& mesh, const String& name, const String& entry, Any value)
{
    const auto property = Pelon::makeMutable<Object>(*getDataGeoProperty(mesh, name));
    property->setProperty(entry, std::move(value));
    mesh.setProperty(name, property);
}

struct NewProperty {
    String name;
    Component on;
    ArrayPtr<uint> indices;  // null where every element has a value of its own
    Interpolation interpolation;
};

template <class T>
void store(Object& mesh, const NewProperty& property, ArrayPtr<T> values, const T& standard)
{
    if (property.indices)
        TessaryMesh::addIndexedAttribute(mesh, property.name, property.on,
                                         View<T>(std::move(values)), View<uint>(property.indices));
    else
        TessaryMesh::addAttribute(mesh, property.name, property.on, View<T>(std::move(values)));
    setEntry(mesh, property.name, sInterp, property.interpolation);
    setEntry(mesh, property.name, sDefault, standard);
}

// Whether the array has elements that a host's type stands for.
bool storeArray(Object& mesh, const NewProperty& property, const py::array& values,
                const py::object& standard)
{
    return Korvane::anyElementType([&](auto tag, const char*) {
        using T = typename decltype(tag)::type;
        if constexpr (std::is_same_v<T, String>) {
            return false;
        } else {
            if (!hasElements<T>(values))
                return false;
            const T value = standard.is_none()
                                ? T()
                                : (*borrow<T>(py::cast<py::array>(standard), "default"))[0];
            store<T>(mesh, property, borrow<T>(values, "values"), value);
            return true;
        }
    });
}

void storeTexts(Object& mesh, const NewProperty& property, const py::list& values,
                const py::object& standard)
{
    const String value = standard.is_none() ? String() : toHost(py::cast<py::str>(standard));
    store<String>(mesh, property, toHost(values), value);
}

void removeProperty(Object& mesh, const String& name)
{
    const auto chain = getTargetChain(mesh, name);
    mesh.setProperty(name, Any());
    const auto facts = TessaryMesh::propertiesOf(mesh);
    for (const String& range : chain)
        if (std::none_of(facts.begin(), facts.end(), [&range](const PropertyFacts& other) {
                return other.through == range.view();
            }))
            mesh.setProperty(range, Any());
}

Geometry::Trust trustWith(const Geometry& geometry, const py::object& values,
                          const py::object& indices)
{
    const auto isShared = [](const py::object& array) {
        return py::isinstance<py::array>(array) && isChangeable(py::cast<py::array>(array));
    };
    const bool isChanged = isShared(indices) || isShared(values);
    return isChanged ? Geometry::Trust::Changeable : geometry.trust();
}

Geometry withProperty(const Geometry& geometry, const py::str& name, const std::string& component,
                      const py::object& values, const py::object& indices, int interpolation,
                      const py::object& standard)
{
    const NewProperty property{
        toHost(name), componentOf(component),
        indices.is_none() ? nullptr : borrow<uint>(py::cast<py::array>(indices), "indices"),
        static_cast<Interpolation>(interpolation)};
    const auto mesh = Pelon::makeMutable<Object>(*geometry.object());
    if (getDataGeoProperty(*mesh, property.name))
        removeProperty(*mesh, property.name);
    if (py::isinstance<py::list>(values))
        storeTexts(*mesh, property, values, standard);
    else if (!storeArray(*mesh, property, py::cast<py::array>(values), standard))
        throw py::type_error("values: there is no element type for this array");
    return {mesh, trustWith(geometry, values, indices)};
}

Geometry withoutProperty(const Geometry& geometry, const py::str& name)
{
    const auto mesh = Pelon::makeMutable<Object>(*geometry.object());
    removeProperty(*mesh, toHost(name));
    return {mesh, geometry.trust()};
}

template <class T>
py::object elementToPython(const T& value)
{
    if constexpr (std::is_same_v<T, String>)
        return toPython(value);
    else
        return moveToNumpy(Pelon::Array<T>(1, value))[py::int_(0)];
}

py::object valuesOf(const Object& property)
{
    py::object values = py::none();
    Korvane::visitArray(property.getProperty(sData), [&values](const auto& array, const char*) {
        using T = typename std::decay_t<decltype(*array)>::value_type;
        if constexpr (std::is_same_v<T, String>)
            values = toPython(*array);
        else
            values = toNumpy<T>(array);
    });
    return values;
}

py::object defaultOf(const Object& property)
{
    const Any value = property.getProperty(sDefault);
    py::object told = py::none();
    Korvane::anyElementType([&](auto tag, const char*) {
        const auto* const element = value.get<typename decltype(tag)::type>();
        if (element)
            told = elementToPython(*element);
        return element != nullptr;
    });
    return told;
}

py::object indicesOf(const Object& mesh, const std::string& through)
{
    const auto range = getRangeGeoProperty(mesh, through);
    return range ? py::object(toNumpy<uint>(getRangeGeoPropIndices(*range))) : py::none();
}

// values, indices or None, component, interpolation, default
py::object property(const Geometry& geometry, const py::str& name)
{
    const Object& mesh = *geometry.object();
    const String wanted = toHost(name);
    const auto facts = TessaryMesh::propertiesOf(mesh);
    const auto found = std::find_if(facts.begin(), facts.end(), [&](const PropertyFacts& fact) {
        return fact.name == wanted.view();
    });
    if (found == facts.end())
        return py::none();
    const auto data = getDataGeoProperty(mesh, wanted);
    const Any interpolation = data->getProperty(sInterp);
    const auto* const mode = interpolation.get<Interpolation>();
    return py::make_tuple(valuesOf(*data), indicesOf(mesh, found->through),
                          toPython(String(found->component)),
                          static_cast<int>(mode ? *mode : Interpolation::Linear), defaultOf(*data));
}

// name, type, component, name of the indices: of each property
py::list propertyFacts(const Geometry& geometry)
{
    py::list list;
    for (const PropertyFacts& facts : TessaryMesh::propertiesOf(*geometry.object()))
        list.append(py::make_tuple(toPython(String(facts.name)), facts.type,
                                   toPython(String(facts.component)),
                                   toPython(String(facts.through))));
    return list;
}

}  // namespace

void defineProperties(py::module_& module)
{
    module.def("property_facts", &propertyFacts, py::arg("geometry"));
    module.def("get_property", &property, py::arg("geometry"), py::arg("name"));
    module.def("with_property", &withProperty, py::arg("geometry"), py::arg("name"),
               py::arg("component"), py::arg("values"), py::arg("indices"),
               py::arg("interpolation"), py::arg("default"));
    module.def("without_property", &withoutProperty, py::arg("geometry"), py::arg("name"));
}

}  // namespace TessaryPython
