#include "MeshFacts.h"
#include "Options.h"
#include "Stopwatch.h"
#include "Verbs.h"

#include <meshio/Npz.h>
#include <meshio/OutputFile.h>
#include <meshio/Voxels.h>

#include <CLI/CLI.hpp>
#include <cmath>
#include <cstdio>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>

namespace Cli {
namespace {

using Cells = Pelon::Array<MeshIo::Cell>;

struct Options {
    std::string input;
    OutputOptions output;
    double cellSize = 0;
};

// A mesh format, or none for cells as arrays.
std::optional<MeshIo::MeshFormat> outputFormat(const OutputOptions& output)
{
    constexpr std::string_view kEnding = ".npz";
    const std::string& path = output.path;
    const bool endsSo = path.size() > kEnding.size() &&
                        path.compare(path.size() - kEnding.size(), kEnding.size(), kEnding) == 0;
    if (output.format.empty() && endsSo)
        return std::nullopt;
    return formatFor(output);
}

void writeArrays(const Cells& cells, double cellSize, MeshIo::OutputFile& output)
{
    static_assert(sizeof(MeshIo::Cell) == 3 * sizeof(std::int32_t));
    MeshIo::NpzWriter writer(output);
    writer.add("cells", {cells.size(), 3}, cells.empty() ? nullptr : &cells.data()->x);
    writer.add("cell_size", {}, &cellSize);
    writer.finish();
}

// What does not fit was asked for by the size of a cell.
template <class Work>
auto asUsage(const Options& options, const Work& work)
{
    try {
        return work();
    } catch (const std::invalid_argument& error) {
        throw UsageError(options.input + ": " + error.what());
    }
}

void write(const Cells& cells, const Options& options, MeshIo::OutputFile& output, Session& session)
{
    session.beginStage("writing " + options.output.path);
    if (const auto format = outputFormat(options.output)) {
        const auto cubes =
            asUsage(options, [&] { return MeshIo::makeCubes(cells, options.cellSize); });
        session.warn(MeshIo::writeMesh(*cubes, *format, output));
    } else {
        writeArrays(cells, options.cellSize, output);
    }
    session.beginStage("finishing " + options.output.path);
    output.commit();
}

std::string summary(const Json& facts)
{
    double seconds = 0;
    for (const Json& part : facts["seconds"])
        seconds += part.get<double>();
    char took[32];
    std::snprintf(took, sizeof took, "%.3f s", seconds);
    return facts["cells"].dump() + " cells of " + facts["cell_size"].dump() + "; " + took +
           "; see " + facts["output"].get<std::string>();
}

ExitCode voxels(const Options& options, Session& session)
{
    if (session.settings.json && options.output.path == "-")
        throw UsageError("the cells go to standard output, so --json has no place to go");
    if (!(options.cellSize >= 1e-30 && options.cellSize <= 1e30))
        throw UsageError("the size of a cell is a number from 1e-30 to 1e30");
    const auto format = outputFormat(options.output);
    session.setSubject(options.input);
    MeshIo::OutputFile output(options.output.path, options.output.force);
    Json seconds;
    Stopwatch watch;
    const MeshIo::MeshRead input = readInput(session, options.input);
    seconds["read"] = watch.lap();
    session.beginStage("finding cells");
    const Cells cells =
        asUsage(options, [&] { return MeshIo::touchedCells(*input.mesh, options.cellSize); });
    seconds["voxels"] = watch.lap();
    write(cells, options, output, session);
    seconds["write"] = watch.lap();

    Json facts = {{"verb", "voxels"},
                  {"file", options.input},
                  {"output", options.output.path},
                  {"format", format ? formatName(*format) : "npz"},
                  {"cell_size", options.cellSize},
                  {"cells", cells.size()},
                  {"seconds", seconds}};
    session.note(summary(facts));
    session.finish(std::move(facts), "");
    return ExitCode::Done;
}

}  // namespace

Run declareVoxels(CLI::App& verb, Session& session)
{
    const auto options = std::make_shared<Options>();
    addInput(verb, options->input);
    addOutput(verb, options->output);
    verb.add_option("--cell", options->cellSize, "Length of a cell's edges")
        ->type_name("H")
        ->required();
    verb.footer(
        "The grid begins at the origin; a cell counts where a face touches it. A mesh format gets\n"
        "a cube for each cell; a FILE that ends in .npz gets the arrays cells (x, y, z of each, "
        "in\n"
        "cells from the origin) and cell_size.\n\n"
        "Example:\n  tessary voxels roof.obj --cell 0.05 -o roof_cells.ply");
    return [options, &session] { return voxels(*options, session); };
}

}  // namespace Cli
