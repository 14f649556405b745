#include "files/Formats.h"

#include "base/MessageText.h"
#include "files/Deflate.h"
#include "files/ForeignFormats.h"
#include "files/assimp/Assimp.h"
#include "files/gltf/Gltf.h"
#include "files/json/Json.h"
#include "files/npz/Npz.h"
#include "files/obj/Obj.h"
#include "files/off/Off.h"
#include "files/ply/Ply.h"
#include "files/stl/Stl.h"

#include <algorithm>
#include <array>

namespace TessaryMesh {
namespace {

using Ply::Encoding;

FormatRow row(std::string_view name, std::string_view title, std::string_view ending,
              const FormatFunctions& functions, bool namesProperties = true)
{
    return {{name, title, ending, functions.read != nullptr, functions.writeMesh != nullptr,
             functions.writeCloud != nullptr, functions.writeArrays != nullptr, namesProperties},
            functions};
}

bool endsWith(std::string_view path, std::string_view lowerCaseEnding)
{
    if (lowerCaseEnding.empty() || path.size() <= lowerCaseEnding.size())
        return false;
    const std::string_view ending = path.substr(path.size() - lowerCaseEnding.size());
    return std::equal(ending.begin(), ending.end(), lowerCaseEnding.begin(), [](char a, char b) {
        return (a >= 'A' && a <= 'Z' ? a + ('a' - 'A') : a) == b;
    });
}

bool recognisesPly(const FileSigns& file)
{
    return isPly(file.bytes);
}

bool recognisesOff(const FileSigns& file)
{
    return isOff(file.bytes);
}

bool recognisesAsciiStl(const FileSigns& file)
{
    return !isBinaryStl(file.bytes, file.size) && isAsciiStl(file.bytes);
}

// A binary file of another size than it promises is an error of its own.
bool recognisesStl(const FileSigns& file)
{
    return isBinaryStl(file.bytes, file.size) ||
           (endsWith(file.name, ".stl") && file.bytes.find('\0') != std::string_view::npos);
}

template <Encoding encoding>
std::vector<std::string> writePlyAs(const Object& mesh, OutputFile& output)
{
    return writePly(mesh, encoding, output);
}

bool recognisesGlb(const FileSigns& file)
{
    return isGlb(file.bytes);
}

bool recognisesGltf(const FileSigns& file)
{
    return isGltf(file.bytes);
}

bool recognisesNpz(const FileSigns& file)
{
    return isNpz(file.bytes);
}

#ifdef TESSARY_WITH_ASSIMP
// By the ending, or by a mark of its own, which is all that a stream has; what is named like ours is
// none of theirs.
bool recognisesOther(const FileSigns& file)
{
    if (formatOfName(file.name))
        return false;
    const std::string_view mark = foreignEnding(file);
    const std::size_t dot = file.name.rfind('.');
    return (!mark.empty() && readsWithAssimp(mark)) ||
           (dot != std::string_view::npos && readsWithAssimp(file.name.substr(dot + 1)));
}
#endif

template <ZipWriter::Packing packing>
std::vector<std::string> writeNpzAs(const Object& mesh, OutputFile& output)
{
    return writeNpz(mesh, packing, output);
}

template <ZipWriter::Packing packing>
void writeNpzArraysAs(const NamedArrays& arrays, OutputFile& output)
{
    writeNpzArrays(arrays, packing, output);
}

template <ZipWriter::Packing packing>
constexpr FormatFunctions kNpz{recognisesNpz, readNpz, writeNpzAs<packing>, writeNpzAs<packing>,
                               writeNpzArraysAs<packing>};

template <Encoding encoding>
constexpr FormatFunctions kPly{recognisesPly, readPly, writePlyAs<encoding>, writePlyAs<encoding>,
                               nullptr};

// Every format that there is: its functions are declared in the one header of its folder.
const auto& table()
{
    static const std::array kRows{
        row("obj", "Wavefront OBJ", ".obj",
            {nullptr, readObj, writeObj, writeObj, nullptr, refuseNoText}, false),
        row("ply", "PLY, binary", ".ply", kPly<Encoding::LittleEndian>),
        row("ply-ascii", "PLY, ASCII", "", kPly<Encoding::Ascii>),
        row("ply-big", "PLY, binary, big-endian", "", kPly<Encoding::BigEndian>),
        row("stl", "STL, binary", ".stl",
            {recognisesStl, readStl, writeBinaryStl, nullptr, nullptr}, false),
        row("stl-ascii", "STL, ASCII", "",
            {recognisesAsciiStl, readStl, writeAsciiStl, nullptr, nullptr}, false),
        row("off", "OFF", ".off", {recognisesOff, readOff, writeOff, nullptr, nullptr}, false),
        row("glb", "glTF 2.0, binary", ".glb",
            {recognisesGlb, readGltf, writeGlb, writeGlb, nullptr}),
        row("gltf", "glTF 2.0", ".gltf", {recognisesGltf, readGltf, writeGltf, writeGltf, nullptr}),
        row("json", "JSON arrays", ".json", {nullptr, nullptr, nullptr, nullptr, writeJsonArrays}),
        row("npz", "NumPy arrays", ".npz", kNpz<ZipWriter::Packing::Stored>),
        row("npz-compressed", "NumPy arrays, compressed", "", kNpz<ZipWriter::Packing::Deflated>),
#ifdef TESSARY_WITH_ASSIMP
        row("assimp", "another format, through libassimp", "",
            {recognisesOther, readAssimp, nullptr, nullptr, nullptr}),
#endif
    };
    return kRows;
}

// The format of the first row that `fits`, null where none does.
template <class Fits>
const Format* findIf(const Fits& fits)
{
    for (const FormatRow& candidate : table())
        if (fits(candidate.format))
            return &candidate.format;
    return nullptr;
}

// The one format that is read and has no mark.
const FormatRow& withoutMark()
{
    return *std::find_if(table().begin(), table().end(), [](const FormatRow& candidate) {
        return candidate.functions.read && !candidate.functions.recognises;
    });
}

}  // namespace

const FormatRow& rowOf(const Format& format)
{
    for (const FormatRow& candidate : table())
        if (candidate.format.name == format.name)
            return candidate;
    throw ArgumentError("format", "there is no format " + quoted(format.name));
}

const FormatRow& rowOfContent(const FileSigns& file)
{
    for (const FormatRow& candidate : table())
        if (candidate.functions.recognises && candidate.functions.recognises(file))
            return candidate;
    return withoutMark();
}

const std::vector<const Format*>& formats()
{
    static const std::vector<const Format*> kFormats = [] {
        std::vector<const Format*> all;
        for (const FormatRow& each : table())
            all.push_back(&each.format);
        return all;
    }();
    return kFormats;
}

const Format* findFormat(std::string_view name)
{
    return findIf([name](const Format& format) { return format.name == name; });
}

const Format* formatOfName(std::string_view path)
{
    return findIf(
        [path](const Format& format) { return endsWith(withoutGz(path), format.ending); });
}

}  // namespace TessaryMesh
