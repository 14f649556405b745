#pragma once

#include <Pelon/Api.h>
#include <Pelon/String.h>

#include <cstdint>
#include <functional>

namespace Pelon {

enum class RuntimeMessageCategory : std::uint32_t { Info = 0, Error = 1, Warning = 2, Debug = 3 };

/// The host's logging service. Messages go to a sink of the program's choice, on the thread that
/// logs; without a sink every category is off.
class RuntimeServices {
public:
    using Sink = std::function<void(RuntimeMessageCategory, StringView)>;

    RuntimeServices() = default;
    explicit RuntimeServices(Sink sink) : m_sink(std::move(sink)) {}

    /// Categories are on until they are switched off.
    PELON_API void setLogEnabled(RuntimeMessageCategory category, bool enabled);

    PELON_API bool isLogEnabled(RuntimeMessageCategory category) const;

    /// Emits one message as it stands, whether or not the category is on.
    PELON_API void logImpl(RuntimeMessageCategory category, StringView text) const;

private:
    Sink m_sink;
    std::uint32_t m_disabled = 0;  // a bit per category
};

}  // namespace Pelon
