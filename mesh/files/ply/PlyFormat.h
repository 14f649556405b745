#pragma once

#include <Korvane/ElementTypes.h>

#include "base/Scalars.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

/// What PLY readers and writers share: the scalar types, how element types of the host are made of
/// them, and the header as data.
namespace TessaryMesh::Ply {

enum class Encoding { Ascii, LittleEndian, BigEndian };

/// The word of a header's format line.
const char* nameOf(Encoding encoding);

enum class Scalar : unsigned char { Int8, UInt8, Int16, UInt16, Int32, UInt32, Float32, Float64 };

/// Calls `f` with a value of the type that `scalar` stands for.
template <class F>
decltype(auto) withScalar(Scalar scalar, F&& f)
{
    switch (scalar) {
        case Scalar::Int8:
            return f(static_cast<signed char>(0));
        case Scalar::UInt8:
            return f(static_cast<unsigned char>(0));
        case Scalar::Int16:
            return f(static_cast<short>(0));
        case Scalar::UInt16:
            return f(static_cast<unsigned short>(0));
        case Scalar::Int32:
            return f(static_cast<int>(0));
        case Scalar::UInt32:
            return f(static_cast<unsigned int>(0));
        case Scalar::Float32:
            return f(0.0f);
        case Scalar::Float64:
            break;
    }
    return f(0.0);
}

inline std::size_t sizeOf(Scalar scalar)
{
    return withScalar(scalar, [](auto value) { return sizeof(value); });
}

inline bool isFloat(Scalar scalar)
{
    return scalar == Scalar::Float32 || scalar == Scalar::Float64;
}

/// The name in a header and, for types of one scalar, of the host's element type: "uchar".
const char* nameOf(Scalar scalar);

/// The type that a header calls `name`, in the old or the sized form ("uchar", "uint8").
std::optional<Scalar> scalarOfName(std::string_view name);

/// An element type as PLY holds it: `count` scalars.
struct Form {
    Scalar scalar;
    unsigned count;
};

/// The form of element type T; none for strings and 64-bit integers, which PLY cannot hold.
template <class T>
constexpr std::optional<Form> formOf()
{
    using S = typename Scalars<T>::Type;
    constexpr unsigned count = Scalars<T>::kCount;
    if constexpr (std::is_same_v<S, signed char>)
        return Form{Scalar::Int8, count};
    else if constexpr (std::is_same_v<S, unsigned char> || std::is_same_v<S, bool>)
        return Form{Scalar::UInt8, count};
    else if constexpr (std::is_same_v<S, short>)
        return Form{Scalar::Int16, count};
    else if constexpr (std::is_same_v<S, unsigned short>)
        return Form{Scalar::UInt16, count};
    else if constexpr (std::is_same_v<S, int>)
        return Form{Scalar::Int32, count};
    else if constexpr (std::is_same_v<S, unsigned int>)
        return Form{Scalar::UInt32, count};
    else if constexpr (std::is_same_v<S, float>)
        return Form{Scalar::Float32, count};
    else if constexpr (std::is_same_v<S, double>)
        return Form{Scalar::Float64, count};
    else
        return std::nullopt;
}

/// Calls `f(TypeTag<T>(), form)` for the element type of that name; false where PLY has none.
template <class F>
bool withElementType(std::string_view typeName, F&& f)
{
    return Korvane::anyElementType([&](auto tag, const char* name) {
        using T = typename decltype(tag)::type;
        constexpr std::optional<Form> form = formOf<T>();
        if constexpr (form.has_value()) {
            if (typeName == name) {
                f(tag, *form);
                return true;
            }
        }
        return false;
    });
}

struct Property {
    std::string name;
    Scalar type;
    std::optional<Scalar> countType;  ///< of lists only

    bool isList() const { return countType.has_value(); }
};

struct Element {
    std::string name;
    std::uint64_t count;
    std::vector<Property> properties;
};

enum class Owner { Point, Face, Corner };

const char* nameOf(Owner owner);

/// The type that a declaration gives to a list that belongs to no corners.
inline constexpr std::string_view kListType = "list";

/// What the names of a list's component and offsets have after the list's own name.
inline constexpr const char* kListComponentEnding = "_component";
inline constexpr const char* kListOffsetEnding = "_offset";

/// A header line `comment property OWNER TYPE NAME COLUMN...`; see Ply.h.
struct Declaration {
    Owner owner;
    std::string type;
    std::string name;  ///< as the mesh has it
    std::vector<std::string> columns;
    std::size_t line;
};

struct Header {
    Encoding encoding;
    std::vector<Element> elements;
    std::vector<Declaration> declarations;
    std::size_t size;   ///< bytes up to the body
    std::size_t lines;  ///< lines up to the body

    const Element* find(std::string_view element) const;
};

/// Throws FileError with the line.
Header parseHeader(std::string_view bytes, const std::string& path);

}  // namespace TessaryMesh::Ply
