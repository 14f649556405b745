#pragma once

#include <TessaryMesh/AttributeArrays.h>

#include "base/Host.h"
#include "files/npz/NpyHeader.h"
#include "files/npz/ZipArchive.h"

#include <map>
#include <string>

namespace TessaryMesh {

/// The arrays of an .npz file by their names. Reading throws FileError where the file is broken, OutOfMemory,
/// Cancelled.
class NpzArchive {
public:
    NpzArchive(const Input& input, const std::string& path);

    bool isPacked() const { return m_zip.isPacked(); }
    bool has(const std::string& name) const { return m_files.count(name) > 0; }

    /// Of all arrays, in the order of the file.
    const std::vector<std::string>& names() const { return m_names; }

    /// A Ptr<Array<T>> of the element type of the host that the array's type and dimensions behind the first
    /// one make; empty where there is no such type.
    Any read(const std::string& name);

    /// A Ptr<Array<S>> of all numbers in C order, whatever the dimensions, which go to `shape`; empty where they
    /// are no numbers.
    Any readNumbers(const std::string& name, Shape& shape);

    /// The same where T is the type; throws FileError where there is no such array.
    template <class T>
    MutablePtr<Array<T>> require(const std::string& name)
    {
        const Any values = read(name);
        const auto* const typed = values.get<Ptr<Array<T>>>();
        if (!typed || !*typed)
            failToRequire(name, Internal::elementName<T>());
        return Pelon::toMutable(Ptr<Array<T>>(*typed));
    }

    /// "has no array NAME of WHAT".
    [[noreturn]] void failToRequire(const std::string& name, const std::string& what) const;

private:
    [[noreturn]] void fail(const std::string& name, const std::string& what) const;
    NpyHeader open(const std::string& name);
    template <class T>
    Any readNumbersAs(const std::string& name, const NpyHeader& header, std::size_t count);
    Any readTexts(const std::string& name, const NpyHeader& header);

    const std::string& m_path;
    ZipArchive m_zip;
    std::map<std::string, const ZipArchive::File*> m_files;
    std::vector<std::string> m_names;
};

}  // namespace TessaryMesh
