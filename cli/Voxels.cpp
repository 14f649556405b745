#include "Conversion.h"
#include "Verbs.h"

#include <TessaryMesh/Operations.h>
#include <mesh/files/npz/Npz.h>

#include <CLI/CLI.hpp>
#include <memory>
#include <nlohmann/json.hpp>

namespace Cli {
namespace {

constexpr const char* kHelp =
    R"(The grid begins at the origin; a cell counts where a face touches it. A mesh format gets
a cube for each cell; a FILE that ends in .npz gets the arrays cells (x, y, z of each, in
cells from the origin) and cell_size.

Example:
  tessary voxels roof.obj --cell 0.05 -o roof_cells.ply)";

using Cells = Pelon::Array<TessaryMesh::Cell>;

struct Options : FileOptions {
    double cellSize = 0;
};

std::vector<std::string> writeArrays(const Cells& cells, double cellSize,
                                     TessaryMesh::OutputFile& output)
{
    static_assert(sizeof(TessaryMesh::Cell) == 3 * sizeof(std::int32_t));
    TessaryMesh::NpzWriter writer(output);
    writer.add("cells", {cells.size(), 3}, cells.empty() ? nullptr : &cells.data()->x);
    writer.add("cell_size", {}, &cellSize);
    writer.finish();
    return {};
}

std::vector<std::string> write(const Cells& cells, const Options& options,
                               const std::string& format, TessaryMesh::OutputFile& output)
{
    const auto meshFormat = meshFormatOf(format);
    if (!meshFormat)
        return writeArrays(cells, options.cellSize, output);
    return TessaryMesh::writeMesh(*TessaryMesh::makeCubes(cells, options.cellSize), *meshFormat,
                                  output);
}

ExitCode voxels(const Options& options, Session& session)
{
    if (!(options.cellSize >= 1e-30 && options.cellSize <= 1e30))
        throw UsageError("the size of a cell is a number from 1e-30 to 1e30");
    Conversion conversion(options, session);
    const Cells cells = conversion.run("voxels", "finding cells", [&] {
        return TessaryMesh::touchedCells(conversion.mesh(), options.cellSize);
    });
    conversion.write([&](TessaryMesh::OutputFile& output) {
        return write(cells, options, conversion.format(), output);
    });
    const Json facts = {{"cell_size", options.cellSize}, {"cells", cells.size()}};
    return conversion.report(facts,
                             facts["cells"].dump() + " cells of " + facts["cell_size"].dump());
}

}  // namespace

Run declareVoxels(CLI::App& verb, Session& session)
{
    const auto options = std::make_shared<Options>();
    addFiles(verb, *options, meshFormatsAnd("npz"));
    verb.add_option("--cell", options->cellSize, "Length of a cell's edges")
        ->type_name("H")
        ->required();
    verb.footer(kHelp);
    return [options, &session] { return voxels(*options, session); };
}

}  // namespace Cli
