#pragma once

#include <Korvane/Object.h>
#include <TessaryMesh/Errors.h>
#include <TessaryMesh/NamedArrays.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

/// @file
/// Mesh files to and from host objects, keeping polygons of any size, the order of points, corners
/// and faces, and every attribute. What each format holds, and under which property names, stands in
/// the pages of the documentation.

namespace TessaryMesh {

/// A format of files, one of a fixed list.
struct Format {
    std::string_view name;    ///< "obj", "ply-ascii"
    std::string_view title;   ///< for people: "Wavefront OBJ"
    std::string_view ending;  ///< ".obj"; empty for a variant that no ending tells
    bool readsMeshes;         ///< see readMesh()
    bool writesMeshes;        ///< see writeMesh()
    bool writesClouds;        ///< points with values and without faces
    bool writesArrays;        ///< see writeArrays()
    bool namesProperties;     ///< has a place for properties of any name, not for a few known ones
};

/// All formats. The references stay as long as the program runs.
TESSARY_MESH_API const std::vector<const Format*>& formats();

/// The format of that name; null where there is none.
TESSARY_MESH_API const Format* findFormat(std::string_view name);

/// The format that a file name's ending asks for, in upper or lower case; null where none does.
TESSARY_MESH_API const Format* formatOfName(std::string_view path);

/// What was read.
struct MeshRead {
    Pelon::MutablePtr<Korvane::Object> mesh;  ///< as Korvane/Geometry.h lays it out
    const Format* format;                     ///< that the content has
    std::vector<std::string> warnings;  ///< one line each: what the file has and the mesh has not
};

/// How much is read at most.
struct ReadLimits {
    /// Bytes of the file. 0 limits what comes from pipes and devices, which may have no end, to a quarter
    /// of the memory that this process may use, and files not at all.
    std::uint64_t bytes = 0;
};

/// Reads a mesh file, "-" meaning standard input, and validates it.
///
/// The format is recognised by the content, not by the name.
///
/// @throws FileError    for a file that cannot be read or parsed
/// @throws InvalidMesh  for a mesh with errors
/// @throws OutOfMemory
/// @throws Cancelled
TESSARY_MESH_API MeshRead readMesh(const std::string& path, const ReadLimits& limits = {});

/// The same without validation, for callers that want to look at the mesh's errors themselves.
TESSARY_MESH_API MeshRead readMeshUnchecked(const std::string& path, const ReadLimits& limits = {});

class TemporaryFile;

class Deflater;

/// A file that appears under its name only when it is complete.
///
/// Bytes go to a file without a name in the same folder, or to a temporary name where the file system
/// makes no such files; commit() puts it into place when all of it is on the disk. Without commit()
/// it is gone, and an existing file stays as it was. A file that is replaced hands on its permissions,
/// and a symbolic link stays one: what it points to is replaced or created. "-" is standard output; that,
/// devices and pipes are written straight through. Where the name ends in ".gz", the file is packed: the
/// same bytes make the same file, whatever its name and the time.
///
/// @throws FileError  from every operation, where the system refuses
/// @throws Cancelled  while a stream takes nothing
class TESSARY_MESH_API OutputFile {
public:
    /// With `overwrite` false an existing file is an error.
    OutputFile(std::string path, bool overwrite);
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    /// As it was given.
    const std::string& path() const { return m_path; }

    /// Appends bytes.
    void write(const void* bytes, std::size_t count);
    /// Appends text.
    void write(std::string_view text) { write(text.data(), text.size()); }

    /// Lets commit() return before the file is on the disk: quicker, but a power cut may take it.
    void skipSync() { m_syncs = false; }

    /// Writes out what is kept back, and gives the file its name. After a power cut there is this file
    /// or the one before it, and once commit() is over this one.
    void commit();

private:
    void put(std::string_view bytes);
    void openTemporary(unsigned permissions, bool replaces);
    void close();

    std::string m_path;
    std::string m_folder;  // of the file that the temporary becomes
    std::unique_ptr<TemporaryFile>
        m_temporary;  // null where bytes go straight through, and after commit()
    bool m_overwrite;
    bool m_syncs = true;
    int m_descriptor = -1;
    std::unique_ptr<Deflater> m_packer;  // where the name ends in .gz
};

/// Removes the temporary files of all outputs, for a program that is about to end at once, as by _exit():
/// whichever thread opens or commits an output after that waits for the end. Files that are complete
/// stay. Safe from any thread, but not in a signal handler.
TESSARY_MESH_API void removeUnfinishedFiles() noexcept;

/// Writes the mesh, or a point cloud without face arrays, into `output`, which the caller commits.
///
/// @param[in]     mesh    a mesh or a point cloud
/// @param[in]     format  one that writes such an object
/// @param[in,out] output  gets the bytes
/// @returns    a warning line for each thing that the format cannot hold
/// @throws InvalidMesh  for a mesh with errors
/// @throws FileError    where the format does not write such an object or the system refuses
/// @throws OutOfMemory
/// @throws Cancelled
TESSARY_MESH_API std::vector<std::string> writeMesh(const Korvane::Object& mesh,
                                                    const Format& format, OutputFile& output);

/// The same into a file of that name, by the format of its ending.
TESSARY_MESH_API std::vector<std::string> saveMesh(const Korvane::Object& mesh,
                                                   const std::string& path, bool overwrite = false);

/// Makes the "material_library" of a mesh lead from another folder to the same files: "roof.mtl" becomes
/// "../in/roof.mtl". Absolute names stay.
///
/// @param[in,out] mesh  any object
/// @param[in]     from  the file that it was read from
/// @param[in]     to    the file that it goes to; "-" is a stream, in the working folder
TESSARY_MESH_API void moveMaterialLibrary(Korvane::Object& mesh, const std::string& from,
                                          const std::string& to);

/// The header line behind which a PLY file's list of numbers for each face, which became the property
/// `name` of `mesh`, is a property of the corners: "comment property corner float crease crease".
/// Empty where the property is no such list.
TESSARY_MESH_API std::string plyCornerDeclaration(const Korvane::Object& mesh,
                                                  const std::string& name);

/// Writes arrays under their names: as .npz, for NumPy, or as a JSON object of lists, rows as lists of
/// their own, in which null stands for the index 0xFFFFFFFF and for numbers that are not finite.
///
/// @param[in]     arrays  under names of their own
/// @param[in]     format  one that writes arrays
/// @param[in,out] output  gets the bytes; the caller commits it
/// @throws FileError      where the format does not write arrays, the file would be larger than the
///                        format can number, or the system refuses
/// @throws ArgumentError  for an array of no element type or whose values do not fill its rows
/// @throws Cancelled
TESSARY_MESH_API void writeArrays(const NamedArrays& arrays, const Format& format,
                                  OutputFile& output);

}  // namespace TessaryMesh
