#include <Korvane/Object.h>

#include <algorithm>
#include <string_view>
#include <utility>

namespace Korvane {

using Pelon::Any;
using Pelon::Array;
using Pelon::String;
using Pelon::StringView;

namespace {

// A data property has five, a mesh without attributes six.
constexpr std::size_t kUsualEntries = 6;

constexpr std::size_t kFew = 32;  // names that are walked sooner than hashed
constexpr std::uint32_t kFree = 0xFFFFFFFF;

std::size_t hashOf(StringView name)
{
    return std::hash<std::string_view>()(name.view());
}

}  // namespace

Object::~Object() = default;

const Object::Entry* Object::find(StringView name) const
{
    if (m_table.empty()) {
        const auto found = std::find_if(m_entries.begin(), m_entries.end(),
                                        [name](const Entry& entry) { return entry.name == name; });
        return found == m_entries.end() ? nullptr : &*found;
    }
    for (std::size_t slot = hashOf(name);; ++slot) {
        const std::uint32_t number = m_table[slot & (m_table.size() - 1)];
        if (number == kFree)
            return nullptr;
        if (m_entries[number].name == name)
            return &m_entries[number];
    }
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
    const std::size_t count = m_entries.size() + 1;
    const bool grows = count > kFew && 2 * count > m_table.size();
    std::vector<std::uint32_t> larger(grows ? std::max(4 * kFew, 2 * m_table.size()) : 0, kFree);
    m_entries.push_back({std::move(name), std::move(value)});
    if (grows)
        m_table.swap(larger);
    for (std::size_t number = grows ? 0 : count - 1; !m_table.empty() && number < count; ++number)
        addToTable(number);
}

// Of a power of two of slots, at least half of which are free.
void Object::addToTable(std::size_t number)
{
    std::size_t slot = hashOf(m_entries[number].name);
    while (m_table[slot & (m_table.size() - 1)] != kFree)
        ++slot;
    m_table[slot & (m_table.size() - 1)] = static_cast<std::uint32_t>(number);
}

Pelon::MutablePtr<Object> createObject()
{
    return Pelon::makeMutable<Object>();
}

}  // namespace Korvane
