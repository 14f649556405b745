#pragma once

// Reading and changing what stands in a property bag.

#include "base/Host.h"

#include <cstdint>
#include <utility>

namespace Tessary {

/// The value under `name` if it is a T; `otherwise` where it is absent or of another type.
template <class T>
T valueOr(const Object& object, StringView name, T otherwise)
{
    const Any value = object.getProperty(name);
    const T* const typed = value.get<T>();
    return typed ? *typed : std::move(otherwise);
}

/// The shared value of type T under `name`; empty where there is none.
template <class T>
Ptr<T> sharedValue(const Object& object, StringView name)
{
    return valueOr<Ptr<T>>(object, name, nullptr);
}

/// A shared value of a bag, taken in hand to be changed: the value itself where the bag held its
/// only reference, a copy where it was shared, null where there is none of type T.
///
/// The value itself is out of the bag meanwhile, so it goes back when the guard ends without
/// storeIn(): nothing is lost when an allocation fails in between.
template <class T>
class Modification {
public:
    Modification(Object& bag, StringView name) : m_bag(bag), m_name(name)
    {
        String nameToPutBack = m_name;  // made while the value is still safe in the bag
        Any taken = bag.getPropertyForModification(name);
        if (taken.empty())
            return;
        auto* const held = taken.get<Ptr<T>>();
        m_isOut = held && held->useCount() == 1;
        if (m_isOut) {
            m_value = Pelon::toMutable(std::move(*held));
            return;
        }
        const Ptr<T> shared = held ? *held : nullptr;
        bag.storeProperty(std::move(nameToPutBack), std::move(taken));
        if (shared)
            m_value = makeMutable<T>(*shared);
    }

    Modification(const Modification&) = delete;
    Modification& operator=(const Modification&) = delete;

    ~Modification()
    {
        if (m_isOut)
            m_bag.storeProperty(std::move(m_name), Any(std::move(m_value)));
    }

    /// The value, made by `make()` if there is none.
    template <class Make>
    const MutablePtr<T>& valueOrMade(const Make& make)
    {
        if (!m_value)
            m_value = make();
        return m_value;
    }

    /// Puts the value into the bag.
    void store()
    {
        m_bag.setProperty(m_name, m_value);
        m_isOut = false;
    }

private:
    Object& m_bag;
    String m_name;
    MutablePtr<T> m_value;
    bool m_isOut = false;
};

/// The data array of property `name`; empty where there is none with elements of type T.
template <class T>
Ptr<Array<T>> getDataArray(const Object& geometry, StringView name)
{
    const Ptr<Object> property = sharedValue<Object>(geometry, name);
    return property ? sharedValue<Array<T>>(*property, Geometry::sData) : nullptr;
}

/// Replaces the data array of property `name`, which is made if there is none.
void setDataArray(StringView name, Any array, Object& geometry);

/// Makes `property` one that depends on nothing.
void clearDependsOn(Object& property);

/// Sets the interpolation mode of `property` to 1.
void setDefaultInterpolation(Object& property);

/// Makes or changes the data property `name` so that it belongs to `target` and has `size`
/// elements, and returns its array for writing. Elements that exist already are kept, new ones are
/// equal to `defaultValue`. With an empty name the property is stored nowhere.
template <class T>
MutablePtr<Array<T>> addDataArray(StringView target, StringView name, std::uint64_t size,
                                  const T& defaultValue, Object& geometry)
{
    Modification<Object> modified(geometry, name);
    Object& property = *modified.valueOrMade(Korvane::createObject);
    property.setProperty(Geometry::sDefault, defaultValue);
    clearDependsOn(property);

    Modification<Array<T>> modifiedData(property, Geometry::sData);
    MutablePtr<Array<T>> data = modifiedData.valueOrMade([] { return makeMutable<Array<T>>(); });
    data->resize(size, defaultValue);
    modifiedData.store();

    property.setProperty(Geometry::sTarget, String(target));
    setDefaultInterpolation(property);
    if (!name.empty())
        modified.store();
    return data;
}

}  // namespace Tessary
