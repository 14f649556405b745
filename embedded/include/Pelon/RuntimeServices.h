#pragma once

#include <Pelon/Api.h>
#include <Pelon/String.h>

#include <cstdint>
#include <functional>

/// @file
/// Log messages.

namespace Pelon {

/// What a message is.
enum class RuntimeMessageCategory : std::uint32_t { Info = 0, Error = 1, Warning = 2, Debug = 3 };

/// The host's logging service. Messages go to a sink of the program's choice, on the thread that
/// logs; without a sink every category is off.
class RuntimeServices {
public:
    /// Who gets the messages.
    using Sink = std::function<void(RuntimeMessageCategory, StringView)>;

    RuntimeServices() = default;  ///< without a sink
    /// With one.
    explicit RuntimeServices(Sink sink) : m_sink(std::move(sink)) {}

    /// Categories are on until they are switched off.
    PELON_API void setLogEnabled(RuntimeMessageCategory category, bool enabled);

    /// Whether there is a sink, and the category was not switched off.
    PELON_API bool isLogEnabled(RuntimeMessageCategory category) const;

    /// Emits one message as it stands, whether or not the category is on.
    PELON_API void logImpl(RuntimeMessageCategory category, StringView text) const;

private:
    Sink m_sink;
    std::uint32_t m_disabled = 0;  // a bit per category
};

}  // namespace Pelon
