#include "base/Log.h"

#include <string>

namespace Tessary {

void logError(const Pelon::RuntimeServices* services, StringView message, StringView function)
{
    constexpr auto kError = static_cast<Pelon::RuntimeMessageCategory>(1);
    if (!services || !services->isLogEnabled(kError))
        return;
    std::string text(message.data(), message.size());
    text += " in ";
    text.append(function.data(), function.size());
    text += '\n';
    services->logImpl(kError, StringView(text));
}

}  // namespace Tessary
