#include <Tessary/Tessary.h>

#include <cstddef>
#include <type_traits>

using Tessary::HalfEdge;

static_assert(sizeof(HalfEdge) == 8 && alignof(HalfEdge) == 4);
static_assert(offsetof(HalfEdge, faceVertex) == 0);
static_assert(offsetof(HalfEdge, face) == 4);
static_assert(std::is_trivially_copyable_v<HalfEdge>);  // goes in and out in a register

static_assert(std::is_same_v<Tessary::uint, Pelon::uint> && sizeof(Tessary::uint) == 4);
static_assert(sizeof(Pelon::Array<bool>) == 3 * sizeof(void*));
