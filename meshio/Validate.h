#pragma once

#include <Korvane/Object.h>

#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

namespace MeshIo {

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

    /// The first error on one line, with its count, first place and advice; empty without errors.
    std::string firstError() const;
};

/// Checks whatever the kernels trust their callers with.
///
/// Errors: topology arrays missing or of another type, offsets that do not start at 0, decrease or
/// do not end at the corner count, corners that name no point, faces of fewer than three corners,
/// points that are not finite, arrays whose length does not match their component, index arrays with
/// an index outside their values (0xFFFFFFFF, no value, is allowed), more triangles or corners than
/// 32-bit indices of the triangulation can name. Warning: corners that repeat a point of their face.
/// Linear in the size of the mesh; never reads outside an array, whatever the mesh holds.
ValidationReport validateMesh(const Korvane::Object& mesh);

/// Thrown by readers for a mesh with errors; what() names the file and the first error.
class InvalidMesh : public std::runtime_error {
public:
    InvalidMesh(const std::string& file, ValidationReport report);

    const ValidationReport& report() const { return m_report; }

private:
    ValidationReport m_report;
};

}  // namespace MeshIo
