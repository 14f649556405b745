#include <TessaryMesh/Errors.h>

#include <KOR/ExceptionMessage.h>
#include <Pelon/Job.h>

#include <algorithm>
#include <utility>

namespace TessaryMesh {
namespace {

std::string times(std::uint64_t count)
{
    return count == 1 ? "once" : std::to_string(count) + " times";
}

std::string prefixed(const std::string& name, const std::string& message)
{
    return name.empty() ? message : name + ": " + message;
}

std::string lineOf(const ValidationReport& report)
{
    const Problem* const first = report.firstError();
    return first ? first->line() : std::string();
}

}  // namespace

std::string Problem::line() const
{
    return message +
           (places.empty() ? "" : " (" + times(count) + "), first at " + places.front().text) +
           "; " + advice;
}

const char* nameOf(FileError::Code code) noexcept
{
    using Code = FileError::Code;
    switch (code) {
        case Code::NotFound:
            return "not-found";
        case Code::IsFolder:
            return "is-folder";
        case Code::Unreadable:
            return "unreadable";
        case Code::Empty:
            return "empty";
        case Code::Malformed:
            return "malformed";
        case Code::Unsupported:
            return "unsupported";
        case Code::TooLarge:
            return "too-large";
        case Code::Exists:
            return "exists";
        case Code::NoFolder:
            return "no-folder";
        case Code::Unwritable:
            return "unwritable";
        case Code::OverLimit:
            return "over-limit";
    }
    return "file";
}

bool ValidationReport::hasErrors() const
{
    return firstError() != nullptr;
}

const Problem* ValidationReport::firstError() const
{
    const auto found = std::find_if(problems.begin(), problems.end(), [](const Problem& problem) {
        return problem.severity == Problem::Severity::Error;
    });
    return found == problems.end() ? nullptr : &*found;
}

FileError::FileError(Code code, std::string file, const std::string& message)
    : FileError(code, std::move(file), Place(), message)
{}

FileError::FileError(Code code, std::string file, Place place, const std::string& message)
    : Error(message), m_code(code), m_file(std::move(file)), m_place(std::move(place))
{}

InvalidMesh::InvalidMesh(std::string name, ValidationReport report)
    : Error(prefixed(name, lineOf(report))), m_name(std::move(name)), m_report(std::move(report))
{}

InvalidMesh::InvalidMesh(Problem problem) : InvalidMesh("", ValidationReport{{std::move(problem)}})
{}

ArgumentError::ArgumentError(std::string argument, const std::string& message)
    : Error(message), m_argument(std::move(argument))
{}

ArrayError::ArrayError(Code code, std::string array, const std::string& message,
                       std::optional<std::uint64_t> element, std::string value)
    : Error(message),
      m_code(code),
      m_array(std::move(array)),
      m_element(element),
      m_value(std::move(value))
{}

Cancelled::Cancelled() : Error(KOR::exceptionMessage.c_str()) {}

OutOfMemory::OutOfMemory(std::string name, const std::string& message, double bytes)
    : Error(prefixed(name, message)), m_name(std::move(name)), m_bytes(bytes)
{}

// Here, so that each type has one home and is caught across libraries.
Error::~Error() = default;
FileError::~FileError() = default;
InvalidMesh::~InvalidMesh() = default;
ArgumentError::~ArgumentError() = default;
ArrayError::~ArrayError() = default;
Cancelled::~Cancelled() = default;
OutOfMemory::~OutOfMemory() = default;

void throwIfCancelled()
{
    if (Pelon::isJobCancelled())
        throw Cancelled();
}

}  // namespace TessaryMesh
