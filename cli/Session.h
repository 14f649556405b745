#pragma once

#include "Program.h"

#include <nlohmann/json_fwd.hpp>

#include <cstdint>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

namespace Cli {

/// A command line that cannot be carried out. what() says what to do instead.
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

using Json = nlohmann::ordered_json;

struct Failure;

/// What a session has to say and its product, kept until it is its turn.
struct Held {
    std::vector<std::string> lines;
    std::string product;
};

/// One run of one verb on one file: what it says to people and to programs, and how it ends.
///
/// Every message is one line on standard error: `tessary info: roof.obj: warning: ...`. The verb's
/// own product, a text or with --json one JSON document, goes to standard output.
class Session {
public:
    explicit Session(Program& program) : settings(program.settings), m_program(program) {}

    /// A session beside others, which neither shows progress nor ends the program's work.
    Session(Program& program, Held& held)
        : settings(program.settings), m_program(program), m_held(&held)
    {}

    Settings& settings;
    Program& program() { return m_program; }

    /// `verb` is empty as long as it is not known.
    void setVerb(std::string verb);
    const std::string& verb() const { return m_verb; }

    /// The file that messages are about; "-" stands for standard input.
    void setSubject(const std::string& path);

    /// Names what goes on, for the progress line, and is a place to end at after an interruption.
    void beginStage(const std::string& what);

    /// How far the work is, 0 to 1, for the same line.
    void tellProgress(const std::string& what, float share);

    void warn(const std::string& text);
    void warn(const std::vector<std::string>& texts);

    /// Tells people what was done.
    void note(const std::string& text);

    /// Says why the verb fails, with --json as a document, too; returns the exit code.
    ExitCode fail(const Failure& failure);

    /// What the work ends with: `facts` and the warnings so far as JSON, or `text`.
    std::string product(Json facts, const std::string& text) const;

    /// Ends the work with its product. Throws FileError where standard output does not take it.
    void finish(const std::string& product);
    void finish(Json facts, const std::string& text);

    /// Runs the verb and turns whatever it throws into one line and an exit code.
    ExitCode run(const std::function<ExitCode()>& verb);

private:
    void say(const std::string& line);
    std::string named(const std::string& text) const;
    std::string about(const std::string& text) const;
    Failure interruption() const;
    std::string document(const Failure& failure) const;
    void prepareInterruption();
    ExitCode runGuarded(const std::function<ExitCode()>& verb);

    Program& m_program;
    Held* m_held = nullptr;  // null where everything goes out at once
    std::string m_verb;
    std::string m_file;     // as it was given; empty before there is one
    std::string m_subject;  // how messages call it
    std::string m_state;    // how far it is: "3 of 14 files"
    std::vector<std::string> m_warnings;
};

}  // namespace Cli
