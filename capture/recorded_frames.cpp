#include "capture/recorded_frames.h"

#include <QBuffer>
#include <QFile>
#include <QImageReader>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>
#include <algorithm>
#include <cstdio>

namespace felthawk {
namespace {

constexpr std::string_view kPrefix = "frame-";
constexpr int kNumberDigits = 6;
constexpr qint64 kMaxFrameFileBytes = 64 * 1024;
constexpr int kMaxPictureSide = 16384;
constexpr int kMaxNotes = 16;

std::string FrameName(int number) {
    char digits[16];
    std::snprintf(digits, sizeof digits, "%0*d", kNumberDigits, number);
    return std::string(kPrefix) + digits;
}

// The number of a frame's file, 0 when the name is not a frame's.
int FrameNumber(const std::filesystem::path& file) {
    const std::string stem = file.stem().string();
    if (stem.size() != kPrefix.size() + kNumberDigits || stem.rfind(kPrefix, 0) != 0 ||
        stem.find_first_not_of("0123456789", kPrefix.size()) != std::string::npos) {
        return 0;
    }
    return std::stoi(stem.substr(kPrefix.size()));
}

bool WriteFile(const std::filesystem::path& path, const QByteArray& bytes, std::string& error) {
    QSaveFile file(QString::fromStdString(path.string()));
    if (file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.commit()) {
        return true;
    }
    error = path.string() + ": " + file.errorString().toStdString();
    return false;
}

}  // namespace

FrameRecorder::FrameRecorder(std::filesystem::path folder) : folder_(std::move(folder)) {}

bool FrameRecorder::Record(const RecordedFrame& frame, std::string& error) {
    std::error_code created;
    std::filesystem::create_directories(folder_, created);
    if (next_ == 0) {
        next_ = 1;
        for (const std::filesystem::path& file : RecordedFrameFiles(folder_)) {
            next_ = std::max(next_, FrameNumber(file) + 1);
        }
    }
    const std::string name = FrameName(next_++);
    QByteArray picture;
    {
        QBuffer buffer(&picture);
        buffer.open(QIODevice::WriteOnly);
        frame.content.save(&buffer, "PNG");
    }
    QJsonArray cells, notes;
    for (const std::string& cell : frame.cells) cells.append(QString::fromStdString(cell));
    for (const std::string& note : frame.notes) notes.append(QString::fromStdString(note));
    const QJsonObject json{
        {"picture", QString::fromStdString(name + ".png")},
        {"title", QString::fromStdString(frame.title)},
        {"layout", QString::fromStdString(frame.layout)},
        {"previousSeat", frame.previousSeat},
        {"cells", cells},
        {"notes", notes},
    };
    // The picture first: a frame whose .json is there is complete.
    return WriteFile(folder_ / (name + ".png"), picture, error) &&
           WriteFile(folder_ / (name + ".json"), QJsonDocument(json).toJson(), error);
}

std::vector<std::filesystem::path> RecordedFrameFiles(const std::filesystem::path& folder) {
    std::vector<std::filesystem::path> files;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(folder, error)) {
        if (entry.path().extension() == ".json" && FrameNumber(entry.path()) > 0) {
            files.push_back(entry.path());
        }
    }
    std::sort(files.begin(), files.end());
    return files;
}

std::optional<RecordedFrame> ReadRecordedFrame(const std::filesystem::path& file,
                                               std::string& error) {
    auto fail = [&](const std::string& why) {
        error = file.string() + ": " + why;
        return std::nullopt;
    };
    QFile input(QString::fromStdString(file.string()));
    if (!input.open(QIODevice::ReadOnly)) return fail(input.errorString().toStdString());
    if (input.size() > kMaxFrameFileBytes) return fail("larger than a frame file can be");
    const QJsonObject json = QJsonDocument::fromJson(input.read(kMaxFrameFileBytes)).object();
    const QJsonArray cells = json.value("cells").toArray();
    const QJsonArray notes = json.value("notes").toArray();
    const QString picture = json.value("picture").toString();
    if (json.isEmpty() || cells.size() != kSlotCount || !json.value("title").isString() ||
        !json.value("layout").isString() || !json.value("previousSeat").isDouble() ||
        notes.size() > kMaxNotes || picture.isEmpty() || picture.contains('/')) {
        return fail("not a recorded frame (picture, title, layout, previousSeat, seven cells)");
    }
    RecordedFrame frame;
    frame.title = json.value("title").toString().toStdString();
    frame.layout = json.value("layout").toString().toStdString();
    frame.previousSeat = json.value("previousSeat").toInt(-1);
    if (frame.previousSeat < 0 || frame.previousSeat >= kSeatCount) {
        return fail("previousSeat must be 0..9");
    }
    for (int cell = 0; cell < kSlotCount; ++cell) {
        frame.cells[cell] = cells[cell].toString().toStdString();
        if (!frame.cells[cell].empty() && !IsCardText(frame.cells[cell])) {
            return fail("cell " + std::to_string(cell + 1) + " is not a card");
        }
    }
    for (const QJsonValue& note : notes) frame.notes.push_back(note.toString().toStdString());

    QImageReader reader(
        QString::fromStdString((file.parent_path() / picture.toStdString()).string()));
    const QSize size = reader.size();
    if (!size.isValid() || size.width() > kMaxPictureSide || size.height() > kMaxPictureSide) {
        return fail("its picture " + picture.toStdString() + " cannot be read");
    }
    frame.content = reader.read().convertToFormat(QImage::Format_RGB32);
    if (frame.content.isNull())
        return fail("its picture " + picture.toStdString() + " cannot be read");
    return frame;
}

}  // namespace felthawk
