#include "capture/icon_writer.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

#include "tests/capture/temp_folder.h"

namespace felthawk {
namespace {

namespace fs = std::filesystem;

uint32_t U16(const std::vector<uint8_t>& b, std::size_t at) {
    return b[at] | b[at + 1] << 8;
}
uint32_t U32(const std::vector<uint8_t>& b, std::size_t at) {
    return U16(b, at) | U16(b, at + 2) << 16;
}

IconPixels Filled(uint32_t colour) {
    IconPixels pixels;
    pixels.fill(colour);
    return pixels;
}

std::vector<uint8_t> ReadFile(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

struct HeaderCase {
    int depth;
    std::size_t fileSize;
    uint8_t colourCount;
    uint16_t planes;
    uint16_t bitCount;
    uint32_t bytesInResource;
    uint32_t sizeImage;
    uint32_t coloursUsed;
};

TEST(IconWriter, HeadersAtEveryDepthAreWrittenWithTheirOddFields) {
    const HeaderCase cases[] = {
        {1, 326, 0, 5, 7, 304, 128, 0},
        {4, 766, 16, 0, 0, 744, 2, 0},
        {8, 2238, 0, 0, 0, 2216, 1152, 256},
        {24, 3266, 0, 0, 0, 3244, 1153, 1},
    };
    for (const HeaderCase& c : cases) {
        SCOPED_TRACE(c.depth);
        const std::vector<uint8_t> file = EncodeIcon(Filled(0x336699), 0x000000, c.depth);
        ASSERT_EQ(file.size(), c.fileSize);
        EXPECT_EQ(IconFileSize(c.depth), c.fileSize);
        EXPECT_EQ(U16(file, 0), 0u);
        EXPECT_EQ(U16(file, 2), 1u);
        EXPECT_EQ(U16(file, 4), 1u);
        EXPECT_EQ(file[6], 32);
        EXPECT_EQ(file[7], 32);
        EXPECT_EQ(file[8], c.colourCount);
        EXPECT_EQ(file[9], 0);
        EXPECT_EQ(U16(file, 10), c.planes);
        EXPECT_EQ(U16(file, 12), c.bitCount);
        EXPECT_EQ(U32(file, 14), c.bytesInResource);
        EXPECT_EQ(U32(file, 18), 22u);
        EXPECT_EQ(U32(file, 22), 40u);
        EXPECT_EQ(U32(file, 26), 32u);
        EXPECT_EQ(U32(file, 30), 64u);
        EXPECT_EQ(U16(file, 34), 1u);
        EXPECT_EQ(U16(file, 36), static_cast<uint32_t>(c.depth));
        EXPECT_EQ(U32(file, 38), 0u);
        EXPECT_EQ(U32(file, 42), c.sizeImage);
        EXPECT_EQ(U32(file, 46), 0u);
        EXPECT_EQ(U32(file, 50), 0u);
        EXPECT_EQ(U32(file, 54), c.coloursUsed);
        EXPECT_EQ(U32(file, 58), 0u);
    }
}

TEST(IconWriter, ColourTablesAtTheirPlaceAndDepth24HasFourBlanks) {
    const std::vector<uint8_t> one = EncodeIcon(Filled(0), 1, 1);
    EXPECT_EQ(std::vector<uint8_t>(one.begin() + 62, one.begin() + 70),
              (std::vector<uint8_t>{0, 0, 0, 0, 255, 255, 255, 0}));
    const std::vector<uint8_t> four = EncodeIcon(Filled(0), 1, 4);
    // Entry 9 is bright red, stored blue, green, red, 0.
    EXPECT_EQ(std::vector<uint8_t>(four.begin() + 62 + 36, four.begin() + 62 + 40),
              (std::vector<uint8_t>{0, 0, 255, 0}));
    const std::vector<uint8_t> eight = EncodeIcon(Filled(0), 1, 8);
    EXPECT_EQ(U32(eight, 62 + 4 * 255), 0x00FFFFFFu);
    const std::vector<uint8_t> deep = EncodeIcon(Filled(0), 1, 24);
    EXPECT_EQ(U32(deep, 62), 0x20202020u);
}

struct PixelCase {
    int depth;
    int x, y;
    uint32_t colour;
    std::size_t imageByte;  // from the start of the image bits
    std::vector<uint8_t> expected;
};

TEST(IconWriter, PixelsLandBottomRowFirstAndLeftmostInTheHighBits) {
    const std::size_t table1 = 62 + 8, table4 = 62 + 64, table8 = 62 + 1024, table24 = 62 + 4;
    const PixelCase cases[] = {
        {1, 0, 31, 0xFFFFFF, table1 + 0, {0x80}},
        {1, 31, 0, 0xFFFFFF, table1 + 127, {0x01}},
        {1, 9, 30, 0xC0C0C0, table1 + 4 + 1, {0x40}},
        {1, 0, 31, 0x7F7F7F, table1 + 0, {0x00}},  // just below the threshold: black
        {1, 0, 31, 0x00FF00, table1 + 0, {0x80}},  // green is bright enough for white
        {4, 1, 31, 0xFF0000, table4 + 0, {0x09}},
        {4, 0, 31, 0xC8C8C8, table4 + 0, {0x70}},   // nearest is silver, entry 7
        {4, 0, 30, 0x646464, table4 + 16, {0x80}},  // nearest is grey, entry 8
        {8, 0, 31, 0x0000FF, table8 + 0, {0x03}},
        {8, 2, 31, 0xFFFFFF, table8 + 2, {0xFF}},
        {8, 0, 0, 0x924900, table8 + 31 * 32, {0x88}},  // levels 4, 2, 0
        {24, 0, 31, 0x123456, table24 + 0, {0x56, 0x34, 0x12}},
        {24, 31, 0, 0xABCDEF, table24 + 31 * 96 + 93, {0xEF, 0xCD, 0xAB}},
    };
    for (const PixelCase& c : cases) {
        SCOPED_TRACE(testing::Message() << "depth " << c.depth << " at " << c.x << "," << c.y);
        IconPixels pixels = Filled(0);
        pixels[c.y * kIconSide + c.x] = c.colour;
        const std::vector<uint8_t> file = EncodeIcon(pixels, 0x010203, c.depth);
        for (std::size_t i = 0; i < c.expected.size(); ++i) {
            EXPECT_EQ(file[c.imageByte + i], c.expected[i]) << "byte " << i;
        }
        // Nothing is transparent.
        const std::size_t maskStart = file.size() - 128;
        for (std::size_t i = maskStart; i < file.size(); ++i) ASSERT_EQ(file[i], 0);
    }
}

TEST(IconWriter, OneColourPictureTransparentAtItsCornerIsAllMaskAndBlack) {
    for (int depth : {1, 4, 8, 24}) {
        SCOPED_TRACE(depth);
        const std::vector<uint8_t> file = EncodeIcon(Filled(0xFFFFFF), 0xFFFFFF, depth);
        const std::size_t maskStart = file.size() - 128;
        const std::size_t bitsStart = maskStart - (depth == 24 ? 3072 : 32 * 32 * depth / 8);
        for (std::size_t i = bitsStart; i < maskStart; ++i) ASSERT_EQ(file[i], 0) << i;
        for (std::size_t i = maskStart; i < file.size(); ++i) ASSERT_EQ(file[i], 0xFF) << i;
    }
}

TEST(IconWriter, MaskMarksExactlyTheTransparentColour) {
    IconPixels pixels = Filled(0x202020);
    pixels[31 * kIconSide + 0] = 0x202021;    // one step away is not transparent
    pixels[0 * kIconSide + 31] = 0xFF202021;  // the top byte is no part of the colour
    const std::vector<uint8_t> file = EncodeIcon(pixels, 0x202020, 1);
    const std::size_t mask = 326 - 128;
    EXPECT_EQ(file[mask + 0], 0x7F);    // bottom row, leftmost pixel kept
    EXPECT_EQ(file[mask + 127], 0xFE);  // top row, rightmost pixel kept
    EXPECT_EQ(file[mask + 64], 0xFF);
}

TEST(IconWriter, UnknownDepthsWriteNothingAndLeaveFilesAlone) {
    TempFolder folder;
    const fs::path path = folder.path() / "old.ico";
    std::ofstream(path) << "older contents";
    for (int depth : {0, 2, 3, 16, 32}) {
        SCOPED_TRACE(depth);
        EXPECT_TRUE(EncodeIcon(Filled(0), 0, depth).empty());
        const IconWriteResult result = SavePicToIcon(Filled(0), 0, path, depth);
        EXPECT_FALSE(result.written);
        EXPECT_TRUE(result.error.empty());
        EXPECT_EQ(fs::file_size(path), 14u);
        SavePicToIcon(Filled(0), 0, folder.path() / "new.ico", depth);
        EXPECT_FALSE(fs::exists(folder.path() / "new.ico"));
    }
}

TEST(IconWriter, Depth24KeepsTheTailOfALongerFileOthersReplaceIt) {
    TempFolder folder;
    const std::vector<uint8_t> older(5000, 0xAB);
    for (int depth : {1, 4, 8, 24}) {
        SCOPED_TRACE(depth);
        const fs::path path = folder.path() / ("icon" + std::to_string(depth) + ".ico");
        std::ofstream(path, std::ios::binary)
            .write(reinterpret_cast<const char*>(older.data()), older.size());
        ASSERT_TRUE(SavePicToIcon(Filled(0x445566), 0, path, depth).written);
        const std::vector<uint8_t> file = ReadFile(path);
        const std::vector<uint8_t> encoded = EncodeIcon(Filled(0x445566), 0, depth);
        ASSERT_EQ(file.size(), depth == 24 ? older.size() : encoded.size());
        EXPECT_TRUE(std::equal(encoded.begin(), encoded.end(), file.begin()));
        if (depth == 24) {
            EXPECT_EQ(file.back(), 0xAB);
        }
    }
}

TEST(IconWriter, AFileThatCannotBeOpenedIsReportedByName) {
    TempFolder folder;
    const fs::path path = folder.path() / "missing-folder" / "t1.icc";
    const IconWriteResult result = SavePicToIcon(Filled(0), 0, path, 1);
    EXPECT_FALSE(result.written);
    EXPECT_NE(result.error.find(path.string()), std::string::npos);
}

}  // namespace
}  // namespace felthawk
