#include "files/stl/PointWelder.h"

#include <cstring>
#include <random>

namespace TessaryMesh {
namespace {

std::uint64_t mix(std::uint64_t a, std::uint64_t b)
{
    std::uint64_t x = (a ^ b) * 0x9E3779B97F4A7C15u;
    x = (x ^ (x >> 32)) * 0xD6E8FEB86659FD93u;
    return x ^ (x >> 32);
}

}  // namespace

PointWelder::PointWelder() : m_slots(1024, kNone)
{
    std::random_device device;
    m_key = (std::uint64_t{device()} << 32) ^ device();
}

uint PointWelder::add(const float3& point)
{
    const std::size_t slot = slotOf(point);
    if (m_slots[slot] != kNone)
        return m_slots[slot];
    const auto number = static_cast<uint>(m_points.size());
    m_slots[slot] = number;
    m_points.push_back(point);
    if (2 * m_points.size() > m_slots.size())
        grow();
    return number;
}

// Where the point is, or would be.
std::size_t PointWelder::slotOf(const float3& point) const
{
    std::uint32_t bits[3];
    std::memcpy(bits, &point, sizeof(bits));
    const std::uint64_t hash =
        mix(mix(m_key, bits[0] | std::uint64_t{bits[1]} << 32) + m_key, bits[2]);
    const std::size_t mask = m_slots.size() - 1;
    std::size_t slot = hash & mask;
    while (m_slots[slot] != kNone &&
           std::memcmp(&m_points[m_slots[slot]], &point, sizeof(point)) != 0)
        slot = (slot + 1) & mask;
    return slot;
}

void PointWelder::grow()
{
    m_slots = Array<uint>(2 * m_slots.size(), kNone);
    for (std::size_t i = 0; i < m_points.size(); ++i)
        m_slots[slotOf(m_points[i])] = static_cast<uint>(i);
}

}  // namespace TessaryMesh
