#include "Session.h"

#include "Advice.h"
#include "Console.h"

#include <Tessary/Progress.h>
#include <TessaryMesh/Check.h>
#include <TessaryMesh/Errors.h>
#include <tbb/global_control.h>
#include <nlohmann/json.hpp>

#include <unistd.h>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <new>
#include <optional>

namespace Cli {
namespace {

bool isInteractive()
{
    const char* const terminal = std::getenv("TERM");
    return isatty(STDERR_FILENO) && terminal && std::strcmp(terminal, "dumb") != 0;
}

// Text from elsewhere, such as a name inside a file, must not break or fake a line.
std::string onOneLine(std::string text)
{
    for (char& c : text)
        if (static_cast<unsigned char>(c) < ' ' || c == '\x7f')
            c = ' ';
    return text;
}

void print(const std::string& text)
{
    using TessaryMesh::FileError;
    if (!writeAll(STDOUT_FILENO, text))
        throw FileError(
            FileError::Code::Unwritable, "-",
            std::string("standard output: ") + std::strerror(errno) + " (see where it leads)");
}

}  // namespace

void Session::setVerb(std::string verb)
{
    m_verb = std::move(verb);
    m_interrupt.setLine(interruption());
}

void Session::setSubject(const std::string& path)
{
    m_subject = path == "-" ? "standard input" : path;
    m_interrupt.setLine(interruption());
}

void Session::beginStage(const std::string& what)
{
    TessaryMesh::throwIfCancelled();
    m_progress.show(onOneLine(about(named(what))));
}

void Session::warn(const std::string& text)
{
    m_warnings.push_back(onOneLine(text));
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

void Session::finish(Json facts, const std::string& text)
{
    m_progress.show("");
    if (settings.json) {
        facts["warnings"] = m_warnings;
        print(facts.dump(2, ' ', false, Json::error_handler_t::replace) + "\n");
    } else {
        print(text);
    }
    m_interrupt.workIsOver();
}

ExitCode Session::run(const std::function<ExitCode()>& verb)
{
    std::optional<tbb::global_control> limit;
    if (settings.threads > 0)
        limit.emplace(tbb::global_control::max_allowed_parallelism, settings.threads);
    if (!settings.quiet && isInteractive())
        m_progress.start([this] { return m_interrupt.isRequested(); });
    const Tessary::ProgressScope progress(m_progress.share());
    const ExitCode code = runGuarded(verb);
    return code == ExitCode::Done && m_messageLost ? ExitCode::File : code;
}

std::string Session::named(const std::string& text) const
{
    return m_subject.empty() ? text : m_subject + ": " + text;
}

std::string Session::about(const std::string& text) const
{
    return (m_verb.empty() ? "tessary: " : "tessary " + m_verb + ": ") + text;
}

void Session::say(const std::string& text)
{
    const auto lock = m_progress.clear();
    if (!writeAll(STDERR_FILENO, onOneLine(text) + "\n"))
        m_messageLost = true;
}

std::string Session::interruption() const
{
    return onOneLine(about(named("interrupted; no file is left half written")));
}

// Errors of files name their file themselves.
ExitCode Session::failWith(ExitCode code, const std::string& text)
{
    m_progress.show("");
    m_interrupt.workIsOver();
    if (m_interrupt.isRequested()) {
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
