#include "base/MessageText.h"
#include "files/FileErrors.h"
#include "files/npz/Npz.h"
#include "files/npz/NpzWriter.h"

namespace TessaryMesh {
namespace {

void refuseLongTexts(const NamedArray& array, const Array<String>& texts, const OutputFile& output)
{
    const std::size_t width = NpzWriter::longestOf(texts);
    if (width > NpzWriter::kLongestText)
        failToWrite(FileError::Code::Unsupported, output.path(),
                    "array " + quoted(array.name) + " has texts of up to " + std::to_string(width) +
                        " characters (leave it out)");
}

}  // namespace

void writeNpzArrays(const NamedArrays& arrays, OutputFile& output)
{
    NpzWriter writer(output);
    for (const NamedArray& array : arrays)
        visitValues(array, [&](const auto& values, const Shape& shape) {
            if constexpr (std::is_same_v<std::decay_t<decltype(values)>, Array<String>>)
                refuseLongTexts(array, values, output);
            writer.add(array.name, shape, values);
        });
    writer.finish();
}

}  // namespace TessaryMesh
