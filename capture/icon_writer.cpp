#include "capture/icon_writer.h"

#include <fstream>
#include <system_error>

namespace felthawk {
namespace {

constexpr int kDirectorySize = 22;  // icon directory and its one entry
constexpr int kInfoHeaderSize = 40;
constexpr int kMaskRowBytes = kIconSide / 8;
constexpr int kMaskBytes = kMaskRowBytes * kIconSide;

// The header fields that change with the depth, as the writer has always
// put them: planes and bit count of the directory entry are 5 and 7 at depth
// 1 and 0 elsewhere, and biSizeImage is only right at depth 1.
struct DepthLayout {
    int depth;
    uint8_t colourCount;
    uint16_t planes;
    uint16_t bitCount;
    uint32_t bytesInResource;
    uint32_t sizeImage;
    uint32_t coloursUsed;
    int colourTableBytes;  // for depth 24 the four blanks
};

constexpr std::array<DepthLayout, 4> kLayouts{{
    {1, 0, 5, 7, 304, 128, 0, 8},
    {4, 16, 0, 0, 744, 2, 0, 64},
    {8, 0, 0, 0, 2216, 1152, 256, 1024},
    {24, 0, 0, 0, 3244, 1153, 1, 4},
}};

const DepthLayout* LayoutOf(int depth) {
    for (const DepthLayout& layout : kLayouts) {
        if (layout.depth == depth) return &layout;
    }
    return nullptr;
}

constexpr int RowBytes(int depth) {
    return (kIconSide * depth + 31) / 32 * 4;
}

struct Rgb {
    int r, g, b;
};

constexpr Rgb Channels(uint32_t colour) {
    return {static_cast<int>((colour >> 16) & 0xFF), static_cast<int>((colour >> 8) & 0xFF),
            static_cast<int>(colour & 0xFF)};
}

// The fixed colour tables. Only the agreement of templates and captures
// matters, so each reduction is a plain, documented rule.
//
// Depth 1: black and white; a pixel is white when its luma,
// (299 R + 587 G + 114 B) / 1000 in whole numbers, is 128 or more.
constexpr std::array<Rgb, 2> kTwoColours{{{0, 0, 0}, {255, 255, 255}}};
constexpr int kLumaThreshold = 128;

// Depth 4: the sixteen colours of the classic VGA palette; a pixel takes the
// nearest of them by squared distance, the lower index on a tie.
constexpr std::array<Rgb, 16> kSixteenColours{{
    {0, 0, 0},
    {128, 0, 0},
    {0, 128, 0},
    {128, 128, 0},
    {0, 0, 128},
    {128, 0, 128},
    {0, 128, 128},
    {192, 192, 192},
    {128, 128, 128},
    {255, 0, 0},
    {0, 255, 0},
    {255, 255, 0},
    {0, 0, 255},
    {255, 0, 255},
    {0, 255, 255},
    {255, 255, 255},
}};

// Depth 8: 3 bits of red, 3 of green and 2 of blue, index RRRGGGBB; each
// channel is rounded to its nearest level, and a level's value is the level
// spread evenly over 0..255, rounded.
constexpr int kRedLevels = 8;
constexpr int kGreenLevels = 8;
constexpr int kBlueLevels = 4;

constexpr int NearestLevel(int value, int levels) {
    return (value * (levels - 1) + 127) / 255;
}
constexpr int LevelValue(int level, int levels) {
    return (level * 255 + (levels - 1) / 2) / (levels - 1);
}

uint8_t TwoColourIndex(uint32_t colour) {
    const Rgb c = Channels(colour);
    return (299 * c.r + 587 * c.g + 114 * c.b) / 1000 >= kLumaThreshold ? 1 : 0;
}

uint8_t SixteenColourIndex(uint32_t colour) {
    const Rgb c = Channels(colour);
    int best = 0;
    int bestDistance = 0;
    for (int i = 0; i < static_cast<int>(kSixteenColours.size()); ++i) {
        const Rgb& p = kSixteenColours[i];
        const int distance =
            (c.r - p.r) * (c.r - p.r) + (c.g - p.g) * (c.g - p.g) + (c.b - p.b) * (c.b - p.b);
        if (i == 0 || distance < bestDistance) {
            best = i;
            bestDistance = distance;
        }
    }
    return static_cast<uint8_t>(best);
}

uint8_t ByteColourIndex(uint32_t colour) {
    const Rgb c = Channels(colour);
    return static_cast<uint8_t>(NearestLevel(c.r, kRedLevels) << 5 |
                                NearestLevel(c.g, kGreenLevels) << 2 |
                                NearestLevel(c.b, kBlueLevels));
}

class ByteWriter {
  public:
    explicit ByteWriter(std::vector<uint8_t>& out) : out_(out) {}
    void U8(uint32_t v) { out_.push_back(static_cast<uint8_t>(v)); }
    void U16(uint32_t v) {
        U8(v);
        U8(v >> 8);
    }
    void U32(uint32_t v) {
        U16(v);
        U16(v >> 16);
    }
    void Quad(const Rgb& c) {  // a colour table entry: blue, green, red, 0
        U8(c.b);
        U8(c.g);
        U8(c.r);
        U8(0);
    }

