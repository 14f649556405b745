#include "base/MessageText.h"
#include "files/FileErrors.h"
#include "files/npz/Npz.h"
#include "files/npz/NpzWriter.h"

namespace TessaryMesh {
namespace {

void refuseLongTexts(const NamedArray& array, const Array<String>& texts, const OutputFile& output)
{
    if (!fitIntoRows(texts))
        failToWrite(FileError::Code::Unsupported, output.path(),
                    "array " + quoted(array.name) + " has texts of up to " +
                        std::to_string(longestOf(texts)) +
                        " characters, or bytes that are none (leave it out)");
}

}  // namespace

void writeNpzArrays(const NamedArrays& arrays, ZipWriter::Packing packing, OutputFile& output)
{
    NpzWriter writer(output, packing);
    for (const NamedArray& array : arrays)
        visitValues(array, [&](const auto& values, const Shape& shape) {
            if constexpr (std::is_same_v<std::decay_t<decltype(values)>, Array<String>>)
                refuseLongTexts(array, values, output);
            writer.add(array.name, shape, values);
        });
    writer.finish();
}

}  // namespace TessaryMesh
