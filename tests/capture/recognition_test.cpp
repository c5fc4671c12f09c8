#include <gtest/gtest.h>

#include <fstream>
#include <set>

#include "capture/client_capture.h"
#include "capture/client_layout.h"
#include "capture/compare_files.h"
#include "tests/capture/temp_folder.h"

namespace felthawk {
namespace {

namespace fs = std::filesystem;

TEST(CompareFiles, JoinsLinesBeforeComparing) {
    struct Case {
        std::string first, second;
        bool identical;
    } cases[] = {
        {"abc", "abc", true},
        {"abc", "abd", false},
        {"ab\r\ncd", "ab\ncd", true},
        {"ab\rcd", "abcd", true},
        {"abcd\n", "abcd", true},
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
}

TEST(CompareFiles, NamesTheFileThatCannotBeRead) {
    TempFolder folder;
    const fs::path here = folder.path() / "here";
    const fs::path gone = folder.path() / "gone";
    std::ofstream(here) << "x";
    EXPECT_EQ(compare_files(gone, here).unreadable, gone);
    EXPECT_EQ(compare_files(here, gone).unreadable, gone);
    EXPECT_EQ(compare_files(here, folder.path()).unreadable, folder.path());  // a folder
    EXPECT_FALSE(compare_files(here, gone).identical);
}

TEST(ClientLayout, CropPointsFileNamesAndTemplates) {
    struct Crop {
        int cell, previousSeat;
        PixelPoint at;
    } crops[] = {
        {0, 9, {262, 28}},  {1, 9, {282, 28}},  {0, 2, {712, 183}}, {1, 4, {473, 374}},
        {2, 9, {256, 175}}, {4, 0, {374, 175}}, {6, 5, {492, 175}}, {0, 12, {474, 29}},
    };
    for (const Crop& c : crops) {
        EXPECT_EQ(CropOrigin(c.cell, c.previousSeat), c.at) << c.cell << " " << c.previousSeat;
    }
    const char* files[] = {"t6.icc", "t7.icc", "t1.icc", "t2.icc", "t3.icc", "t4.icc", "t5.icc"};
    for (int cell = 0; cell < kSlotCount; ++cell) {
        EXPECT_EQ(CaptureFileName(cell), files[cell]);
        EXPECT_EQ(CellFromSlotName(SlotName(cell)), cell);
    }
    EXPECT_EQ(CellFromSlotName("hole3"), -1);
    EXPECT_EQ(PreviousSeat(0), 9);
    EXPECT_EQ(PreviousSeat(3), 2);
    EXPECT_EQ(TemplateCard(0), "2D");
    EXPECT_EQ(TemplateCard(12), "AD");
    EXPECT_EQ(TemplateCard(13), "2C");
    EXPECT_EQ(TemplateCard(51), "AS");
    EXPECT_EQ(TemplateFileName("TS"), "T S.ico");
}

TEST(WindowPatterns, StarAndQuestionMark) {
    struct Case {
        const char* text;
        const char* pattern;
        bool matches;
    } cases[] = {
        {"", "*", true},          {"anything", "*", true}, {"abc", "a?c", true},
        {"abc", "a*", true},      {"abc", "*c", true},     {"abc", "*b*", true},
        {"aXbYc", "a*b*c", true}, {"abcbc", "*bc", true},  {"abc", "ab", false},
        {"ab", "a?c", false},     {"ABC", "abc", false},   {"", "?", false},
        {"a", "?", true},         {"abd", "a*c", false},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(LikePattern(c.text, c.pattern), c.matches) << c.text << " ~ " << c.pattern;
    }
}

TEST(WindowPatterns, TheClientIsNamedHoldEmInAnyCase) {
    struct Case {
        const char* title;
        bool client;
    } cases[] = {
        {"Texas Hold'em - Table 12", true},
        {"HOLD'EM", true},
        {"hOLD'eM no limit", true},
        {"Texas Holdem", false},
        {"Hold em", false},
        {"Hold\xe2\x80\x99"
         "em",
         false},
        {"", false},
        {"Hold'e", false},
    };
    for (const Case& c : cases) EXPECT_EQ(TitleNamesClient(c.title), c.client) << c.title;
}

TEST(ShippedTemplates, FiftyTwoFilesEveryOneDifferentAsRecognitionSeesThem) {
    std::set<std::string> seen;
    for (int i = 0; i < kTemplateCount; ++i) {
        const fs::path file = fs::path(FELTHAWK_TEST_ICONS_DIR) / TemplateFileName(TemplateCard(i));
        ASSERT_EQ(fs::file_size(file), 326u) << file;
        const std::optional<std::string> text = ReadJoinedLines(file);
        ASSERT_TRUE(text) << file;
        EXPECT_TRUE(seen.insert(*text).second) << file << " equals another template";
    }
}

TEST(PictureBox, TheCropSitsTopLeftOverTheFixedBackground) {
    QImage shot(40, 200, QImage::Format_RGB32);
    shot.fill(qRgb(10, 20, 30));
    shot.setPixel(30, 190, qRgb(1, 2, 3));
    // Board card 0 reads at (256, 175): this screenshot is too small, so the
    // box keeps its background; a hole card at seat 7 (17, 183) fits half.
    const QImage outside = CropToPictureBox(shot, 2, 9);
    EXPECT_EQ(outside.size(), QSize(kPictureBoxWidth, kPictureBoxHeight));
    EXPECT_EQ(outside.pixel(0, 0) & 0xFFFFFF, kPictureBoxBackground);
    const QImage part = CropToPictureBox(shot, 1, 7);  // origin (38, 179)
    EXPECT_EQ(part.pixel(0, 0), qRgb(10, 20, 30));
    EXPECT_EQ(part.pixel(1, 0), qRgb(10, 20, 30));
    EXPECT_EQ(part.pixel(2, 0) & 0xFFFFFF, kPictureBoxBackground);   // x 40 is off the shot
    EXPECT_EQ(part.pixel(0, 21) & 0xFFFFFF, kPictureBoxBackground);  // y 200 is off
    EXPECT_EQ(part.pixel(15, 0) & 0xFFFFFF, kPictureBoxBackground);  // right of the crop
    const QImage hole = CropToPictureBox(shot, 0, 7);                // origin (18, 179)
    EXPECT_EQ(hole.pixel(12, 11), qRgb(1, 2, 3));
    const IconPixels pixels = IconPixelsOf(hole);
    EXPECT_EQ(pixels[11 * kIconSide + 12], 0x010203u);
}

}  // namespace
}  // namespace felthawk
