#pragma once

/// @file
/// What every header of the mesh library stands on.

/// Marks what the mesh library exports.
#if defined(_WIN32)
#ifdef tessary_mesh_EXPORTS
#define TESSARY_MESH_API __declspec(dllexport)
#else
#define TESSARY_MESH_API __declspec(dllimport)
#endif
#else
#define TESSARY_MESH_API __attribute__((visibility("default")))
#endif
