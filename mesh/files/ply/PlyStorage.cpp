#include "files/ply/PlyStorage.h"

#include "files/ply/PlyColours.h"

#include <type_traits>

namespace TessaryMesh::Ply {
namespace {

template <class T>
Storage makeStorage(std::size_t count, Form form)
{
    const auto array = makeMutable<Array<T>>(count);
    return {reinterpret_cast<unsigned char*>(array->data()), form, count,
            [array](Object& mesh, const String& name, const String& target) {
                Geometry::addDataGeoProperty<T>(mesh, name, target, array);
            }};
}

// Calls `f` with the scalars of a storage of float or double.
template <class F>
void withReals(const Storage& storage, const F& f)
{
    if (storage.form.scalar == Scalar::Float64)
        f(reinterpret_cast<double*>(storage.bytes));
    else
        f(reinterpret_cast<float*>(storage.bytes));
}

}  // namespace

Storage makeStorage(const std::string& type, std::size_t count)
{
    Storage storage;
    withElementType(type, [&](auto tag, Form form) {
        storage = makeStorage<typename decltype(tag)::type>(count, form);
    });
    return storage;
}

void normaliseBools(Storage& storage)
{
    for (std::size_t i = 0; i < storage.count; ++i)
        storage.bytes[i] = storage.bytes[i] != 0;
}

Storage coloursOf(const Storage& eightBit, const std::string& type)
{
    Storage storage = makeStorage(type, eightBit.count);
    withReals(storage, [&](auto* to) {
        using Real = std::remove_pointer_t<decltype(to)>;
        const std::size_t numbers = storage.count * storage.form.count;
        forEachRange(numbers, std::size_t{1} << 16, [&](std::size_t begin, std::size_t end) {
            for (std::size_t i = begin; i < end; ++i)
                to[i] = colourOf<Real>(eightBit.bytes[i]);
        });
    });
    return storage;
}

std::size_t differencesOf(const Storage& eightBit, const Storage& exact)
{
    const std::size_t numbers = eightBit.count * eightBit.form.count;
    if (!isFloat(exact.form.scalar) || exact.count * exact.form.count != numbers)
        return numbers;
    std::size_t count = 0;
    withReals(exact, [&](const auto* values) {
        for (std::size_t i = 0; i < numbers; ++i)
            count += eightBitOf(values[i]) != eightBit.bytes[i];
    });
    return count;
}

}  // namespace TessaryMesh::Ply
