#pragma once

#include "Options.h"
#include "Stopwatch.h"

#include <Korvane/Object.h>
#include <TessaryMesh/Files.h>
#include <TessaryMesh/Operations.h>

#include <nlohmann/json.hpp>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace Cli {

/// The run of a verb that reads a mesh and writes one file: what stands in the way of the output is
/// told before the long work, every part is timed, and all reports begin and end alike.
///
/// Made, it has the input; then run() and write(), and report() at the end.
class Conversion {
public:
    Conversion(const FileOptions& files, Session& session);

    const Korvane::Object& mesh() const { return *m_input.mesh; }
    const TessaryMesh::Format& format() const { return m_format; }

    /// Without faces, which a warning has said then, there is nothing to work on.
    bool hasFaces() const;

    /// Runs one part of the work. `part` names it in the report, `what` in the progress line. What
    /// does not fit the mesh (TessaryMesh::ArgumentError) was asked for on the command line.
    template <class Work>
    auto run(const char* part, const std::string& what, const Work& work)
    {
        beginPart(what);
        auto result = guarded(work);
        endPart(part);
        return result;
    }

    /// Writes the output by `writer`, which returns its warnings.
    void write(const std::function<std::vector<std::string>(TessaryMesh::OutputFile&)>& writer);

    /// Writes a mesh in the format that was asked for, and its parent maps where they were.
    void write(const TessaryMesh::Result& result);

    /// Puts what was written into place, and ends the verb with what it has to say of its work, as JSON
    /// and in a few words.
    ExitCode report(const Json& facts, const std::string& summary);

private:
    template <class Work>
    auto guarded(const Work& work) -> decltype(work())
    {
        try {
            return work();
        } catch (const TessaryMesh::ArgumentError& error) {
            throw UsageError(m_inputPath + ": " + error.what());
        }
    }

    struct Report {
        std::string note, product;
    };

    Report reportOf(const Json& facts, const std::string& summary) const;
    void openMaps(const FileOptions& files);
    void beginPart(const std::string& what);
    void endPart(const char* part);

    Session& m_session;
    std::string m_inputPath, m_outputPath;
    const TessaryMesh::Format& m_format;
    std::unique_ptr<TessaryMesh::OutputFile> m_output;
    std::unique_ptr<TessaryMesh::OutputFile> m_maps;  // null where nobody asked for maps
    TessaryMesh::MeshRead m_input;
    Stopwatch m_watch;
    Json m_seconds;  // of each part
};

}  // namespace Cli
