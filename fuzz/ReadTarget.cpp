// Any bytes, given to the reader of one format: a mesh that can be checked, or an error with a message.

#include "fuzz/Limits.h"

#include <mesh/files/Formats.h>

#include <TessaryMesh/Check.h>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Fuzz::useOneThread();
    static const auto kRead = rowOf(*TessaryMesh::findFormat(FUZZ_FORMAT)).functions.read;
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    try {
        const TessaryMesh::MeshRead read = kRead(bytes, "f");
        Fuzz::require(bool(read.mesh), "a reader returns a mesh");
        TessaryMesh::validateMesh(*read.mesh);
    } catch (const TessaryMesh::FileError& error) {
        const std::string message = error.what();
        Fuzz::require(message.substr(0, 1) == "f", "the message names the file: " + message);
        Fuzz::require(message.find('\n') == std::string::npos, "one line: " + message);
    }
    return 0;
}
