#include "Program.h"

#include "Console.h"
#include "Words.h"
#include "system/System.h"

#include <TessaryMesh/Errors.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

namespace Cli {
namespace {

bool isInteractive()
{
    const char* const terminal = std::getenv("TERM");
    return isatty(STDERR_FILENO) && terminal && std::strcmp(terminal, "dumb") != 0;
}

}  // namespace

void Program::showProgress()
{
    if (!settings.quiet && isInteractive())
        progress.start([this] { return interrupt.isRequested(); });
}

void Program::say(const std::string& line)
{
    const auto lock = progress.clear();
    if (!writeAll(STDERR_FILENO, shown(line) + "\n"))
        m_messageLost = true;
}

void print(const std::string& text)
{
    using TessaryMesh::FileError;
    if (!writeAll(STDOUT_FILENO, text))
        throw FileError(
            FileError::Code::Unwritable, "-",
            std::string("standard output: ") + std::strerror(errno) + " (see where it leads)");
}

}  // namespace Cli
