#include "Interrupt.h"

#include <csignal>
#include <initializer_list>

namespace Cli {
namespace {

Pelon::Job s_job;

void cancelJob(int)
{
    s_job.cancel();
}

void watch(int signal)
{
    struct sigaction action = {};
    if (sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN)
        return;
    // No restart, so that waiting for input ends; reset, so that a second signal ends the program.
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    action.sa_handler = cancelJob;
    sigemptyset(&action.sa_mask);
    sigaction(signal, &action, nullptr);
}

}  // namespace

Interrupt::Interrupt() : m_scope(s_job)
{
    for (const int signal : {SIGINT, SIGTERM, SIGHUP})
        watch(signal);
}

bool Interrupt::isRequested() const
{
    return s_job.isCancelled();
}

}  // namespace Cli
