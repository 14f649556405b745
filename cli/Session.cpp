#include "Session.h"

#include "Advice.h"
#include "Words.h"

#include <Tessary/Progress.h>
#include <TessaryMesh/Check.h>
#include <TessaryMesh/Errors.h>
#include <tbb/global_control.h>
#include <nlohmann/json.hpp>

#include <new>
#include <optional>

namespace Cli {

void Session::setVerb(std::string verb)
{
    m_verb = std::move(verb);
    m_program.interrupt.setLine(interruption());
}

void Session::setSubject(const std::string& path)
{
    m_subject = path == "-" ? "standard input" : path;
    m_program.interrupt.setLine(interruption());
}

void Session::beginStage(const std::string& what)
{
    TessaryMesh::throwIfCancelled();
    m_program.progress.show(shown(about(named(what))));
}

void Session::warn(const std::string& text)
{
    m_warnings.push_back(shown(text));
    if (!settings.quiet)
        m_program.say(about(named("warning: " + text)));
}

void Session::warn(const std::vector<std::string>& texts)
{
    for (const std::string& text : texts)
        warn(text);
}

void Session::note(const std::string& text)
{
    if (!settings.quiet && !settings.json)
        m_program.say(about(named(text)));
}

void Session::fail(const std::string& text)
{
    m_program.say(about(text));
}

void Session::finish(Json facts, const std::string& text)
{
    m_program.progress.show("");
    if (settings.json) {
        facts["warnings"] = m_warnings;
        print(facts.dump(2, ' ', false, Json::error_handler_t::replace) + "\n");
    } else {
        print(text);
    }
    m_program.interrupt.workIsOver();
}

ExitCode Session::run(const std::function<ExitCode()>& verb)
{
    std::optional<tbb::global_control> limit;
    if (settings.threads > 0)
        limit.emplace(tbb::global_control::max_allowed_parallelism, settings.threads);
    m_program.showProgress();
    const Tessary::ProgressScope progress(m_program.progress.share());
    const ExitCode code = runGuarded(verb);
    return code == ExitCode::Done && m_program.hasLostMessages() ? ExitCode::File : code;
}

std::string Session::named(const std::string& text) const
{
    return m_subject.empty() ? text : m_subject + ": " + text;
}

std::string Session::about(const std::string& text) const
{
    return (m_verb.empty() ? "tessary: " : "tessary " + m_verb + ": ") + text;
}

std::string Session::interruption() const
{
    return shown(about(named("interrupted; no file is left half written")));
}

// Errors of files name their file themselves.
ExitCode Session::failWith(ExitCode code, const std::string& text)
{
    m_program.progress.show("");
    m_program.interrupt.workIsOver();
    if (m_program.interrupt.isRequested()) {
        m_program.say(interruption());
        return ExitCode::Interrupted;
    }
    fail(text);
    return code;
}

ExitCode Session::runGuarded(const std::function<ExitCode()>& verb)
{
    try {
        return verb();
    } catch (const UsageError& error) {
        return failWith(ExitCode::Usage,
                        std::string(error.what()) + " (see tessary " + m_verb + " --help)");
    } catch (const TessaryMesh::FileError& error) {
        return failWith(ExitCode::File, lineOf(error));
    } catch (const TessaryMesh::InvalidMesh& error) {
        const std::string line = lineOf(error, m_verb);
        return failWith(ExitCode::InvalidMesh, error.name().empty() ? named(line) : line);
    } catch (const TessaryMesh::OutOfMemory& error) {
        return failWith(ExitCode::File, error.name().empty() ? named(error.what()) : error.what());
    } catch (const std::bad_alloc&) {
        return failWith(ExitCode::File,
                        named("needs more memory than there is (use a smaller mesh)"));
    } catch (const std::exception& error) {
        return failWith(ExitCode::CheckFailed, named(std::string("unexpected: ") + error.what()));
    } catch (...) {
        return failWith(ExitCode::CheckFailed, named("unexpected failure"));
    }
}

}  // namespace Cli
