#include <gtest/gtest.h>

#include <fstream>

#include "capture/client_capture.h"
#include "capture/client_layout.h"
#include "capture/compare_files.h"
#include "capture/content_grab.h"
#include "capture/template_set.h"
#include "tests/capture/temp_folder.h"

namespace felthawk {
namespace {

namespace fs = std::filesystem;

TEST(JoinedLines, LineEndsDoNotCountAndAFileThatCannotBeReadGivesNothing) {
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
        const auto first = ReadJoinedLines(folder.path() / "1");
        ASSERT_TRUE(first && ReadJoinedLines(folder.path() / "2"));
        EXPECT_EQ(*first == *ReadJoinedLines(folder.path() / "2"), c.identical);
    }
    EXPECT_EQ(ReadJoinedLines(folder.path() / "gone"), std::nullopt);
    EXPECT_EQ(ReadJoinedLines(folder.path()), std::nullopt);  // a folder
}

TEST(TemplateSet, KeepsTheTemplatesAndReadsAgainWhatChanged) {
    TempFolder folder, other;
    for (const auto& entry : fs::directory_iterator(FELTHAWK_TEST_ICONS_DIR)) {
        fs::copy_file(entry.path(), folder.path() / entry.path().filename());
    }
    const auto joined = [](const char* name) {
        return *ReadJoinedLines(fs::path(FELTHAWK_TEST_ICONS_DIR) / name);
    };
    TemplateSet set;
    fs::path unreadable;
    ASSERT_TRUE(set.Refresh(folder.path(), unreadable));
    EXPECT_EQ(set.Match(joined("A S.ico")), "AS");
    EXPECT_EQ(set.Match(joined("2 D.ico") + "x"), "");

    // A template replaced in place: the ace now looks like the king, whose
    // own template comes first in the walk.
    fs::copy_file(folder.path() / "K S.ico", folder.path() / "A S.ico",
                  fs::copy_options::overwrite_existing);
    ASSERT_TRUE(set.Refresh(folder.path(), unreadable));
    EXPECT_EQ(set.Match(joined("A S.ico")), "");
    EXPECT_EQ(set.Match(joined("K S.ico")), "KS");

    fs::remove(folder.path() / "3 H.ico");
    fs::remove(folder.path() / "2 C.ico");
    EXPECT_FALSE(set.Refresh(folder.path(), unreadable));
    EXPECT_EQ(unreadable, folder.path() / "2 C.ico");  // the first in walk order
    EXPECT_FALSE(set.Refresh(other.path(), unreadable));
    EXPECT_EQ(unreadable, other.path() / "2 D.ico");
}

TEST(ContentGrab, PixelsOfEachLayoutAndWhatLiesOffTheScreen) {
    struct Case {
        const char* what;
        PixelFormat format;
        std::vector<uint8_t> pixel;
        uint32_t colour;
    } cases[] = {
        {"24 bits", {}, {0x33, 0x22, 0x11, 0x00}, 0x112233},
        {"24 bits, most significant first", {4, false}, {0x00, 0x11, 0x22, 0x33}, 0x112233},
        {"16 bits white", {2, true, 0xF800, 0x07E0, 0x001F}, {0xFF, 0xFF, 0, 0}, 0xFFFFFF},
        {"16 bits red", {2, true, 0xF800, 0x07E0, 0x001F}, {0x00, 0xF8, 0, 0}, 0xFF0000},
        {"16 bits grey", {2, true, 0xF800, 0x07E0, 0x001F}, {0x10, 0x84, 0, 0}, 0x838183},
        {"three bytes", {3, true, 0xFF0000, 0xFF00, 0xFF, 8}, {0x01, 0x02, 0x03}, 0x030201},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        // A content of 3 by 2 of which the screen showed the top left pixel.
        const ContentGrab grab(3, 2, 0, 0, 1, 1, c.format, c.pixel);
        EXPECT_EQ(grab.Pixel(0, 0), c.colour);
        EXPECT_EQ(grab.Pixel(2, 1), 0u);            // off the screen: black
        EXPECT_EQ(grab.Pixel(3, 0), std::nullopt);  // outside the content
        EXPECT_EQ(grab.Pixel(0, -1), std::nullopt);
    }
    // A reply too short for its rows shows nothing of the screen.
    const ContentGrab shortReply(2, 2, 0, 0, 2, 2, PixelFormat{}, std::vector<uint8_t>(12));
    EXPECT_EQ(shortReply.Pixel(1, 1), 0u);
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
    const IconPixels part = IconPixelsOf(CropToPictureBox(ContentGrab::FromImage(shot), 1, 7));
    EXPECT_EQ(part[0], 0x0A141Eu);
    EXPECT_EQ(part[1], 0x0A141Eu);
    EXPECT_EQ(part[2], kPictureBoxBackground);               // x 40 is off the shot
    EXPECT_EQ(part[21 * kIconSide], kPictureBoxBackground);  // y 200 is off
    const IconPixels hole =
        IconPixelsOf(CropToPictureBox(ContentGrab::FromImage(shot), 0, 7));  // from (18, 179)
    EXPECT_EQ(hole[11 * kIconSide + 12], 0x010203u);
    EXPECT_EQ(hole[15], kPictureBoxBackground);  // right of the crop
}

}  // namespace
}  // namespace felthawk
