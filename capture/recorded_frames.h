// Recorded frames: what one capture pass saw and read, kept in a folder so
// that a misread can be shown to someone else and read again offline.
// Each pass gives two files, numbered on from what the folder holds:
//
//   frame-000001.png    the client's content as the pass read it
//   frame-000001.json   {"title": ..., "layout": ..., "previousSeat": 9,
//                        "cells": ["AS", "KD", "", ...], "notes": [...]}
#pragma once

#include <QImage>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "cards/recalculate.h"

namespace felthawk {

struct RecordedFrame {
    QImage content;
    std::string title;   // the client's window title
    std::string layout;  // the layout the pass read through
    int previousSeat = 0;
    TextCells cells;  // what the pass put on the board
    std::vector<std::string> notes;
};

// The environment variable that switches recording on for one run, with
// the folder to record into.
inline constexpr const char* kRecordFolderVariable = "FELTHAWK_RECORD_DIR";

class FrameRecorder {
  public:
    explicit FrameRecorder(std::filesystem::path folder);

    // Writes the next frame; false, with a message, when it cannot.
    bool Record(const RecordedFrame& frame, std::string& error);
    const std::filesystem::path& Folder() const { return folder_; }

  private:
    std::filesystem::path folder_;
    int next_ = 0;  // 0 until the folder has been looked at
};

// The frames of a folder in the order they were recorded: their .json files.
std::vector<std::filesystem::path> RecordedFrameFiles(const std::filesystem::path& folder);

// Reads a frame and its picture; nothing, with a message naming the file,
// when it is not one.
std::optional<RecordedFrame> ReadRecordedFrame(const std::filesystem::path& file,
                                               std::string& error);

}  // namespace felthawk
