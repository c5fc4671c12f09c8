#include "capture/client_layout.h"

namespace felthawk {
namespace {

constexpr std::array<std::string_view, kSlotCount> kSlotNames{"hole1", "hole2", "flop1", "flop2",
                                                              "flop3", "turn",  "river"};
constexpr int kHoleCells = 2;

}  // namespace

PixelPoint CropOrigin(int cell, int previousSeat) {
    if (cell < kHoleCells) {
        const PixelPoint seat =
            kSeatPoints[previousSeat >= 0 && previousSeat < kSeatCount ? previousSeat : 0];
        return {seat.x + kHoleCropOffset.x + kHoleCropStep * cell, seat.y + kHoleCropOffset.y};
    }
    return {kFirstBoardCrop.x + kBoardCropStep * (cell - kHoleCells), kFirstBoardCrop.y};
}

std::string CaptureFileName(int cell) {
    const int number = cell < kHoleCells ? cell + 6 : cell - 1;
    return "t" + std::to_string(number) + ".icc";
}

int CellFromSlotName(std::string_view name) {
    for (int cell = 0; cell < kSlotCount; ++cell) {
        if (kSlotNames[cell] == name) return cell;
    }
    return -1;
}

std::string_view SlotName(int cell) {
    return kSlotNames.at(cell);
}

std::string TemplateCard(int index) {
    return {kTemplateRanks[index % kTemplateRanks.size()],
            kTemplateSuits[index / kTemplateRanks.size()]};
}

std::string TemplateFileName(std::string_view card) {
    return std::string{card.substr(0, 1)} + " " + std::string{card.substr(1, 1)} + ".ico";
}

}  // namespace felthawk
