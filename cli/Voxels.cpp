#include "Conversion.h"
#include "EachFile.h"
#include "Numbers.h"
#include "Verbs.h"
#include "Words.h"

#include <Korvane/Math.h>
#include <TessaryMesh/Operations.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>
#include <nlohmann/json.hpp>

namespace Cli {
namespace {

constexpr const char* kHelp =
    R"(The grid begins at the origin; a cell counts where a face touches it. A mesh format gets
a cube for each cell; a FILE of arrays, .npz or .json, gets cells (x, y, z of each, in
cells from the origin) and cell_size.

Example:
  tessary voxels roof.obj --cell 0.05 -o roof_cells.ply)";

using Cells = Pelon::Array<TessaryMesh::Cell>;

struct Options : FileOptions {
    std::string cell;     // as length() takes it
    double cellSize = 0;  // in the units of the mesh
};

Formats voxelFormats()
{
    Formats formats = formatsThat(&TessaryMesh::Format::writesMeshes);
    for (const TessaryMesh::Format* const format : formatsThat(&TessaryMesh::Format::writesArrays))
        if (!format->writesMeshes)
            formats.push_back(format);
    return formats;
}

TessaryMesh::NamedArrays arraysOf(const Cells& cells, double cellSize)
{
    using Korvane::Math::int3;
    const auto rows = Pelon::makeMutable<Pelon::Array<int3>>(cells.size());
    std::transform(cells.begin(), cells.end(), rows->begin(), [](const TessaryMesh::Cell& cell) {
        return int3{cell.x, cell.y, cell.z};
    });
    return {TessaryMesh::namedArray<int3>("cells", rows),
            TessaryMesh::namedArray<double>(
                "cell_size", Pelon::makeMutable<Pelon::Array<double>>(1, cellSize), 0)};
}

std::vector<std::string> write(const Cells& cells, const Options& options,
                               const TessaryMesh::Format& format, TessaryMesh::OutputFile& output)
{
    if (!format.writesArrays)
        return TessaryMesh::writeMesh(*TessaryMesh::makeCubes(cells, options.cellSize), format,
                                      output);
    TessaryMesh::writeArrays(arraysOf(cells, options.cellSize), format, output);
    return {};
}

void setCellSize(const Korvane::Object& mesh, Options& options)
{
    options.cellSize = lengthIn(mesh, options.cell, "--cell");
    if (!(options.cellSize >= 1e-30 && options.cellSize <= 1e30))
        throw UsageError(options.input + ": --cell " + options.cell +
                         ": the size of a cell is from 1e-30 to 1e30");
}

ExitCode voxels(const Options& asked, Session& session)
{
    Options options = asked;
    Conversion conversion(options, session);
    setCellSize(conversion.mesh(), options);
    const Cells cells = conversion.run("voxels", "finding cells", [&] {
        return TessaryMesh::touchedCells(conversion.mesh(), options.cellSize);
    });
    conversion.write([&](TessaryMesh::OutputFile& output) {
        return write(cells, options, conversion.format(), output);
    });
    const Json facts = {{"cell_size", options.cellSize}, {"cells", cells.size()}};
    return conversion.report(facts,
                             counted(cells.size(), "cell") + " of " + facts["cell_size"].dump());
}

}  // namespace

Run declareVoxels(CLI::App& verb, Session& session)
{
    const auto options = std::make_shared<Options>();
    addFiles(verb, *options, voxelFormats());
    verb.add_option(
            "--cell", options->cell,
            "Length of a cell's edges, or percent of the radius of the smallest sphere around "
            "the mesh, as in 2%")
        ->type_name("H")
        ->check(length())
        ->required();
    verb.footer(kHelp);
    return eachFile(options, session, voxels);
}

}  // namespace Cli
