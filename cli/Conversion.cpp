#include "Conversion.h"

#include <Korvane/Geometry.h>

#include <cstdio>
#include <filesystem>
#include <new>
#include <system_error>

namespace Cli {
namespace {

std::string totalOf(const Json& seconds)
{
    double total = 0;
    for (const Json& part : seconds)
        total += part.get<double>();
    char text[32];
    std::snprintf(text, sizeof text, "%.3f s", total);
    return text;
}

// However the two are spelled; neither has to exist.
bool isSameFile(const std::string& a, const std::string& b)
{
    const auto spelled = [](const std::string& path) {
        std::error_code unknown;
        const auto found = std::filesystem::weakly_canonical(path, unknown);
        return std::filesystem::absolute(unknown ? std::filesystem::path(path) : found, unknown);
    };
    return a == b || (b != "-" && spelled(a) == spelled(b));
}

}  // namespace

Conversion::Conversion(const FileOptions& files, Session& session)
    : m_session(session),
      m_inputPath(files.input),
      m_outputPath(files.output.path),
      m_format(formatFor(files.output))
{
    if (session.settings.json && m_outputPath == "-")
        throw UsageError("the output itself goes to standard output, so --json has no place to go");
    session.setSubject(m_inputPath);
    m_output = openOutput(m_outputPath, files.output);
    if (!files.maps.empty())
        openMaps(files);
    m_input = readInput(session, m_inputPath);
    if (!hasFaces() &&
        Korvane::Geometry::getElementCount(mesh(), Korvane::Geometry::sPointComp) > 0)
        session.warn("there are no faces, so the output has none");
    endPart("read");
}

bool Conversion::hasFaces() const
{
    return Korvane::Geometry::getElementCount(mesh(), Korvane::Geometry::sFaceComp) > 0;
}

void Conversion::write(
    const std::function<std::vector<std::string>(TessaryMesh::OutputFile&)>& writer)
{
    beginPart("writing " + m_outputPath);
    m_session.warn(guarded([&] { return writer(*m_output); }));
    endPart("write");
}

void Conversion::write(const TessaryMesh::Result& result)
{
    Korvane::Object mesh = *result.mesh;
    TessaryMesh::moveMaterialLibrary(mesh, m_inputPath, m_outputPath);
    write([&](TessaryMesh::OutputFile& output) {
        auto warnings = TessaryMesh::writeMesh(mesh, m_format, output);
        if (m_maps)
            TessaryMesh::writeArrays(result.parents.arrays(), mapsFormatFor(m_maps->path()),
                                     *m_maps);
        return warnings;
    });
}

void Conversion::openMaps(const FileOptions& files)
{
    mapsFormatFor(files.maps);
    if (isSameFile(files.maps, m_outputPath))
        throw UsageError("--output and --maps name the same file, " + files.maps);
    m_maps = openOutput(files.maps, files.output);
}

ExitCode Conversion::report(const Json& facts, const std::string& summary)
{
    beginPart("finishing " + m_outputPath);
    Report report = reportOf(facts, summary);  // what cannot even be told is not done either
    m_output->commit();
    if (m_maps)
        m_maps->commit();
    m_seconds["write"] = m_seconds["write"].get<double>() + m_watch.lap();
    try {
        report = reportOf(facts, summary);
    } catch (const std::bad_alloc&) {
        // Then the time of the last part is not in it.
    }
    m_session.note(report.note);
    m_session.finish(report.product);
    return ExitCode::Done;
}

Conversion::Report Conversion::reportOf(const Json& facts, const std::string& summary) const
{
    Json all = {{"verb", m_session.verb()},
                {"file", m_inputPath},
                {"output", m_outputPath},
                {"format", m_format.name}};
    if (m_maps)
        all["maps"] = m_maps->path();
    all.update(facts);
    all["seconds"] = m_seconds;
    return {summary + "; " + totalOf(m_seconds) + "; see " + m_outputPath,
            m_session.product(std::move(all), "")};
}

void Conversion::beginPart(const std::string& what)
{
    m_session.beginStage(what);
}

void Conversion::endPart(const char* part)
{
    m_seconds[part] = m_watch.lap();
}

}  // namespace Cli
