#include "view/PageArrays.h"

#include "base/ParallelBlocks.h"
#include "view/PageText.h"

#include <zlib.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <stdexcept>

namespace TessaryMesh {
namespace {

// Some ten milliseconds' work to compress; a multiple of the width of any number.
constexpr std::size_t kPart = std::size_t{1} << 19;

// Stands for what is not finite.
constexpr std::uint16_t kNotFinite = 0xFFFF;
constexpr double kSteps = 0xFFFE;

std::string shuffled(const char* bytes, std::size_t count, std::size_t width)
{
    std::string out(count, '\0');
    const std::size_t rows = count / width;
    for (std::size_t k = 0; k < width; ++k)
        for (std::size_t i = 0; i < rows; ++i)
            out[k * rows + i] = bytes[i * width + k];
    return out;
}

std::string deflated(const std::string& bytes)
{
    uLongf size = compressBound(bytes.size());
    std::string out(size, '\0');
    const int status = compress2(reinterpret_cast<Bytef*>(out.data()), &size,
                                 reinterpret_cast<const Bytef*>(bytes.data()), bytes.size(),
                                 Z_DEFAULT_COMPRESSION);
    if (status != Z_OK)
        throw std::bad_alloc();  // the one thing that can go wrong
    out.resize(size);
    return out;
}

struct Range {
    double least = std::numeric_limits<double>::infinity();
    double most = -std::numeric_limits<double>::infinity();

    double step() const { return least < most ? (most / kSteps - least / kSteps) : 0; }
};

template <class Real>
std::vector<Range> rangesOf(const Real* values, std::size_t count, std::size_t columns)
{
    std::vector<Range> ranges(columns);
    for (std::size_t i = 0; i < count; ++i) {
        Range& range = ranges[i % columns];
        if (std::isfinite(values[i])) {
            range.least = std::min(range.least, double{values[i]});
            range.most = std::max(range.most, double{values[i]});
        }
    }
    return ranges;
}

std::string scaleOf(const std::vector<Range>& ranges)
{
    std::vector<std::string> scale;
    scale.reserve(ranges.size());
    for (const Range& range : ranges)
        scale.push_back("[" + jsonNumber(range.least) + "," + jsonNumber(range.step()) + "]");
    return jsonList(scale);
}

}  // namespace

std::vector<std::string> PageArrays::compressed() const
{
    std::vector<std::string> parts(m_parts.size());
    forEachBlock(parts.size(), [&](std::size_t i) {
        const Part& part = m_parts[i];
        parts[i] = deflated(shuffled(part.bytes, part.count, part.width));
    });
    return parts;
}

std::string PageArrays::addTexts(const Array<String>& texts)
{
    std::string list = "[";
    for (const String& text : texts)
        list += (list.size() > 1 ? "," : "") + jsonText(text.view());
    m_kept.push_back(list + "]");
    return addBytes("texts", 1, m_kept.back().data(), m_kept.back().size());
}

std::string PageArrays::addReals(const float* values, std::size_t count, std::size_t columns)
{
    return m_quantise ? addRounded(values, count, columns) : addBytes("float32", 4, values, count);
}

std::string PageArrays::addReals(const double* values, std::size_t count, std::size_t columns)
{
    return m_quantise ? addRounded(values, count, columns) : addBytes("float64", 8, values, count);
}

template <class Real>
std::string PageArrays::addRounded(const Real* values, std::size_t count, std::size_t columns)
{
    const std::vector<Range> ranges = rangesOf(values, count, columns);
    std::string bytes(2 * count, '\0');
    for (std::size_t i = 0; i < count; ++i) {
        const Range& range = ranges[i % columns];
        const double step = range.step();
        const double steps = step > 0 ? (values[i] - range.least) / step : 0;
        const std::uint16_t code =
            std::isfinite(values[i])
                ? static_cast<std::uint16_t>(std::min(kSteps, std::floor(steps + 0.5)))
                : kNotFinite;
        bytes[2 * i] = static_cast<char>(code & 0xFF);
        bytes[2 * i + 1] = static_cast<char>(code >> 8);
    }
    m_kept.push_back(std::move(bytes));
    return addBytes("uint16", 2, m_kept.back().data(), count, scaleOf(ranges));
}

std::string PageArrays::addBytes(const std::string& type, std::size_t width, const void* bytes,
                                 std::size_t count, const std::string& scale)
{
    JsonObject array;
    array.addText("type", type).add("count", count).add("first", m_parts.size());
    const std::size_t size = width * count;
    for (std::size_t begin = 0; begin < size; begin += kPart)
        m_parts.push_back(
            {static_cast<const char*>(bytes) + begin, std::min(kPart, size - begin), width});
    m_byteCount += size;
    if (!scale.empty())
        array.add("scale", scale);
    return array.add("parts", (size + kPart - 1) / kPart).text();
}

}  // namespace TessaryMesh
