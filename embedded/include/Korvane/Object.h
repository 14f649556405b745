#pragma once

#include <Pelon/Any.h>
#include <Pelon/Api.h>
#include <Pelon/Array.h>
#include <Pelon/Ptr.h>
#include <Pelon/String.h>

#include <cstdint>
#include <vector>

/// @file
/// The property bag.

namespace Korvane {

/// A dynamic property bag: values of any host type under string names, listed in the order in
/// which the names were first stored.
///
/// A copy of an object is shallow: it shares nested objects and arrays with the original. Not
/// synchronised. A look-up walks a few names, and finds one of many in constant time.
class PELON_API Object {
public:
    Object() = default;  ///< no properties
    Object(const Object&) = default;
    Object(Object&&) noexcept = default;
    Object& operator=(const Object&) = default;
    Object& operator=(Object&&) noexcept = default;

    /// Whether there is a value under that name.
    virtual bool hasProperty(Pelon::StringView name) const;

    /// A copy of the value (for nested objects and arrays, one more reference); empty where absent.
    virtual Pelon::Any getProperty(Pelon::StringView name) const;

    /// Hands the value out of the bag, so that whoever holds the only reference can see that it
    /// does and change the value in place. The name counts as absent, and keeps its place in the
    /// order, until setProperty() puts a value back: do so also when something fails in between.
    virtual Pelon::Any getPropertyForModification(Pelon::StringView name);

    /// Stores `value` under `name` in the place of any earlier one. An empty value means absent.
    virtual void setProperty(const Pelon::String& name, Pelon::Any value);

    /// All names, in the order in which they were first stored.
    virtual Pelon::Array<Pelon::String> propertyNames() const;

    /// setProperty() without a copy of either argument.
    virtual void storeProperty(Pelon::String&& name, Pelon::Any&& value);

    virtual ~Object();  // last, so that hasProperty() opens the table of operations

private:
    struct Entry {
        Pelon::String name;
        Pelon::Any value;
    };

    const Entry* find(Pelon::StringView name) const;
    Entry* find(Pelon::StringView name);

    void addToTable(std::size_t number);

    std::vector<Entry> m_entries;
    std::vector<std::uint32_t>
        m_table;  // numbers of entries by the hash of their names; empty for few
};

/// A new, empty object.
PELON_API Pelon::MutablePtr<Object> createObject();

}  // namespace Korvane
