#include "files/ForeignFormats.h"

#include <cstddef>

namespace TessaryMesh {
namespace {

struct Mark {
    std::size_t at;
    std::string_view bytes, title;
};

constexpr Mark kMarks[] = {
    {0, "Kaydara FBX Binary", "a binary FBX file"},
    {0, "; FBX", "an FBX file"},
    {0, "BLENDER", "a Blender file"},
    {0, "\x1F\x8B", "gzip data inside gzip data"},
    {0, "PXR-USDC", "a binary USD file"},
    {0, "#usda", "a USD file"},
    {0, "Ogawa", "an Alembic file"},
    {0, "\x89HDF", "an HDF5 file"},
    {0, "DRACO", "a Draco file"},
    {0, "# vtk DataFile", "a VTK file"},
    {0, "$MeshFormat", "a Gmsh file"},
    {0, "#VRML", "a VRML file"},
    {0, "#X3D", "an X3D file"},
    {0, "xof ", "a DirectX file"},
    {0, "ISO-10303-21", "a STEP file"},
    {0, "  0\nSECTION", "a DXF file"},
    {0, "0\nSECTION", "a DXF file"},
    {8, "LWO", "a LightWave file"},
    {0, "\x93NUMPY", "a single NumPy array"},
    {0, "\x89PNG", "a PNG picture"},
    {0, "\xFF\xD8\xFF", "a JPEG picture"},
    {0, "GIF8", "a GIF picture"},
    {0, "%PDF", "a PDF document"},
    {0,
     "\x7F"
     "ELF",
     "a program"},
    {0, "BZh", "bzip2 data"},
    {0,
     "\xFD"
     "7zXZ",
     "xz data"},
    {0, "\x28\xB5\x2F\xFD", "Zstandard data"},
    {0, "7z\xBC\xAF", "a 7z archive"},
};

// Formats of XML, by their first element, and archives, by the name of a file in them.
constexpr Mark kMarksInside[] = {
    {0, "<COLLADA", "a COLLADA file"}, {0, "<X3D", "an X3D file"},    {0, "<amf", "an AMF file"},
    {0, "<VTKFile", "a VTK file"},     {0, "<svg", "an SVG picture"}, {0, "<html", "an HTML page"},
    {0, "<HTML", "an HTML page"},
};

struct Ending {
    std::string_view title, ending;
};

constexpr Ending kEndings[] = {
    {"a binary FBX file", "fbx"}, {"an FBX file", "fbx"}, {"a Blender file", "blend"},
    {"a VRML file", "wrl"},       {"an X3D file", "x3d"}, {"a DirectX file", "x"},
    {"a DXF file", "dxf"},        {"a 3DS file", "3ds"},  {"a LightWave file", "lwo"},
    {"a 3MF file", "3mf"},        {"an AMF file", "amf"}, {"a COLLADA file", "dae"},
};

bool contains(std::string_view bytes, std::string_view part)
{
    return bytes.find(part) != std::string_view::npos;
}

// A chunk 4D4D that is as long as the file.
bool is3ds(const FileSigns& file)
{
    std::uint64_t size = 0;
    for (std::size_t i = 6; i-- > 2 && file.bytes.size() >= 6;)
        size = size << 8 | static_cast<unsigned char>(file.bytes[i]);
    return file.bytes.substr(0, 2) == "MM" && size == file.size;
}

std::string_view archiveTitle(std::string_view bytes)
{
    return contains(bytes, "3D/") || contains(bytes, "[Content_Types]") ? "a 3MF file"
           : contains(bytes, ".dae")                                    ? "a COLLADA archive"
                                                                        : "a zip archive";
}

}  // namespace

std::string_view foreignFormat(const FileSigns& file)
{
    const std::string_view bytes = file.bytes;
    for (const Mark& mark : kMarks)
        if (bytes.size() > mark.at && bytes.substr(mark.at, mark.bytes.size()) == mark.bytes)
            return mark.title;
    if (is3ds(file))
        return "a 3DS file";
    if (bytes.substr(0, 4) == std::string_view("PK\x03\x04", 4))
        return archiveTitle(bytes);
    const std::size_t begin = bytes.find_first_not_of(" \t\r\n\xEF\xBB\xBF");
    if (begin == std::string_view::npos || bytes[begin] != '<')
        return bytes.substr(begin == std::string_view::npos ? 0 : begin, 1) == "{" ? "a JSON file"
                                                                                   : "";
    for (const Mark& mark : kMarksInside)
        if (contains(bytes, mark.bytes))
            return mark.title;
    return "an XML file";
}

std::string_view foreignEnding(const FileSigns& file)
{
    const std::string_view title = foreignFormat(file);
    for (const Ending& each : kEndings)
        if (each.title == title)
            return each.ending;
    return "";
}

}  // namespace TessaryMesh
