#pragma once

#include "base/Host.h"

#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

namespace TessaryMesh {

/// What is wrong with a mesh, one entry per kind.
struct Problem {
    enum class Severity {
        Warning,  ///< unusual, but every kernel handles it
        Error,    ///< the kernels must not be called
    };

    Severity severity;
    std::string kind;                 ///< stable, for programs: "index-out-of-range"
    std::string message;              ///< for people: "corners that name no point"
    std::uint64_t count;              ///< how often it occurs
    std::vector<std::string> places;  ///< the first few: "corner 9 of face 2 names point 40 of 8"
    std::string advice;               ///< what to do
};

struct ValidationReport {
    std::vector<Problem> problems;

    bool hasErrors() const;

    /// The first error on one line, with its count and first place, where it has places, and advice;
    /// empty without errors.
    std::string firstError() const;
};

/// Checks whatever the kernels trust their callers with.
///
/// Kinds of error:
///   topology-missing     no array of points, face offsets or corners
///   topology-type        one of these is not of its type
///   length-mismatch      an array whose length does not match its component
///   offset-order         face offsets that do not start at 0, decrease or do not end at the corner
///                        count
///   index-out-of-range   corners that name no point
///   small-face           faces of fewer than three corners
///   point-not-finite     points with a coordinate that is infinite or not a number
///   property-index       an index array with an index outside its values; 0xFFFFFFFF, no value, is
///                        allowed
///   circular-target      a property whose targets lead round in a circle
///   too-large            more corners than 32-bit indices of the triangulation can name
/// Kind of warning:
///   repeated-corner      corners that repeat a point of their face
///
/// Faces, points and corners are counted from 0, corners through the whole mesh. Time is linear in
/// the size of the mesh. Never reads outside an array, whatever the mesh holds.
ValidationReport validateMesh(const Object& mesh);

/// Thrown by readers for a mesh with errors; what() names the file and the first error.
class InvalidMesh : public std::runtime_error {
public:
    InvalidMesh(const std::string& file, ValidationReport report);
    InvalidMesh(const std::string& file, Problem problem);

    const ValidationReport& report() const { return m_report; }

private:
    ValidationReport m_report;
};

}  // namespace TessaryMesh
