#pragma once

#include "Interrupt.h"
#include "Progress.h"

#include <nlohmann/json_fwd.hpp>

#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

namespace Cli {

enum class ExitCode {
    Done = 0,
    CheckFailed = 1,  ///< also whatever has no code of its own
    Usage = 2,
    File = 3,  ///< unreadable, unwritable, or more than the memory holds
    InvalidMesh = 4,
    Interrupted = 130,
};

/// A command line that cannot be carried out. what() says what to do instead.
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

using Json = nlohmann::ordered_json;

/// One run of one verb: its settings, what it says to people and to programs, and how it ends.
///
/// Every message is one line on standard error: `tessary info: roof.obj: warning: ...`. The verb's
/// own product, a text or with --json one JSON document, goes to standard output.
class Session {
public:
    struct Settings {
        bool json = false;
        bool quiet = false;
        unsigned threads = 0;  ///< 0: as many as the machine has
    };

    Settings settings;

    /// `verb` is empty as long as it is not known.
    void setVerb(std::string verb);
    const std::string& verb() const { return m_verb; }

    /// The file that messages are about; "-" stands for standard input.
    void setSubject(const std::string& path);

    /// Names what goes on, for the progress line, and is a place to end at after an interruption.
    void beginStage(const std::string& what);

    void warn(const std::string& text);
    void warn(const std::vector<std::string>& texts);

    /// Tells people what was done.
    void note(const std::string& text);

    /// Says why the verb fails; `text` names its file itself.
    void fail(const std::string& text);

    /// Ends the work with `facts` and the warnings so far as JSON, or with `text`. Throws FileError
    /// where standard output takes neither.
    void finish(Json facts, const std::string& text);

    /// Runs the verb and turns whatever it throws into one line and an exit code.
    ExitCode run(const std::function<ExitCode()>& verb);

private:
    std::string named(const std::string& text) const;
    std::string about(const std::string& text) const;
    void say(const std::string& text);
    std::string interruption() const;
    ExitCode failWith(ExitCode code, const std::string& text);
    ExitCode runGuarded(const std::function<ExitCode()>& verb);

    std::string m_verb;
    std::string m_subject;
    std::vector<std::string> m_warnings;
    bool m_messageLost = false;
    Interrupt m_interrupt;
    Progress m_progress;
};

}  // namespace Cli
