#pragma once

/// @file
/// What every header of the embedded host stands on.

/// Marks what the host library exports.
#if defined(_WIN32)
#if defined(korvane_embedded_EXPORTS)
#define PELON_API __declspec(dllexport)
#else
#define PELON_API __declspec(dllimport)
#endif
#else
#define PELON_API __attribute__((visibility("default")))
#endif
