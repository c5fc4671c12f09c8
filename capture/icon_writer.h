// The icon writer: a 32 by 32 picture becomes a one-image icon file at 1, 4,
// 8 or 24 bits per pixel, with one colour taken as transparent.
//
// Recognition compares these files byte for byte, so the layout is fixed
// down to its odd header fields (planes 5 and bit count 7 at depth 1, the
// sizes of depths 4, 8 and 24); templates and captures must come from this
// one writer.
#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace felthawk {

constexpr int kIconSide = 32;

// Pixels as 0xRRGGBB (the top byte is ignored), row 0 at the top.
using IconPixels = std::array<uint32_t, kIconSide * kIconSide>;

// The depths the writer knows; any other value writes nothing.
constexpr bool IsIconDepth(int depth) {
    return depth == 1 || depth == 4 || depth == 8 || depth == 24;
}

// The whole file for `depth`, or nothing for a depth the writer does not
// know. Pixels of the colour `transparent` are black in the image and set in
// the mask.
std::vector<uint8_t> EncodeIcon(const IconPixels& pixels, uint32_t transparent, int depth);

// The size of the file at `depth`, 0 for an unknown depth.
std::size_t IconFileSize(int depth);

struct IconWriteResult {
    bool written = false;  // false for an unknown depth or a failed open
    std::string error;     // set when the file could not be written
};

// Writes the file. Depths 1, 4 and 8 replace an existing file; depth 24
// writes over the start of it and leaves any longer tail in place, as the
// writer always did. An unknown depth touches nothing.
IconWriteResult SavePicToIcon(const IconPixels& pixels, uint32_t transparent,
                              const std::filesystem::path& path, int depth);

}  // namespace felthawk
