#pragma once

#include "base/Host.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace TessaryMesh {

/// Characters up to the last one that is not 0, as UTF-8.
std::string textOf(const char32_t* characters, std::size_t count);

/// The longest of the texts, in characters, 1 at least.
std::size_t longestOf(const Array<String>& texts);

/// Texts of this many characters each, filled up with zeros: NumPy's <U array.
std::vector<char32_t> paddedTexts(const Array<String>& texts, std::size_t width);

/// Whether such an array holds these texts to the last byte, and is not absurdly larger than they are.
bool fitIntoRows(const Array<String>& texts);

/// Well-formed UTF-8 as it is, but for "%" and, where it is none, bytes from 128 on: %25, %FF. See
/// percentDecoded() for the way back.
std::string escaped(std::string_view text);

}  // namespace TessaryMesh
