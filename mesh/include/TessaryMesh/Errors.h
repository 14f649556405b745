#pragma once

#include <TessaryMesh/Api.h>

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

/// @file
/// Everything that the mesh library throws: a small tree of types, each with the fields by which a
/// program decides what to do. what() is one line for people; it speaks of meshes, files and arrays,
/// never of the options of a program, which knows by code() or argument() what to add.
///
/// What the kernels or the standard library throw comes out as one of these, too, but for
/// std::bad_alloc where so little memory is left that no message fits.

namespace TessaryMesh {

/// What all of them are.
class TESSARY_MESH_API Error : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
    ~Error() override;
};

/// A file that cannot be read or written.
class TESSARY_MESH_API FileError : public Error {
public:
    /// What is the matter, for programs.
    enum class Code {
        NotFound,     ///< there is no such file
        IsFolder,     ///< a folder stands where a file was expected
        Unreadable,   ///< the system refuses to open or to read it
        Empty,        ///< it has no bytes
        Malformed,    ///< its content breaks the rules of its format, or ends too early
        Unsupported,  ///< a format, a variant or an object that cannot be read or written
        TooLarge,     ///< more than the format, or 32-bit indices, can number
        Exists,       ///< it stands there already and is not to be replaced
        NoFolder,     ///< the folder that it should go into does not exist
        Unwritable,   ///< the system refuses to create, to write or to rename it
        OverLimit,    ///< more bytes than the caller wants to be read
    };

    /// Where in a file something was found. What does not apply is empty.
    struct Place {
        std::optional<std::uint64_t> line;  ///< counted from 1
        std::optional<std::uint64_t> byte;  ///< counted from 0
        std::string element;                ///< "vertex", "face": what the row belongs to
        std::optional<std::uint64_t> row;   ///< of the element, counted from 0
    };

    /// `message` is the whole line, the file's name included.
    FileError(Code code, std::string file, const std::string& message);
    /// The same with a place in the file.
    FileError(Code code, std::string file, Place place, const std::string& message);
    ~FileError() override;

    Code code() const noexcept { return m_code; }                ///< what is the matter
    const std::string& file() const noexcept { return m_file; }  ///< "-" for a standard stream
    const Place& place() const noexcept { return m_place; }      ///< where it was found

private:
    Code m_code;
    std::string m_file;
    Place m_place;
};

/// The name of a code, for programs that read reports: "not-found".
TESSARY_MESH_API const char* nameOf(FileError::Code code) noexcept;

/// What is wrong with a mesh, or unusual about it: one entry per kind.
struct Problem {
    /// How bad it is.
    enum class Severity {
        Warning,  ///< unusual, but every kernel handles it
        Error,    ///< the kernels must not be called
    };

    /// What an index counts.
    enum class Element { None, Point, Corner, Face };

    /// One occurrence.
    struct Place {
        std::string text;                 ///< "corner 9 of face 2, which names point 40 of 8"
        Element element = Element::None;  ///< what the index counts
        std::uint64_t index = 0;          ///< from 0, corners through the whole mesh
    };

    Severity severity;          ///< how bad it is
    std::string code;           ///< stable, for programs: "index-out-of-range"
    std::string message;        ///< for people: "corners that name no point"
    std::uint64_t count;        ///< how often it occurs
    std::vector<Place> places;  ///< the first few
    std::string advice;         ///< what to do

    /// Message, count, first place and advice on one line.
    TESSARY_MESH_API std::string line() const;
};

/// What checks found.
struct ValidationReport {
    std::vector<Problem> problems;  ///< one for each kind

    /// Whether one of them is an error.
    TESSARY_MESH_API bool hasErrors() const;

    /// The first problem that is an error; null where there is none.
    TESSARY_MESH_API const Problem* firstError() const;
};

/// A mesh that an operation, a reader or a writer must refuse.
class TESSARY_MESH_API InvalidMesh : public Error {
public:
    /// `name` is the file that the mesh came from or was to go to, or empty; what() begins with it.
    InvalidMesh(std::string name, ValidationReport report);
    /// One problem of a mesh that came from no file.
    explicit InvalidMesh(Problem problem);
    ~InvalidMesh() override;

    const std::string& name() const noexcept { return m_name; }           ///< of the file, or empty
    const ValidationReport& report() const noexcept { return m_report; }  ///< what is wrong

private:
    std::string m_name;
    ValidationReport m_report;
};

/// An option of an operation that has no meaning, or none for this mesh.
class TESSARY_MESH_API ArgumentError : public Error {
public:
    /// `argument` is the name of the parameter or of the field of the options: "distance".
    ArgumentError(std::string argument, const std::string& message);
    ~ArgumentError() override;

    const std::string& argument() const noexcept { return m_argument; }  ///< its name

private:
    std::string m_argument;
};

/// An array that cannot become part of a mesh, or that a mesh does not have.
class TESSARY_MESH_API ArrayError : public Error {
public:
    /// What is the matter, for programs.
    enum class Code {
        Missing,   ///< there is no array of this name, or no memory behind a pointer
        Type,      ///< elements of a type that cannot stand here
        Length,    ///< too few or too many elements
        Value,     ///< an element that is negative, too large or names nothing
        TooLarge,  ///< more elements than 32-bit indices can name
        Reserved,  ///< a name that belongs to the mesh itself, or to indices
    };

    /// `array` is "points", "corners", "offsets", "sizes" or the name of an attribute; `element`,
    /// where one is to blame, is its place among the numbers of the array, counted from 0.
    ArrayError(Code code, std::string array, const std::string& message,
               std::optional<std::uint64_t> element = std::nullopt, std::string value = {});
    ~ArrayError() override;

    Code code() const noexcept { return m_code; }                  ///< what is the matter
    const std::string& array() const noexcept { return m_array; }  ///< its name
    std::optional<std::uint64_t> element() const noexcept { return m_element; }  ///< which, if one
    const std::string& value() const noexcept { return m_value; }  ///< of that element, as text

private:
    Code m_code;
    std::string m_array;
    std::optional<std::uint64_t> m_element;
    std::string m_value;
};

/// The job of the calling thread was cancelled. what() is the host's text for it.
class TESSARY_MESH_API Cancelled : public Error {
public:
    Cancelled();  ///< with the host's text
    ~Cancelled() override;
};

/// More memory than this process can have.
class TESSARY_MESH_API OutOfMemory : public Error {
public:
    /// `name` is the file that was read, or empty; what() begins with it. `bytes` is what would be
    /// needed, as far as that is known, else 0.
    OutOfMemory(std::string name, const std::string& message, double bytes = 0);
    ~OutOfMemory() override;

    const std::string& name() const noexcept { return m_name; }  ///< of the file, or empty
    double bytes() const noexcept { return m_bytes; }            ///< needed, or 0 where unknown

private:
    std::string m_name;
    double m_bytes;
};

/// Ends long work of the caller's own as an operation would end.
///
/// @throws Cancelled  where the job of the calling thread was cancelled
TESSARY_MESH_API void throwIfCancelled();

}  // namespace TessaryMesh
