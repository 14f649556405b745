#include "Session.h"

#include "Console.h"
#include "Failures.h"
#include "Threads.h"
#include "Words.h"
#include "system/System.h"

#include <Tessary/Progress.h>
#include <TessaryMesh/Errors.h>
#include <nlohmann/json.hpp>

#include <new>

namespace Cli {

void Session::setVerb(std::string verb)
{
    m_verb = std::move(verb);
    prepareInterruption();
}

void Session::setSubject(const std::string& path)
{
    m_file = path;
    m_subject = path == "-" ? "standard input" : path;
    prepareInterruption();
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
    prepareInterruption();
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
    limitThreads(settings.threads);
    m_program.showProgress();
    const Tessary::ProgressScope progress(m_program.progress.share());
    ExitCode code = ExitCode::File;
    try {
        code = runGuarded(verb);
    } catch (const std::bad_alloc&) {
        writeAll(STDERR_FILENO, "tessary: there is no memory left, not even to say for what\n");
    }
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

Failure Session::interruption() const
{
    return Cli::interruption(named("interrupted" + (m_state.empty() ? "" : " after " + m_state) +
                                   "; no file is left half written"));
}

std::string Session::document(const Failure& failure) const
{
    if (!settings.json)
        return "";
    const Json facts = {{"verb", m_verb.empty() ? Json() : Json(m_verb)},
                        {"file", m_file.empty() ? Json() : Json(m_file)},
                        {"error", failure.error},
                        {"warnings", m_warnings}};
    return facts.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n";
}

// For the case that there will be nobody to make them.
void Session::prepareInterruption()
{
    if (m_held)
        return;
    const Failure failure = interruption();
    m_program.interrupt.setLastWords(shown(about(failure.line)), document(failure));
}

// A failure of standard output itself is told on standard error alone.
ExitCode Session::fail(const Failure& failure)
{
    say(about(failure.line));
    const std::string text = document(failure);
    if (m_held)
        m_held->product = text;
    else
        writeAll(STDOUT_FILENO, text);
    return failure.exit;
}

ExitCode Session::runGuarded(const std::function<ExitCode()>& verb)
{
    try {
        return verb();
    } catch (...) {
        const Failure failure = currentFailure(m_subject, m_verb);
        if (!m_held) {
            m_program.progress.show("");
            m_program.interrupt.workIsOver();
        }
        return fail(m_program.interrupt.isRequested() ? interruption() : failure);
    }
}

}  // namespace Cli
