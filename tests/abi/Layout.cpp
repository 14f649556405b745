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

using Tessary::Sphere;
using Tessary::Scratch;

static_assert(sizeof(Sphere) == 16 && std::is_trivially_copyable_v<Sphere>);
static_assert(std::is_standard_layout_v<Sphere>);
static_assert(sizeof(Scratch<float>) == 2 * sizeof(void*) &&
              sizeof(Scratch<double>) == 2 * sizeof(void*));

// Public members in their order, one array after the other.
constexpr std::size_t kArray = sizeof(Pelon::Array<float>);
static_assert(std::is_standard_layout_v<Tessary::Multicollider>);
static_assert(sizeof(Tessary::Multicollider::ContactDirection) == 16);
static_assert(offsetof(Tessary::Multicollider, contactDirections) == 0);
static_assert(offsetof(Tessary::Multicollider, contactOffsets) == kArray);
static_assert(offsetof(Tessary::Multicollider, displacements) == 2 * kArray);
static_assert(offsetof(Tessary::Multicollider, freeDisplacements) == 3 * kArray);
static_assert(offsetof(Tessary::Multicollider, inverseMasses) == 4 * kArray);
static_assert(offsetof(Tessary::Multicollider, pairScales) == 5 * kArray);
static_assert(offsetof(Tessary::Multicollider, pairLambdas) == 6 * kArray);
static_assert(offsetof(Tessary::Multicollider, fallbackDisplacement) == 7 * kArray);
static_assert(offsetof(Tessary::Multicollider, tolerance) == 7 * kArray + 12);
static_assert(offsetof(Tessary::Multicollider, maxIterations) == 7 * kArray + 16);

using Tessary::LocalPosition;
using Tessary::PointBins;

static_assert(sizeof(LocalPosition) == 36 && alignof(LocalPosition) == 4);
static_assert(offsetof(LocalPosition, index) == 0 && offsetof(LocalPosition, segment) == 4);
static_assert(offsetof(LocalPosition, local) == 8);
static_assert(offsetof(LocalPosition, cell) == 20);
static_assert(offsetof(LocalPosition, tag) == 32);
static_assert(offsetof(PointBins, points) == sizeof(void*));
static_assert(offsetof(PointBins, binOffsets) == sizeof(void*) + sizeof(PointBins::Points));
static_assert(offsetof(PointBins, binCells) == offsetof(PointBins, binOffsets) + kArray);
static_assert(offsetof(PointBins, cellToBin) == offsetof(PointBins, binCells) + kArray);
