#pragma once

#include <functional>
#include <string>

namespace TessaryMesh {

/// The temporary files of all outputs that are being written, so that a program that ends at once can
/// take them along. One list a process; any thread.
class UnfinishedFiles {
public:
    /// Calls `create`, which returns whether it made the file of that name, and notes the name: no
    /// moment lies between the two, and a lack of memory shows before the file is there.
    static bool add(const std::string& name, const std::function<bool()>& create);

    /// Calls `finish`, which returns whether it moved or removed the file, and forgets it.
    static bool remove(const std::string& name, const std::function<bool()>& finish);

    /// Calls `f` for a step that no name is noted for.
    static bool step(const std::function<bool()>& f);

    /// Removes all of them; from now on the others do not return.
    static void removeAll() noexcept;
};

}  // namespace TessaryMesh
