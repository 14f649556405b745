#pragma once

#include <Korvane/Object.h>
#include <Pelon/Ptr.h>
#include <TessaryMesh/Files.h>

#include <string>
#include <vector>

/// @file
/// Meshes and point clouds as a page for any browser.

namespace TessaryMesh {

/// What a page shows, under a name for people: that of the file, say.
struct PageModel {
    std::string name;                  ///< shown as text, whatever it contains
    Pelon::Ptr<Korvane::Object> mesh;  ///< or a cloud: an object with points and no face arrays
};

/// How a page is written.
struct PageOptions {
    /// Real numbers rounded to 16 bits over the range of their array, in exchange for half the size or
    /// less. The page says so, and how far a value may be off.
    bool quantise = false;

    /// Only ASCII, whatever it costs. Without it a page whose arrays barely compress holds them as bytes
    /// of windows-1252, which takes a quarter less; such a page can go wherever files go, but not into
    /// text of another encoding.
    bool ascii = false;
};

/// A page that shows one model, or two side by side: one HTML file without any other, which needs no
/// network and can be opened from disk. Everything the objects hold goes with them: polygons, properties with
/// their indices, what validateMesh(), edgeWarnings() and concaveFaces() say. Names are shown as text,
/// whatever they contain.
///
/// @param[in] models   one or two; meshes with errors are welcome
/// @param[in] options  how it is written
/// @returns    the page, at most 1 MB larger than the arrays, and by 2 % of those whose bits do not compress
///             at all, such as noise; most of them compress to less than half
/// @throws ArgumentError  for no model, for more than two and for one without point positions
/// @throws OutOfMemory
/// @throws Cancelled
TESSARY_MESH_API std::string makePage(const std::vector<PageModel>& models,
                                      const PageOptions& options = {});

/// The same into a file.
///
/// @param[in]     models   as above
/// @param[in,out] output   gets the page; the caller commits it
/// @param[in]     options  as above
/// @throws ArgumentError  as above
/// @throws FileError      where the system refuses
TESSARY_MESH_API void writePage(const std::vector<PageModel>& models, OutputFile& output,
                                const PageOptions& options = {});

}  // namespace TessaryMesh
