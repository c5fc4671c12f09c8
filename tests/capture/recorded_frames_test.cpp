#include <gtest/gtest.h>

#include <fstream>

#include "capture/recorded_frames.h"
#include "tests/capture/temp_folder.h"
#include "tools/table/table_picture.h"

namespace felthawk {
namespace {

namespace fs = std::filesystem;

RecordedFrame Frame(const TextCells& cells) {
    RecordedFrame frame;
    frame.content = DrawTable(cells, 0, *FindTableDesign("six-seat"));
    frame.title = "Six Hold'em";
    frame.layout = "six";
    frame.previousSeat = 9;
    frame.cells = cells;
    frame.notes = {"Read at a scale of 2 by 2"};
    return frame;
}

void ExpectSame(const RecordedFrame& read, const RecordedFrame& written) {
    EXPECT_EQ(read.content, written.content);
    EXPECT_EQ(read.title, written.title);
    EXPECT_EQ(read.layout, written.layout);
    EXPECT_EQ(read.previousSeat, written.previousSeat);
    EXPECT_EQ(read.cells, written.cells);
    EXPECT_EQ(read.notes, written.notes);
}

TEST(RecordedFrames, AreReadBackInOrderAndARecorderNumbersOn) {
    TempFolder folder;
    const RecordedFrame first = Frame({"AS", "KD", "", "", "", "", ""});
    const RecordedFrame second = Frame({"AS", "KD", "2C", "3C", "4C", "", ""});
    std::string error;
    ASSERT_TRUE(FrameRecorder(folder.path()).Record(first, error)) << error;
    ASSERT_TRUE(FrameRecorder(folder.path()).Record(second, error)) << error;
    std::ofstream(folder.path() / "frame-7.json") << "{}";  // not a frame's name
    const std::vector<fs::path> files = RecordedFrameFiles(folder.path());
    ASSERT_EQ(files.size(), 2u);
    EXPECT_EQ(files[1].filename(), "frame-000002.json");
    ExpectSame(*ReadRecordedFrame(files[0], error), first);
    ExpectSame(*ReadRecordedFrame(files[1], error), second);
}

TEST(RecordedFrames, ABrokenFrameIsRefusedNamingTheFile) {
    TempFolder folder;
    std::string error;
    ASSERT_TRUE(FrameRecorder(folder.path()).Record(Frame({}), error)) << error;
    const fs::path file = folder.path() / "frame-000001.json";
    std::ifstream in(file);
    const std::string good{std::istreambuf_iterator<char>(in), {}};
    auto replaced = [&](const std::string& from, const std::string& to) {
        std::string text = good;
        text.replace(text.find(from), from.size(), to);
        return text;
    };
    const std::pair<std::string, std::string> cases[] = {
        {"not json", "not a recorded frame"},
        {replaced("\"previousSeat\": 9", "\"previousSeat\": 12"), "previousSeat must be 0..9"},
        {replaced("\"cells\": [", "\"cells\": [\"ZZ\","), "not a recorded frame"},
        {replaced("\"cells\": [\n        \"\"", "\"cells\": [\n        \"1X\""),
         "cell 1 is not a card"},
        {replaced("frame-000001.png", "gone.png"), "its picture gone.png cannot be read"},
        {replaced("frame-000001.png", "../frame-000001.png"), "not a recorded frame"},
    };
    for (const auto& [text, message] : cases) {
        std::ofstream(file, std::ios::trunc) << text;
        EXPECT_FALSE(ReadRecordedFrame(file, error)) << text;
        EXPECT_EQ(error.rfind(file.string() + ": ", 0), 0u) << error;
        EXPECT_NE(error.find(message), std::string::npos) << error;
    }
}

}  // namespace
}  // namespace felthawk
