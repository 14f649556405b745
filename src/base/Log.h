#pragma once

#include "base/Host.h"

namespace Tessary {

/// Sends "`message` in `function`" and a line end to the host's log as an error, if the caller gave
/// a service and it wants errors.
void logError(const Pelon::RuntimeServices* services, StringView message, StringView function);

}  // namespace Tessary
