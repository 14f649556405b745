// Prints the bits of a few solves: of the prepared pairs, of a cold and a warm start, and of sides and
// pushes that were set by hand.
#include <Tessary/Solver.h>

#include <cstdio>
#include <cstring>

using Tessary::Multicollider;
using Tessary::uint;
using Side = Multicollider::Side;

static uint bitsOf(float value)
{
    uint bits;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

// In [-1, 1), exact under any flags.
static float unit()
{
    static uint state = 1;
    state = state * 1664525 + 1013904223;
    return static_cast<float>(static_cast<int>(state) >> 8) * 0x1p-23f;
}

static void print(const char* name, const Multicollider& s)
{
    std::printf("%s\n", name);
    for (const auto& d : s.displacements)
        std::printf("%08x %08x %08x\n", bitsOf(d.x), bitsOf(d.y), bitsOf(d.z));
    for (std::size_t k = 0; k < s.pairLambdas.size(); ++k)
        std::printf("%08x %08x\n", bitsOf(s.pairScales[k]), bitsOf(s.pairLambdas[k]));
}

int main()
{
    Multicollider s;
    for (int g = 0; g < 4; ++g) {
        s.addCollider(g == 3 ? 0.0f : 1 + unit(), {unit(), unit(), unit()});
        s.addContact({unit(), unit(), unit()});
        s.addContact({unit(), unit(), unit()});
    }
    s.maxIterations = 500;
    s.preparePairs(Side::Ahead, 0.7f);
    print("prepared", s);
    s.setSide(0, Side::Behind);
    s.setSide(5, Side::Behind);
    s.ignore(7);
    std::printf("%d\n", s.solve());
    print("cold", s);
    for (auto& free : s.freeDisplacements)
        free = {unit(), unit(), unit()};
    std::printf("%d\n", s.solve());
    print("warm", s);

    const uint infinity = 0x7F800000, nan = 0xFFC00000;
    std::memcpy(&s.pairLambdas[2], &infinity, sizeof infinity);
    std::memcpy(&s.pairLambdas[3], &nan, sizeof nan);
    s.maxIterations = 0;
    std::printf("%d\n", s.solve());
    print("pushes that are not finite", s);
    s.withdrawPushes();
    print("withdrawn", s);
}
