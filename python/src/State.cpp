#include "Geometry.h"
#include "Module.h"

#include <Korvane/ElementTypes.h>
#include <Korvane/Geometry.h>
#include <Pelon/Any.h>

#include <algorithm>

/// Objects as nested lists and arrays, for pickling, and as values for people.
///
///     object   [("name", value), ...]
///     array    ("array", NumPy array)          texts   ("texts", list)
///     element  ("element", array of one)       text    str
///     mode     int, of interpolation
namespace TessaryPython {
namespace {

using Korvane::Object;
using Pelon::Any;
using Pelon::String;
using Interpolation = Korvane::Geometry::Common::DataInterpolationMode;

template <class T>
py::object arrayState(const ArrayPtr<T>& array)
{
    if constexpr (std::is_same_v<T, String>)
        return py::make_tuple("texts", toPython(*array));
    else
        return py::make_tuple("array", toNumpy<T>(array));
}

template <class T>
py::object elementState(const T& value)
{
    if constexpr (std::is_same_v<T, String>)
        return toPython(value);
    else
        return py::make_tuple("element", moveToNumpy(Pelon::Array<T>(1, value)));
}

py::list stateOf(const Object& object);

// None for what no reader, operation or constructor makes.
py::object stateOf(const Any& value)
{
    if (const auto* const object = value.get<Pelon::Ptr<Object>>(); object && *object)
        return stateOf(**object);
    if (const auto* const mode = value.get<Interpolation>())
        return py::int_(static_cast<int>(*mode));
    py::object state = py::none();
    Korvane::visitArray(value,
                        [&state](const auto& array, const char*) { state = arrayState(array); });
    Korvane::anyElementType([&](auto tag, const char*) {
        const auto* const element = value.get<typename decltype(tag)::type>();
        if (element)
            state = elementState(*element);
        return element != nullptr;
    });
    return state;
}

py::list stateOf(const Object& object)
{
    py::list state;
    for (const String& name : object.propertyNames()) {
        py::object value = stateOf(object.getProperty(name));
        if (!value.is_none())
            state.append(py::make_tuple(toPython(name), std::move(value)));
    }
    return state;
}

Any arrayOfState(const py::array& array, bool isElement)
{
    Any value;
    Korvane::anyElementType([&](auto tag, const char*) {
        using T = typename decltype(tag)::type;
        if constexpr (std::is_same_v<T, String>) {
            return false;
        } else {
            if (!hasElements<T>(array))
                return false;
            const ArrayPtr<T> elements = borrow<T>(array, "state");
            value = isElement && !elements->empty() ? Any((*elements)[0]) : Any(elements);
            return true;
        }
    });
    // Never without a word: a property would be lost.
    if (value.empty())
        throw py::value_error("an array of the pickled mesh, of type " +
                              std::string(py::str(array.dtype())) +
                              ", is none that a property holds, or is not aligned");
    return value;
}

Pelon::MutablePtr<Object> objectOfState(const py::list& state);

Any valueOfState(const py::handle& state)
{
    if (py::isinstance<py::str>(state))
        return toHost(py::cast<py::str>(state));
    if (py::isinstance<py::int_>(state))
        return static_cast<Interpolation>(py::cast<int>(state));
    if (py::isinstance<py::list>(state))
        return objectOfState(py::cast<py::list>(state));
    const auto pair = py::cast<std::pair<std::string, py::object>>(state);
    if (pair.first == "texts")
        return toHost(py::cast<py::list>(pair.second));
    return arrayOfState(py::cast<py::array>(pair.second), pair.first == "element");
}

Pelon::MutablePtr<Object> objectOfState(const py::list& state)
{
    auto object = Korvane::createObject();
    for (const py::handle entry : state) {
        const auto pair = py::cast<std::pair<py::str, py::object>>(entry);
        object->setProperty(toHost(pair.first), valueOfState(pair.second));
    }
    return object;
}

// What the object itself holds beside geometry properties.
py::dict metadataOf(const Geometry& geometry)
{
    py::dict values;
    for (const String& name : geometry.object()->propertyNames()) {
        const Any value = geometry.object()->getProperty(name);
        if (value.get<Pelon::Ptr<Object>>())
            continue;
        const py::object state = stateOf(value);
        values[toPython(name)] =
            py::isinstance<py::tuple>(state) ? py::object(state[py::int_(1)]) : state;
    }
    return values;
}

}  // namespace

void defineState(py::module_& module)
{
    module.def(
        "get_state", [](const Geometry& self) { return stateOf(*self.object()); },
        py::arg("geometry"));
    module.def(
        "from_state",
        [](const py::list& state) {
            return Geometry(objectOfState(state), Geometry::Trust::Unchecked);
        },
        py::arg("state"));
    module.def("metadata", &metadataOf, py::arg("geometry"));
}

}  // namespace TessaryPython
