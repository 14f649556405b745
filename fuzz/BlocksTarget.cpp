// Text that is read in blocks of some bytes and as a whole: the same mesh, warnings and errors.

#include "fuzz/Limits.h"
#include "tests/support/SameMesh.h"

#include <mesh/files/obj/Obj.h>
#include <mesh/files/ply/Ply.h>

namespace {

struct Outcome {
    TessaryMesh::MeshRead read;
    std::string said;  // errors and warnings
};

template <class Read>
Outcome outcomeOf(const Read& read, const std::string& bytes, std::size_t blockSize)
{
    Outcome outcome{};
    try {
        outcome.read = read(bytes, "f", blockSize);
        for (const std::string& warning : outcome.read.warnings)
            outcome.said += warning + '\n';
    } catch (const TessaryMesh::FileError& error) {
        outcome.said = error.what();
    }
    return outcome;
}

template <class Read>
void compare(const Read& read, const std::string& bytes, std::size_t blockSize)
{
    const Outcome whole = outcomeOf(read, bytes, bytes.size() + 1);
    const Outcome parts = outcomeOf(read, bytes, blockSize);
    Fuzz::require(whole.said == parts.said,
                  "as a whole: " + whole.said + "in blocks: " + parts.said);
    Fuzz::require(bool(whole.read.mesh) == bool(parts.read.mesh), "both are read");
    if (whole.read.mesh)
        Fuzz::require(MeshFiles::firstDifference(*whole.read.mesh, *parts.read.mesh).empty(),
                      "the same mesh");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Fuzz::useOneThread();
    if (size == 0)
        return 0;
    const std::size_t blockSize = 1 + data[size - 1] % 64u;
    const std::string bytes(reinterpret_cast<const char*>(data), size - 1);
    using Bytes = const TessaryMesh::Input&;
    using Path = const std::string&;
    if (TessaryMesh::isPly(bytes))
        compare([](Bytes b, Path p, std::size_t n) { return TessaryMesh::readPly(b, p, n); }, bytes,
                blockSize);
    else
        compare([](Bytes b, Path p, std::size_t n) { return TessaryMesh::readObj(b, p, n); }, bytes,
                blockSize);
    return 0;
}
