#include "files/npz/NpzArchive.h"

#include "base/MessageText.h"
#include "files/FileErrors.h"
#include "files/npz/Texts.h"

#include <algorithm>
#include <cstring>

namespace TessaryMesh {
namespace {

constexpr std::string_view kEnding = ".npy";

/// Turns the bytes of each number round.
void swapBytes(char* bytes, std::size_t size, std::size_t count)
{
    for (std::size_t i = 0; size > 1 && i < count; ++i)
        std::reverse(bytes + i * size, bytes + (i + 1) * size);
}

/// From the order in which the first index runs fastest to the one in which the last one does.
void reorder(char* items, std::size_t itemSize, const Shape& shape)
{
    std::size_t count = 1;
    for (const std::size_t length : shape)
        count *= length;
    const std::string from(items, items + count * itemSize);
    for (std::size_t to = 0; to < count; ++to) {
        std::size_t rest = to, place = 0, stride = count;
        for (std::size_t k = shape.size(); k-- > 0; rest /= shape[k]) {
            stride /= shape[k];
            place += rest % shape[k] * stride;
        }
        std::memcpy(items + to * itemSize, from.data() + place * itemSize, itemSize);
    }
}

template <class T>
bool isTypeOf(const NpyHeader& header)
{
    using S = typename Scalars<T>::Type;
    if constexpr (std::is_same_v<T, String>)
        return false;
    else
        return header.kind == npyType<S>()[1] && header.itemSize == sizeof(S);
}

// The dimensions behind the first one.
Shape elementShape(const Shape& shape)
{
    return shape.empty() ? Shape() : Shape(shape.begin() + 1, shape.end());
}

}  // namespace

NpzArchive::NpzArchive(const Input& input, const std::string& path)
    : m_path(path), m_zip(input, path)
{
    for (const ZipArchive::File& file : m_zip.files()) {
        const std::string_view name = file.name;
        if (name.size() < kEnding.size() || name.substr(name.size() - kEnding.size()) != kEnding)
            continue;
        m_names.push_back(file.name.substr(0, name.size() - kEnding.size()));
        if (!m_files.emplace(m_names.back(), &file).second)
            fail(m_names.back(), "is there twice; write the file again");
    }
}

void NpzArchive::fail(const std::string& name, const std::string& what) const
{
    failToRead(FileError::Code::Malformed, m_path, "array " + quoted(name) + " " + what);
}

void NpzArchive::failToRequire(const std::string& name, const std::string& what) const
{
    failToRead(FileError::Code::Malformed, m_path,
               "the file has no array " + quoted(name) + " of type " + what +
                   "; a mesh needs it (see the page on mesh files)");
}

// Reads up to the values.
NpyHeader NpzArchive::open(const std::string& name)
{
    const auto found = m_files.find(name);
    if (found == m_files.end())
        failToRead(FileError::Code::Malformed, m_path,
                   "the file has no array " + quoted(name) + ", which its description names");
    const ZipArchive::File& file = *found->second;
    m_zip.open(file);
    char begin[12] = {};
    const std::size_t least = std::min<std::uint64_t>(sizeof begin, file.size);
    m_zip.read(begin, least);
    const std::size_t prefix = npyPrefixSize({begin, least});
    const std::size_t size = npyDictionarySize({begin, least});
    NpyHeader header;
    if (prefix == 0 || size < 2 || size > file.size - prefix)
        fail(name, "is no .npy file; write it with NumPy");
    std::string text(begin + prefix, begin + sizeof begin);
    text.resize(size);
    const std::size_t had = sizeof begin - prefix;
    m_zip.read(text.data() + had, size - had);
    if (!parseNpyDictionary(text, header))
        fail(name, "is no array of one type; write numbers or texts");
    const std::uint64_t left = file.size - prefix - size;
    const std::size_t count = header.count();
    const bool isTooMany = header.itemSize > 0 && count > left / header.itemSize;
    if (isTooMany || count * header.itemSize != left)
        fail(name, "has " + std::to_string(left) + " bytes for " + std::to_string(count) +
                       " items of type " + quoted(header.type) + "; write it again");
    return header;
}

// A bool is 0 or 1 for the compiler, whatever a file holds.
template <class T>
Any NpzArchive::readNumbersAs(const std::string& name, const NpyHeader& header, std::size_t count)
{
    using S = typename Scalars<T>::Type;
    if (count >= kNone)
        failToRead(FileError::Code::TooLarge, m_path,
                   "array " + quoted(name) +
                       " has more elements than 32-bit indices can name; split the mesh");
    const auto values = makeMutable<Array<T>>(count);
    auto* const bytes = reinterpret_cast<char*>(values->data());
    m_zip.read(bytes, count * sizeof(T));
    if (header.isSwapped)
        swapBytes(bytes, sizeof(S), count * Scalars<T>::kCount);
    if (header.isFortran && count > 0)
        reorder(bytes, sizeof(S), header.shape);
    if constexpr (std::is_same_v<S, bool>)
        for (std::size_t i = 0; i < count; ++i)
            bytes[i] = bytes[i] != 0 ? 1 : 0;
    m_zip.close();
    return Any(Ptr<Array<T>>(values));
}

Any NpzArchive::readTexts(const std::string& name, const NpyHeader& header)
{
    const std::size_t count = header.count(), size = header.itemSize;
    if (count >= kNone)
        fail(name, "has more texts than 32-bit indices can name; split the mesh");
    const auto texts = makeMutable<Array<String>>(count);
    std::vector<char> item(size);
    std::vector<char32_t> characters(size / sizeof(char32_t));
    for (String& text : *texts) {
        m_zip.read(item.data(), size);
        if (header.kind == 'S') {
            std::size_t length = size;
            while (length > 0 && item[length - 1] == '\0')
                --length;
            text = String(std::string(item.data(), length));
            continue;
        }
        if (header.isSwapped)
            swapBytes(item.data(), sizeof(char32_t), characters.size());
        if (!characters.empty())
            std::memcpy(characters.data(), item.data(), size);
        text = String(textOf(characters.data(), characters.size()));
    }
    m_zip.close();
    return Any(Ptr<Array<String>>(texts));
}

Any NpzArchive::read(const std::string& name)
{
    const NpyHeader header = open(name);
    if ((header.kind == 'U' || header.kind == 'S') && header.shape.size() <= 1)
        return readTexts(name, header);
    Any found;
    Korvane::anyElementType([&](auto tag, const char*) {
        using T = typename decltype(tag)::type;
        if constexpr (!std::is_same_v<T, String>) {
            if (!isTypeOf<T>(header) || shapeOfElement<T>() != elementShape(header.shape))
                return false;
            const std::size_t count = header.shape.empty() ? 1 : header.shape[0];
            found = readNumbersAs<T>(name, header, count);
            return true;
        } else {
            return false;
        }
    });
    return found;
}

Any NpzArchive::readNumbers(const std::string& name, Shape& shape)
{
    const NpyHeader header = open(name);
    shape = header.shape;
    Any found;
    Korvane::anyElementType([&](auto tag, const char*) {
        using T = typename decltype(tag)::type;
        if constexpr (std::is_arithmetic_v<T>) {
            if (!isTypeOf<T>(header))
                return false;
            found = readNumbersAs<T>(name, header, header.count());
            return true;
        } else {
            return false;
        }
    });
    return found;
}

}  // namespace TessaryMesh
