#include "capture/icon_writer.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

#include "tests/capture/temp_folder.h"

namespace felthawk {
namespace {

namespace fs = std::filesystem;
using Bytes = std::vector<uint8_t>;

IconPixels Filled(uint32_t colour) {
    IconPixels pixels;
    pixels.fill(colour);
    return pixels;
}

Bytes Slice(const Bytes& file, std::size_t at, std::size_t count) {
    return {file.begin() + at, file.begin() + at + count};
}

TEST(IconWriter, HeadersAtEveryDepthAreWrittenWithTheirOddFields) {
    struct Case {
        int depth;
        std::size_t fileSize;
        uint32_t colourCount, planes, bitCount, bytesInResource, sizeImage, coloursUsed;
    } cases[] = {
        {1, 326, 0, 5, 7, 304, 128, 0},
        {4, 766, 16, 0, 0, 744, 2, 0},
        {8, 2238, 0, 0, 0, 2216, 1152, 256},
        {24, 3266, 0, 0, 0, 3244, 1153, 1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.depth);
        Bytes header;  // directory, its one entry and the info header
        auto put = [&](uint32_t value, int size) {
            for (int i = 0; i < size; ++i) header.push_back((value >> (8 * i)) & 0xFF);
        };
        put(0, 2), put(1, 2), put(1, 2), put(32, 1), put(32, 1), put(c.colourCount, 1);
        put(0, 1), put(c.planes, 2), put(c.bitCount, 2), put(c.bytesInResource, 4), put(22, 4);
        put(40, 4), put(32, 4), put(64, 4), put(1, 2), put(c.depth, 2), put(0, 4);
        put(c.sizeImage, 4), put(0, 4), put(0, 4), put(c.coloursUsed, 4), put(0, 4);
        const Bytes file = EncodeIcon(Filled(0x336699), 0x000000, c.depth);
        ASSERT_EQ(file.size(), c.fileSize);
        EXPECT_EQ(IconFileSize(c.depth), c.fileSize);
        EXPECT_EQ(Slice(file, 0, header.size()), header);
    }
}

TEST(IconWriter, ColourTablesAndPixelsLandBottomRowFirstLeftmostInTheHighBits) {
    const std::size_t table1 = 62 + 8, table4 = 62 + 64, table8 = 62 + 1024, table24 = 62 + 4;
    struct Case {
        int depth;
        int x, y;
        uint32_t colour;
        std::size_t at;  // from the start of the file
        Bytes expected;
    } cases[] = {
        {1, 0, 0, 0, 62, {0, 0, 0, 0, 255, 255, 255, 0}},
        {4, 0, 0, 0, 62 + 36, {0, 0, 255, 0}},  // entry 9, bright red
        {8, 0, 0, 0, 62 + 4 * 255, {255, 255, 255, 0}},
        {24, 0, 0, 0, 62, {0x20, 0x20, 0x20, 0x20}},  // four blanks
        // One pixel set.
        {1, 0, 31, 0xFFFFFF, table1 + 0, {0x80}},
        {1, 31, 0, 0xFFFFFF, table1 + 127, {0x01}},
        {1, 9, 30, 0xC0C0C0, table1 + 4 + 1, {0x40}},
        {1, 0, 31, 0x7F7F7F, table1 + 0, {0x00}},  // just below white's threshold
        {1, 0, 31, 0x00FF00, table1 + 0, {0x80}},  // green is bright enough for white
        {4, 1, 31, 0xFF0000, table4 + 0, {0x09}},
        {4, 0, 31, 0xC8C8C8, table4 + 0, {0x70}},   // nearest is silver, entry 7
        {4, 0, 30, 0x646464, table4 + 16, {0x80}},  // nearest is grey, entry 8
        {8, 0, 31, 0x0000FF, table8 + 0, {0x03}},
        {8, 0, 0, 0x924900, table8 + 31 * 32, {0x88}},  // levels 4, 2, 0
        {24, 0, 31, 0x123456, table24 + 0, {0x56, 0x34, 0x12}},
        {24, 31, 0, 0xABCDEF, table24 + 31 * 96 + 93, {0xEF, 0xCD, 0xAB}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << "depth " << c.depth << " at " << c.at);
        IconPixels pixels = Filled(0);
        pixels[c.y * kIconSide + c.x] = c.colour;
        const Bytes file = EncodeIcon(pixels, 0x010203, c.depth);
        EXPECT_EQ(Slice(file, c.at, c.expected.size()), c.expected);
        EXPECT_EQ(Slice(file, file.size() - 128, 128), Bytes(128, 0));  // nothing transparent
    }
}

TEST(IconWriter, TheMaskMarksExactlyTheTransparentColourAndItIsBlackInTheImage) {
    for (int depth : {1, 4, 8, 24}) {
        SCOPED_TRACE(depth);
        const Bytes file = EncodeIcon(Filled(0xFFFFFF), 0xFFFFFF, depth);
        const std::size_t bits = depth == 24 ? 3072 : 32 * 32 * depth / 8;
        EXPECT_EQ(Slice(file, file.size() - 128 - bits, bits), Bytes(bits, 0));
        EXPECT_EQ(Slice(file, file.size() - 128, 128), Bytes(128, 0xFF));
    }
    IconPixels pixels = Filled(0x202020);
    pixels[31 * kIconSide + 0] = 0x202021;    // one step away is not transparent
    pixels[0 * kIconSide + 31] = 0xFF202021;  // the top byte is no part of the colour
    const Bytes file = EncodeIcon(pixels, 0x202020, 1);
    EXPECT_EQ(file[198 + 0], 0x7F);    // bottom row, leftmost pixel kept
    EXPECT_EQ(file[198 + 127], 0xFE);  // top row, rightmost pixel kept
    EXPECT_EQ(file[198 + 64], 0xFF);
}

TEST(IconWriter, SavingDepth24KeepsALongerTailOthersReplaceUnknownDepthsWriteNothing) {
    TempFolder folder;
    const Bytes older(5000, 0xAB);
    for (int depth : {1, 24, 2}) {
        SCOPED_TRACE(depth);
        const bool known = depth != 2;
        const fs::path path = folder.path() / ("icon" + std::to_string(depth) + ".ico");
        std::ofstream(path, std::ios::binary)
            .write(reinterpret_cast<const char*>(older.data()), older.size());
        const IconWriteResult result = SavePicToIcon(Filled(0x445566), 0, path, depth);
        EXPECT_EQ(result.written, known);
        EXPECT_TRUE(result.error.empty());
        std::ifstream in(path, std::ios::binary);
        const Bytes file{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
        Bytes expected = EncodeIcon(Filled(0x445566), 0, depth);
        EXPECT_EQ(expected.empty(), !known);
        if (depth == 24 || !known) {
            expected.insert(expected.end(), older.begin() + expected.size(), older.end());
        }
        EXPECT_EQ(file, expected);
        const fs::path fresh = folder.path() / ("new" + std::to_string(depth) + ".ico");
        SavePicToIcon(Filled(0), 0, fresh, depth);
        EXPECT_EQ(fs::exists(fresh), known);
    }
    const fs::path unopenable = folder.path() / "missing-folder" / "t1.icc";
    const IconWriteResult result = SavePicToIcon(Filled(0), 0, unopenable, 1);
    EXPECT_FALSE(result.written);
    EXPECT_NE(result.error.find(unopenable.string()), std::string::npos);
}

}  // namespace
}  // namespace felthawk
