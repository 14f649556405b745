#include <fstream>  // which the library forgets where it reads no files
#include <sstream>

#define TINYGLTF_IMPLEMENTATION
#include "files/gltf/GltfModel.h"

#include "base/MessageText.h"
#include "files/FileErrors.h"
#include "files/gltf/Gltf.h"

#include <algorithm>
#include <exception>
#include <limits>
#include <streambuf>

namespace TessaryMesh {
namespace {

using Code = FileError::Code;

constexpr int kDeepestJson = 64;

// The library walks through what programs put beside the format by calling itself.
void refuseDeepJson(std::string_view json, const std::string& path)
{
    int depth = 0;
    bool isText = false;
    for (std::size_t i = 0; i < json.size(); ++i) {
        const char c = json[i];
        if (isText)
            i += c == '\\';
        isText = isText != (c == '"');
        if (isText)
            continue;
        depth += (c == '{' || c == '[') - (c == '}' || c == ']');
        if (depth > kDeepestJson)
            failToRead(Code::Malformed, path,
                       "byte " + std::to_string(i) + ": JSON more than " +
                           std::to_string(kDeepestJson) + " levels deep; this is no glTF",
                       atByte(i));
    }
}

/// Files beside a .gltf: those of its folder, and of folders in it.
struct Folder {
    std::string path;
    const std::string& file;  // the .gltf
    std::exception_ptr error;
};

std::exception_ptr asErrorOf(const Folder& folder, std::string_view beside, const FileError& error)
{
    const std::string_view what = error.what();
    const std::size_t begin = folder.path.size() + beside.size() + 2;  // behind "FILE: "
    return std::make_exception_ptr(
        FileError(error.code(), folder.file,
                  inputName(folder.file) + ": its file " + TessaryMesh::quoted(beside) + ": " +
                      std::string(what.substr(std::min(begin, what.size())))));
}

bool isInFolder(const std::string& name)
{
    return !name.empty() && name.front() != '/' &&
           ("/" + name + "/").find("/../") == std::string::npos;
}

bool exists(const std::string&, void*)
{
    return true;
}

std::string sameName(const std::string& name, void*)
{
    return name;
}

bool readBeside(std::vector<unsigned char>* out, std::string* error, const std::string& name,
                void* data)
{
    auto& folder = *static_cast<Folder*>(data);
    const std::string_view relative =
        std::string_view(name).substr(std::min(name.size(), folder.path.size()));
    try {
        if (!isInFolder(std::string(relative))) {
            *error = "lies outside of the file's folder";
            return false;
        }
        const Input input(name.c_str());
        out->resize(input.size());
        input.read(0, input.size(), reinterpret_cast<char*>(out->data()));
        return true;
    } catch (const FileError& found) {
        folder.error = asErrorOf(folder, relative, found);
        return false;
    } catch (...) {
        folder.error = std::current_exception();
        return false;
    }
}

bool ignoreImage(tinygltf::Image*, int, std::string*, std::string*, int, int, const unsigned char*,
                 int, void*)
{
    return true;
}

std::string folderOf(const std::string& path)
{
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? "./" : path.substr(0, slash + 1);
}

std::string firstLine(const std::string& text)
{
    return text.substr(0, text.find('\n'));
}

std::uint32_t numberAt(std::string_view bytes, std::size_t at)
{
    std::uint32_t number = 0;
    for (std::size_t i = 4; i-- > 0;)
        number = number << 8 | static_cast<unsigned char>(bytes[at + i]);
    return number;
}

bool load(std::string_view bytes, const std::string& path, Folder& folder, tinygltf::Model& model,
          std::string& error)
{
    tinygltf::TinyGLTF loader;
    std::string warning;
    loader.SetImageLoader(ignoreImage, nullptr);
    loader.SetFsCallbacks({exists, sameName, readBeside, nullptr, &folder});
    const auto size = static_cast<unsigned>(bytes.size());
    if (!isGlb(bytes)) {
        refuseDeepJson(bytes, path);
        return loader.LoadASCIIFromString(&model, &error, &warning, bytes.data(), size, folder.path,
                                          tinygltf::NO_REQUIRE);
    }
    if (bytes.size() >= 20)
        refuseDeepJson(bytes.substr(20, numberAt(bytes, 12)), path);
    return loader.LoadBinaryFromMemory(&model, &error, &warning,
                                       reinterpret_cast<const unsigned char*>(bytes.data()), size,
                                       folder.path, tinygltf::NO_REQUIRE);
}

/// Hands what goes into a stream on to a file.
class OutputBuffer : public std::streambuf {
public:
    explicit OutputBuffer(OutputFile& output) : m_output(output) {}

private:
    int_type overflow(int_type c) override
    {
        const char byte = traits_type::to_char_type(c);
        m_output.write(&byte, 1);
        return c;
    }

    std::streamsize xsputn(const char* text, std::streamsize count) override
    {
        m_output.write(text, static_cast<std::size_t>(count));
        return count;
    }

    OutputFile& m_output;
};

}  // namespace

tinygltf::Model parseGltf(const Input& input, const std::string& path)
{
    InputBuffer buffer;
    if (input.size() > std::numeric_limits<unsigned>::max())
        failToRead(Code::TooLarge, path, "is larger than the 4 GB of a glTF file; split the mesh");
    const std::string_view bytes = input.part(0, input.size(), buffer);
    if (isGlb(bytes) && bytes.size() >= 8 && numberAt(bytes, 4) != 2)
        failToRead(Code::Unsupported, path,
                   "is binary glTF of version " + std::to_string(numberAt(bytes, 4)) +
                       "; convert it to version 2");
    Folder folder{folderOf(path), path, nullptr};
    tinygltf::Model model;
    std::string error;
    bool isLoaded = false;
    try {
        isLoaded = load(bytes, path, folder, model, error);
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const Error&) {
        throw;
    } catch (const std::exception& thrown) {
        error = thrown.what();
    }
    if (folder.error)
        std::rethrow_exception(folder.error);
    if (!isLoaded && firstLine(error) == std::bad_alloc().what())
        throw std::bad_alloc();  // the library turns what it catches into text
    if (!isLoaded)
        failToRead(Code::Malformed, path,
                   "is no valid glTF 2.0: " + firstLine(error.empty() ? "no reason given" : error));
    if (model.asset.version.substr(0, 2) != "2.")
        failToRead(Code::Unsupported, path,
                   "is glTF of version " + TessaryMesh::quoted(model.asset.version) +
                       "; convert it to version 2.0");
    return model;
}

void putGltf(tinygltf::Model& model, bool isBinary, OutputFile& output)
{
    OutputBuffer buffer(output);
    std::ostream stream(&buffer);
    stream.exceptions(std::ios::badbit);  // which is how errors of the file come through
    tinygltf::TinyGLTF().WriteGltfSceneToStream(&model, stream, false, isBinary);
}

bool isGlb(std::string_view bytes)
{
    return bytes.substr(0, 4) == "glTF";
}

bool isGltf(std::string_view bytes)
{
    const std::size_t begin = bytes.find_first_not_of(" \t\r\n");
    if (begin == std::string_view::npos || bytes[begin] != '{')
        return false;
    for (const char* const key : {"\"asset\"", "\"accessors\"", "\"bufferViews\"", "\"meshes\""})
        if (bytes.find(key) != std::string_view::npos)
            return true;
    return false;
}

}  // namespace TessaryMesh
