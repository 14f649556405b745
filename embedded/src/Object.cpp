#include <Korvane/Object.h>

#include <algorithm>

namespace Korvane {

using Pelon::Any;
using Pelon::Array;
using Pelon::String;
using Pelon::StringView;

namespace {

// A data property has five, a mesh without attributes six.
constexpr std::size_t kUsualEntries = 6;

}  // namespace

Object::~Object() = default;

const Object::Entry* Object::find(StringView name) const
{
    const auto found = std::find_if(m_entries.begin(), m_entries.end(),
                                    [name](const Entry& entry) { return entry.name == name; });
    return found == m_entries.end() ? nullptr : &*found;
}

Object::Entry* Object::find(StringView name)
{
    return const_cast<Entry*>(static_cast<const Object*>(this)->find(name));
}

bool Object::hasProperty(StringView name) const
{
    const Entry* const entry = find(name);
    return entry && !entry->value.empty();
}

Any Object::getProperty(StringView name) const
{
    const Entry* const entry = find(name);
    return entry ? entry->value : Any();
}

Any Object::getPropertyForModification(StringView name)
{
    Entry* const entry = find(name);
    return entry ? std::exchange(entry->value, Any()) : Any();
}

void Object::setProperty(const String& name, Any value)
{
    storeProperty(String(name), std::move(value));
}

Array<String> Object::propertyNames() const
{
    Array<String> names;
    for (const Entry& entry : m_entries)
        if (!entry.value.empty())
            names.push_back(entry.name);
    return names;
}

void Object::storeProperty(String&& name, Any&& value)
{
    if (Entry* const entry = find(name)) {
        entry->value = std::move(value);
        return;
    }
    if (m_entries.empty())
        m_entries.reserve(kUsualEntries);
    m_entries.push_back({std::move(name), std::move(value)});
}

Pelon::MutablePtr<Object> createObject()
{
    return Pelon::makeMutable<Object>();
}

}  // namespace Korvane
