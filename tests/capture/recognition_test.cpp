#include <gtest/gtest.h>

#include <fstream>

#include "capture/client_capture.h"
#include "capture/client_layout.h"
#include "capture/compare_files.h"
#include "tests/capture/temp_folder.h"

namespace felthawk {
namespace {

namespace fs = std::filesystem;

TEST(CompareFiles, JoinsLinesBeforeComparingAndNamesTheFileThatCannotBeRead) {
    struct Case {
        std::string first, second;
        bool identical;
    } cases[] = {
        {"ab\r\ncd", "ab\ncd", true},
        {"ab\rcd", "abcd", true},
        {"", "\n\r\n", true},
        {"ab", "abc", false},
        {std::string("a\0b", 3), std::string("a\0c", 3), false},
        {std::string("a\0b", 3), "ab", false},
    };
    TempFolder folder;
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.first) + " " + testing::PrintToString(c.second));
        std::ofstream(folder.path() / "1", std::ios::binary) << c.first;
        std::ofstream(folder.path() / "2", std::ios::binary) << c.second;
        const FileComparison result = compare_files(folder.path() / "1", folder.path() / "2");
        EXPECT_EQ(result.identical, c.identical);
        EXPECT_TRUE(result.unreadable.empty());
    }
    const fs::path here = folder.path() / "1";
    const fs::path gone = folder.path() / "gone";
    EXPECT_EQ(compare_files(gone, here).unreadable, gone);
    EXPECT_EQ(compare_files(here, gone).unreadable, gone);
    EXPECT_EQ(compare_files(here, folder.path()).unreadable, folder.path());  // a folder
    EXPECT_FALSE(compare_files(here, gone).identical);
}

TEST(ClientLayout, CropPointsAndFileNames) {
    struct Crop {
        int cell, previousSeat;
        PixelPoint at;
    } crops[] = {
        {0, 9, {262, 28}},  {1, 9, {282, 28}},  {0, 2, {712, 183}},
        {2, 9, {256, 175}}, {6, 5, {492, 175}}, {0, 12, {474, 29}},
    };
    for (const Crop& c : crops) {
        EXPECT_EQ(CropOrigin(c.cell, c.previousSeat), c.at) << c.cell << " " << c.previousSeat;
    }
    const char* files[] = {"t6.icc", "t7.icc", "t1.icc", "t2.icc", "t3.icc", "t4.icc", "t5.icc"};
    for (int cell = 0; cell < kSlotCount; ++cell) EXPECT_EQ(CaptureFileName(cell), files[cell]);
    EXPECT_EQ(PreviousSeat(0), 9);
    EXPECT_EQ(PreviousSeat(3), 2);
}

TEST(WindowPatterns, StarAndQuestionMark) {
    struct Case {
        const char* text;
        const char* pattern;
        bool matches;
    } cases[] = {
        {"", "*", true},        {"abc", "a?c", true}, {"aXbYc", "a*b*c", true},
        {"abcbc", "*bc", true}, {"abc", "ab", false}, {"ab", "a?c", false},
        {"ABC", "abc", false},  {"", "?", false},     {"abd", "a*c", false},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(LikePattern(c.text, c.pattern), c.matches) << c.text << " ~ " << c.pattern;
    }
}

TEST(PictureBox, TheCropSitsTopLeftOverTheFixedBackground) {
    QImage shot(40, 200, QImage::Format_RGB32);
    shot.fill(qRgb(10, 20, 30));
    shot.setPixel(30, 190, qRgb(1, 2, 3));
    // A hole card at seat 7 crops from (38, 179): two columns and 21 rows
    // lie on this screenshot, the rest of the box keeps its background.
    const IconPixels part = IconPixelsOf(CropToPictureBox(shot, 1, 7));
    EXPECT_EQ(part[0], 0x0A141Eu);
    EXPECT_EQ(part[1], 0x0A141Eu);
    EXPECT_EQ(part[2], kPictureBoxBackground);                           // x 40 is off the shot
    EXPECT_EQ(part[21 * kIconSide], kPictureBoxBackground);              // y 200 is off
    const IconPixels hole = IconPixelsOf(CropToPictureBox(shot, 0, 7));  // from (18, 179)
    EXPECT_EQ(hole[11 * kIconSide + 12], 0x010203u);
    EXPECT_EQ(hole[15], kPictureBoxBackground);  // right of the crop
}

}  // namespace
}  // namespace felthawk