  private:
    std::vector<uint8_t>& out_;
};

void WriteHeaders(ByteWriter& w, const DepthLayout& layout) {
    w.U16(0);  // reserved
    w.U16(1);  // type: icon
    w.U16(1);  // one image
    w.U8(kIconSide);
    w.U8(kIconSide);
    w.U8(layout.colourCount);
    w.U8(0);
    w.U16(layout.planes);
    w.U16(layout.bitCount);
    w.U32(layout.bytesInResource);
    w.U32(kDirectorySize);  // the image follows the directory at once

    w.U32(kInfoHeaderSize);
    w.U32(kIconSide);
    w.U32(kIconSide * 2);  // image and mask stacked
    w.U16(1);
    w.U16(layout.depth);
    w.U32(0);  // no compression
    w.U32(layout.sizeImage);
    w.U32(0);
    w.U32(0);
    w.U32(layout.coloursUsed);
    w.U32(0);
}

void WriteColourTable(ByteWriter& w, int depth) {
    switch (depth) {
        case 1:
            for (const Rgb& c : kTwoColours) w.Quad(c);
            break;
        case 4:
            for (const Rgb& c : kSixteenColours) w.Quad(c);
            break;
        case 8:
            for (int i = 0; i < 256; ++i) {
                w.Quad({LevelValue(i >> 5, kRedLevels), LevelValue((i >> 2) & 7, kGreenLevels),
                        LevelValue(i & 3, kBlueLevels)});
            }
            break;
        default:  // depth 24 has no table, only four blanks in its place
            w.U32(0x20202020);
            break;
    }
}

// Packs one row of colour indices of `depth` bits, the leftmost pixel in the
// highest bits of the first byte.
void PackRow(std::vector<uint8_t>& out, const uint8_t* indices, int depth) {
    const std::size_t start = out.size();
    out.resize(start + RowBytes(depth), 0);
    for (int x = 0; x < kIconSide; ++x) {
        const int bit = x * depth;
        out[start + bit / 8] |= static_cast<uint8_t>(indices[x] << (8 - depth - bit % 8));
    }
}

void WriteImageBits(std::vector<uint8_t>& out, const IconPixels& image, int depth) {
    for (int y = kIconSide - 1; y >= 0; --y) {  // bottom row first
        const uint32_t* row = &image[y * kIconSide];
        if (depth == 24) {
            for (int x = 0; x < kIconSide; ++x) {
                const Rgb c = Channels(row[x]);
                out.push_back(static_cast<uint8_t>(c.b));
                out.push_back(static_cast<uint8_t>(c.g));
                out.push_back(static_cast<uint8_t>(c.r));
            }
            continue;
        }
        std::array<uint8_t, kIconSide> indices{};
        for (int x = 0; x < kIconSide; ++x) {
            indices[x] = depth == 1   ? TwoColourIndex(row[x])
                         : depth == 4 ? SixteenColourIndex(row[x])
                                      : ByteColourIndex(row[x]);
        }
        PackRow(out, indices.data(), depth);
    }
}

constexpr uint32_t Rgb24(uint32_t colour) {
    return colour & 0xFFFFFF;
}

}  // namespace

std::size_t IconFileSize(int depth) {
    const DepthLayout* layout = LayoutOf(depth);
    if (layout == nullptr) return 0;
    return kDirectorySize + kInfoHeaderSize + layout->colourTableBytes +
           RowBytes(depth) * kIconSide + kMaskBytes;
}

std::vector<uint8_t> EncodeIcon(const IconPixels& pixels, uint32_t transparent, int depth) {
    std::vector<uint8_t> out;
    const DepthLayout* layout = LayoutOf(depth);
    if (layout == nullptr) return out;
    out.reserve(IconFileSize(depth));
    transparent = Rgb24(transparent);

    // The image with every transparent pixel turned black; the mask marks
    // those same pixels.
    IconPixels image;
    for (std::size_t i = 0; i < pixels.size(); ++i) {
        image[i] = Rgb24(pixels[i]) == transparent ? 0 : Rgb24(pixels[i]);
    }

    ByteWriter w(out);
    WriteHeaders(w, *layout);
    WriteColourTable(w, depth);
    WriteImageBits(out, image, depth);
    for (int y = kIconSide - 1; y >= 0; --y) {
        std::array<uint8_t, kIconSide> bits{};
        for (int x = 0; x < kIconSide; ++x) {
            bits[x] = Rgb24(pixels[y * kIconSide + x]) == transparent ? 1 : 0;
        }
        PackRow(out, bits.data(), 1);
    }
    return out;
}

IconWriteResult SavePicToIcon(const IconPixels& pixels, uint32_t transparent,
                              const std::filesystem::path& path, int depth) {
    IconWriteResult result;
    const std::vector<uint8_t> bytes = EncodeIcon(pixels, transparent, depth);
    if (bytes.empty()) return result;

    std::error_code ignored;
    const bool keepTail = depth == 24 && std::filesystem::exists(path, ignored);
    if (!keepTail) std::filesystem::remove(path, ignored);

    // Opening for reading as well keeps the old contents past our end.
    std::fstream file(path, keepTail ? std::ios::in | std::ios::out | std::ios::binary
                                     : std::ios::out | std::ios::binary | std::ios::trunc);
    if (file) {
        file.write(reinterpret_cast<const char*>(bytes.data()),
                   static_cast<std::streamsize>(bytes.size()));
        file.close();
    }
    if (!file) {
        result.error = "Cannot write the icon file " + path.string();
        return result;
    }
    result.written = true;
    return result;
}

}  // namespace felthawk
