#include "Conversion.h"

#include <cstdio>

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
    endPart("write");
}

void Conversion::write(const Korvane::Object& mesh)
{
    write([&](TessaryMesh::OutputFile& output) {
        return TessaryMesh::writeMesh(mesh, m_format, output);
    });
}

ExitCode Conversion::report(const Json& facts, const std::string& summary)
{
    m_session.note(summary + "; " + totalOf(m_seconds) + "; see " + m_outputPath);
    Json all = {{"verb", m_session.verb()},
                {"file", m_inputPath},
                {"output", m_outputPath},
                {"format", m_format.name}};
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
