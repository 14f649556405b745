#pragma once

namespace TessaryMesh {

/// Writes the shortest text that reads back as `value`, the nearest to it of several, as std::to_chars()
/// does, and returns its end; null for numbers that are left to that: those of 2^24 and more, below 2^-14
/// or so short with an exponent that they would be written with one. There is room for 16 characters.
char* formatShortestFloat(char* out, float value);

}  // namespace TessaryMesh
