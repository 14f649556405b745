#pragma once

#include <Pelon/Job.h>

namespace Cli {

/// Turns the first Ctrl-C, termination or hang-up into the cancellation of the program's job, which
/// is the calling thread's job while this object lives. A second one ends the program at once. A
/// signal that the program was started to ignore stays ignored.
class Interrupt {
public:
    Interrupt();

    bool isRequested() const;

private:
    Pelon::JobScope m_scope;
};

}  // namespace Cli
