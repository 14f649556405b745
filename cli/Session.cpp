#include "Session.h"

#include "Advice.h"
#include "Threads.h"
#include "Words.h"

#include <Tessary/Progress.h>
#include <TessaryMesh/Check.h>
#include <TessaryMesh/Errors.h>
#include <nlohmann/json.hpp>

#include <new>

namespace Cli {

void Session::setVerb(std::string verb)
{
    m_verb = std::move(verb);
    if (!m_held)
        m_program.interrupt.setLine(interruption());
}

void Session::setSubject(const std::string& path)
{
    m_subject = path == "-" ? "standard input" : path;
    if (!m_held)
        m_program.interrupt.setLine(interruption());
}

void Session::beginStage(const std::string& what)
{
    TessaryMesh::throwIfCancelled();
    if (!m_held)
        m_program.progress.show(shown(about(named(what))));
}

void Session::tellProgress(const std::string& what, float share)
{
    m_state = what;
    m_program.progress.change(shown(about(named(what))), share);
    m_program.interrupt.setLine(interruption());
}

void Session::warn(const std::string& text)
{
    m_warnings.push_back(shown(text));
    if (!settings.quiet)
        say(about(named("warning: " + text)));
}

void Session::warn(const std::vector<std::string>& texts)
{
    for (const std::string& text : texts)
        warn(text);
}

void Session::note(const std::string& text)
{
    if (!settings.quiet && !settings.json)
        say(about(named(text)));
}

void Session::fail(const std::string& text)
{
    say(about(text));
}

std::string Session::product(Json facts, const std::string& text) const
{
    if (!settings.json)
        return text;
    facts["warnings"] = m_warnings;
    return facts.dump(settings.isBatch ? -1 : 2, ' ', false, Json::error_handler_t::replace) + "\n";
}

void Session::finish(const std::string& product)
{
    if (m_held) {
        m_held->product = product;
        return;
    }
    m_program.progress.show("");
    print(product);
    m_program.interrupt.workIsOver();
}

void Session::finish(Json facts, const std::string& text)
{
    finish(product(std::move(facts), text));
}

ExitCode Session::run(const std::function<ExitCode()>& verb)
{
    if (m_held)
        return runGuarded(verb);
    const ThreadLimit limit(settings.threads);
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

void Session::say(const std::string& line)
{
    if (m_held)
        m_held->lines.push_back(line);
    else
        m_program.say(line);
}

std::string Session::interruption() const
{
    return shown(about(named("interrupted" + (m_state.empty() ? "" : " after " + m_state) +
                             "; no file is left half written")));
}

// Errors of files name their file themselves.
ExitCode Session::failWith(ExitCode code, const std::string& text)
{
    if (!m_held) {
        m_program.progress.show("");
        m_program.interrupt.workIsOver();
    }
    if (m_program.interrupt.isRequested()) {
        say(interruption());
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
