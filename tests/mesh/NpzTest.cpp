#include <gtest/gtest.h>
#include <mesh/files/OutputFile.h>
#include <mesh/files/npz/Npz.h>

#include <support/Files.h>

#include <cstring>

using namespace TessaryMesh;

namespace {

std::uint32_t numberAt(const std::string& text, std::size_t at)
{
    std::uint32_t value;
    std::memcpy(&value, text.data() + at, sizeof value);
    return value;
}

// Bit by bit, as the checksum is defined.
std::uint32_t checksum(const std::string& text)
{
    std::uint32_t crc = 0xFFFFFFFFu;
    for (const char c : text)
        for (int bit = 0; bit < 8; ++bit) {
            const bool odd = ((crc ^ static_cast<unsigned char>(c) >> bit) & 1) != 0;
            crc = odd ? crc >> 1 ^ 0xEDB88320u : crc >> 1;
        }
    return ~crc;
}

TEST(Npz, HoldsEachArrayAsAFileWithItsShapeAndChecksum)
{
    const TestSupport::Folder folder;
    OutputFile output(folder / "a.npz", false);
    const std::int32_t cells[] = {1, -2, 3, 4, 5, 6};
    const double size = 0.25;
    NpzWriter writer(output);
    writer.add("cells", {2, 3}, cells);
    writer.add("h", {}, &size);
    writer.finish();
    output.commit();
    const std::string text = TestSupport::contentOf(folder / "a.npz");

    // Local header of 30 bytes, name, then a .npy file: 128 bytes of header and the numbers.
    ASSERT_EQ(text.substr(0, 4), "PK\x03\x04");
    EXPECT_EQ(text.substr(30, 9), "cells.npy");
    const std::string npy = text.substr(39, 128 + 24);
    EXPECT_EQ(npy.substr(0, 10), std::string("\x93NUMPY\x01\0\x76\0", 10));
    EXPECT_EQ(npy.find("{'descr': '<i4', 'fortran_order': False, 'shape': (2, 3, ), }"), 10u);
    EXPECT_EQ(npy[127], '\n');
    EXPECT_EQ(std::memcmp(npy.data() + 128, cells, sizeof cells), 0);
    EXPECT_EQ(numberAt(text, 14), checksum(npy));
    EXPECT_EQ(numberAt(text, 18), npy.size());

    // The list of contents begins where the last 22 bytes say.
    const std::size_t end = text.size() - 22;
    ASSERT_EQ(text.substr(end, 4), "PK\x05\x06");
    const std::size_t list = numberAt(text, end + 16);
    EXPECT_EQ(list + numberAt(text, end + 12), end);
    EXPECT_EQ(text.substr(list, 4), "PK\x01\x02");
    EXPECT_EQ(text.substr(list + 46, 9), "cells.npy");
    EXPECT_EQ(numberAt(text, list + 42), 0u);
    EXPECT_EQ(text.substr(numberAt(text, list + 55 + 42) + 30, 5), "h.npy");
}

}  // namespace
