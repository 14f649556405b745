#include "Conversion.h"

#include <cstdio>
#include <filesystem>
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
    m_output = std::make_unique<TessaryMesh::OutputFile>(m_outputPath, files.output.force);
    if (!files.maps.empty())
        openMaps(files);
    m_input = readInput(session, m_inputPath);
    endPart("read");
}

void Conversion::write(
    const std::function<std::vector<std::string>(TessaryMesh::OutputFile&)>& writer)
{
    beginPart("writing " + m_outputPath);
    m_session.warn(guarded([&] { return writer(*m_output); }));
    beginPart("finishing " + m_outputPath);
    m_output->commit();
    if (m_maps)
        m_maps->commit();
    endPart("write");
}

void Conversion::write(const TessaryMesh::Result& result)
{
    write([&](TessaryMesh::OutputFile& output) {
        auto warnings = TessaryMesh::writeMesh(*result.mesh, m_format, output);
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
    m_maps = std::make_unique<TessaryMesh::OutputFile>(files.maps, files.output.force);
}

ExitCode Conversion::report(const Json& facts, const std::string& summary)
{
    m_session.note(summary + "; " + totalOf(m_seconds) + "; see " + m_outputPath);
    Json all = {{"verb", m_session.verb()},
                {"file", m_inputPath},
                {"output", m_outputPath},
                {"format", m_format.name}};
    if (m_maps)
        all["maps"] = m_maps->path();
    all.update(facts);
    all["seconds"] = m_seconds;
    m_session.finish(std::move(all), "");
    return ExitCode::Done;
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
