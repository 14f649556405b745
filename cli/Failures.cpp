#include "Failures.h"

#include "Advice.h"
#include "Words.h"

#include <TessaryMesh/Check.h>
#include <TessaryMesh/Errors.h>
#include <nlohmann/json.hpp>

#include <cstring>
#include <new>

namespace Cli {
namespace {

using TessaryMesh::FileError;
using TessaryMesh::InvalidMesh;
using TessaryMesh::Problem;

Failure failure(ExitCode exit, const std::string& code, const std::string& line, Json file = {},
                Json place = {})
{
    return {exit,
            line,
            {{"code", code},
             {"exit_code", static_cast<int>(exit)},
             {"message", shown(line)},
             {"file", std::move(file)},
             {"place", std::move(place)}}};
}

Json orNull(const std::string& text)
{
    return text.empty() ? Json() : Json(text);
}

Json placeOf(const FileError::Place& place)
{
    Json facts;
    if (place.line)
        facts["line"] = *place.line;
    if (place.byte)
        facts["byte"] = *place.byte;
    if (!place.element.empty())
        facts["element"] = place.element;
    if (place.row)
        facts["index"] = *place.row;
    return facts;
}

Json placeOf(const Problem& problem)
{
    if (problem.places.empty())
        return nullptr;
    const Problem::Place& place = problem.places.front();
    Json facts = {{"text", shown(place.text)}};
    if (place.element != Problem::Element::None) {
        constexpr const char* kElements[] = {"", "point", "corner", "face"};
        facts["element"] = kElements[static_cast<int>(place.element)];
        facts["index"] = place.index;
    }
    return facts;
}

Failure failureOf(const InvalidMesh& error, const std::string& subject, const std::string& verb)
{
    const std::string line = lineOf(error, verb);
    const bool isNamed = !error.name().empty() || subject.empty();
    const Problem* const first = error.report().firstError();
    return failure(ExitCode::InvalidMesh, first ? first->code : "invalid",
                   isNamed ? line : subject + ": " + line,
                   orNull(error.name().empty() ? subject : error.name()),
                   first ? placeOf(*first) : Json());
}

Failure outOfMemory(const std::string& line, const std::string& file)
{
    return failure(ExitCode::File, "out-of-memory", line, orNull(file));
}

// What the scheduler throws has no type of its own.
bool isLackOfThreads(const std::exception& error)
{
    return std::strstr(error.what(), "pthread_create") != nullptr;
}

}  // namespace

Failure currentFailure(const std::string& subject, const std::string& verb)
{
    const std::string prefix = subject.empty() ? "" : subject + ": ";
    try {
        throw;
    } catch (const UsageError& error) {
        return usageFailure(error.what(), verb);
    } catch (const FileError& error) {
        return failure(ExitCode::File, TessaryMesh::nameOf(error.code()), lineOf(error),
                       orNull(error.file()), placeOf(error.place()));
    } catch (const InvalidMesh& error) {
        return failureOf(error, subject, verb);
    } catch (const TessaryMesh::OutOfMemory& error) {
        return error.name().empty() ? outOfMemory(prefix + error.what(), subject)
                                    : outOfMemory(error.what(), error.name());
    } catch (const std::bad_alloc&) {
        return outOfMemory(prefix + "needs more memory than there is (use a smaller mesh)",
                           subject);
    } catch (const std::exception& error) {
        if (isLackOfThreads(error))
            return outOfMemory(
                prefix + error.what() + " (use fewer --threads, or raise the limit on processes)",
                subject);
        return failure(ExitCode::CheckFailed, "unexpected", prefix + "unexpected: " + error.what(),
                       orNull(subject));
    } catch (...) {
        return failure(ExitCode::CheckFailed, "unexpected", prefix + "unexpected failure",
                       orNull(subject));
    }
}

Failure usageFailure(const std::string& message, const std::string& verb)
{
    return failure(ExitCode::Usage, "usage",
                   message + " (see tessary " + (verb.empty() ? "" : verb + " ") + "--help)");
}

Failure interruption(const std::string& line)
{
    return failure(ExitCode::Interrupted, "interrupted", line);
}

}  // namespace Cli
