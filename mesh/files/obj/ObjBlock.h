#pragma once

#include "base/Host.h"
#include "files/obj/ObjReference.h"

#include <array>
#include <cstdint>
#include <iterator>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace TessaryMesh {

/// Statements that a mesh has no place for.
inline constexpr const char* kObjStatementsNotHeld[] = {
    "p",     "l",     "vp",     "cstype", "deg",      "bmat",     "step",       "curv",
    "curv2", "surf",  "parm",   "trim",   "hole",     "scrv",     "sp",         "end",
    "con",   "mg",    "lod",    "bevel",  "c_interp", "d_interp", "shadow_obj", "trace_obj",
    "ctech", "stech", "usemap", "maplib", "call",     "csh",      "res",        "bsp",
    "bzp",   "cdc",   "cdp",    "fo"};

/// What statements of a block say of the faces behind them: the first face that each holds for.
template <class T>
using FaceRuns = std::vector<std::pair<std::size_t, T>>;

/// The lists of values that corners name.
enum ObjKind { kObjPoint, kObjTexcoord, kObjNormal };
inline constexpr std::size_t kObjKinds = 3;
inline constexpr const char* kObjKindNames[kObjKinds] = {"point", "texture coordinate", "normal"};

using ObjReferences = std::array<ObjReference, kObjKinds>;

/// What statements outside a mesh, or not quite as they should be, a block has.
struct ObjTallies {
    std::uint64_t known = 0;  // statements that OBJ defines
    Tally notHeld[std::size(kObjStatementsNotHeld)];
    Tally unknown, extraNumbers, misplacedSigns, otherNames;
    std::string firstUnknown;

    /// What a block further on has, with `linesBefore` it.
    void add(const ObjTallies& later, std::uint64_t linesBefore);
};

/// What a block of whole statements tells. Faces, corners and lines count from the block's beginning.
struct ObjBlock {
    Array<float3> points, colours, normals;
    Array<float2> texcoords;
    Array<float3> wideTexcoords;  // instead of these, once a w occurs
    Array<float> weights;         // of the first points, up to the last one that is not 1
    Array<uint> faceEnds, corners;
    Array<uint> texcoordIndices, normalIndices;  // of the first corners, up to the last with one
    FaceRuns<String> object, group, material;
    FaceRuns<uint> smoothing;
    std::vector<String> libraries, tags;
    ObjReferences references;
    ObjTallies tallies;
    std::uint64_t colourCount = 0;
    std::uint64_t lines = 0;
    bool hasWideTexcoords = false;

    /// Colour, where every point so far has one, and weight of the point added last.
    void addColour(const float3& colour);
    void addWeight(float weight);

    void addTexcoord(const float3& texcoord, bool hasW);

    Array<uint>& indicesOf(ObjKind kind)
    {
        return kind == kObjPoint ? corners : kind == kObjTexcoord ? texcoordIndices : normalIndices;
    }
};

/// What comes before a block, as far as it is known.
struct ObjStart {
    std::uint64_t lines = 0;
    std::uint64_t corners = 0;
    ObjReferences references;
};

/// Reads whole statements, the last of which ends with its line. Throws FileError; lines in it count from
/// those of `start`.
ObjBlock parseObjBlock(std::string_view text, const std::string& path, const ObjStart& start = {});

}  // namespace TessaryMesh
