#pragma once

#include "OutputNames.h"
#include "Session.h"
#include "Verbs.h"

#include <functional>
#include <memory>

namespace Cli {

using FileWork = std::function<ExitCode(const FileTask&, Session&)>;

/// Does `work` with every input, in `session` where there is one and with sessions of their own where there
/// are more: as many at a time as `files.jobs` says, which share the threads. What they have to say comes
/// out in the order of the inputs. A failure does not keep the rest from being done; the exit code is the
/// largest of all.
///
/// Throws UsageError, before any work, where names of outputs do not fit the inputs.
ExitCode forEachFile(const FileOptions& files, Session& session, const FileWork& work);

/// What runs a verb that converts a file, once for each input. `prepare` is given the options before.
template <class Options>
Run eachFile(const std::shared_ptr<Options>& options, Session& session,
             ExitCode (*convert)(const Options&, Session&), void (*prepare)(Options&) = nullptr)
{
    return [options, &session, convert, prepare] {
        if (prepare)
            prepare(*options);
        return forEachFile(*options, session, [&](const FileTask& task, Session& one) {
            Options its = *options;
            its.input = task.input;
            its.output.path = task.output;
            its.maps = task.maps;
            return convert(its, one);
        });
    };
}

}  // namespace Cli
