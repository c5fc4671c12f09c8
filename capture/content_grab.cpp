#include "capture/content_grab.h"

#include <bit>
#include <cstring>

namespace felthawk {
namespace {

// One colour channel of a pixel value, widened or narrowed to 8 bits: a
// 5-bit 31 becomes 255, as full intensity should.
uint32_t Channel(uint32_t pixel, uint32_t mask) {
    if (mask == 0) return 0;
    const int bits = std::popcount(mask);
    const uint32_t value = (pixel & mask) >> std::countr_zero(mask);
    return bits >= 8 ? value >> (bits - 8) : value * 255 / ((1u << bits) - 1);
}

}  // namespace

uint32_t PixelFormat::Colour(const uint8_t* pixel) const {
    uint32_t value = 0;
    if (bytesPerPixel == 4 && lsbFirst) {
        std::memcpy(&value, pixel, sizeof value);
        if (redMask == 0xFF0000 && greenMask == 0xFF00 && blueMask == 0xFF) {
            return value & 0xFFFFFF;  // the usual 24-bit screen needs no work
        }
    } else {
        for (int b = 0; b < bytesPerPixel; ++b) {
            const int shift = 8 * (lsbFirst ? b : bytesPerPixel - 1 - b);
            value |= static_cast<uint32_t>(pixel[b]) << shift;
        }
    }
    return Channel(value, redMask) << 16 | Channel(value, greenMask) << 8 |
           Channel(value, blueMask);
}

int PixelFormat::Stride(int width) const {
    const int bits = width * bytesPerPixel * 8;
    return (bits + scanlinePad - 1) / scanlinePad * scanlinePad / 8;
}

ContentGrab::ContentGrab(int width, int height, int partLeft, int partTop, int partWidth,
                         int partHeight, const PixelFormat& format, std::vector<uint8_t> bytes)
    : width_(width),
      height_(height),
      partLeft_(partLeft),
      partTop_(partTop),
      partWidth_(partWidth),
      partHeight_(partHeight),
      stride_(format.Stride(partWidth)),
      format_(format),
      bytes_(std::move(bytes)) {
    // A short reply shows less of the screen, never memory beyond it.
    if (stride_ <= 0 || bytes_.size() < static_cast<std::size_t>(stride_) * partHeight_) {
        partWidth_ = partHeight_ = 0;
    }
}

ContentGrab ContentGrab::FromImage(const QImage& image) {
    if (image.isNull()) return {};
    const QImage pixels = image.convertToFormat(QImage::Format_RGB32);
    std::vector<uint8_t> bytes(static_cast<std::size_t>(pixels.width()) * pixels.height() * 4);
    for (int y = 0; y < pixels.height(); ++y) {
        std::memcpy(bytes.data() + static_cast<std::size_t>(y) * pixels.width() * 4,
                    pixels.constScanLine(y), static_cast<std::size_t>(pixels.width()) * 4);
    }
    PixelFormat format;  // a picture's pixels are words of 0xAARRGGBB
    format.lsbFirst = std::endian::native == std::endian::little;
    return ContentGrab(pixels.width(), pixels.height(), 0, 0, pixels.width(), pixels.height(),
                       format, std::move(bytes));
}

std::optional<uint32_t> ContentGrab::Pixel(int x, int y) const {
    if (x < 0 || y < 0 || x >= width_ || y >= height_) return std::nullopt;
    const int px = x - partLeft_;
    const int py = y - partTop_;
    if (px < 0 || py < 0 || px >= partWidth_ || py >= partHeight_) return 0u;
    return format_.Colour(bytes_.data() + static_cast<std::size_t>(py) * stride_ +
                          static_cast<std::size_t>(px) * format_.bytesPerPixel);
}

QImage ContentGrab::ToImage() const {
    if (IsNull()) return {};
    QImage image(width_, height_, QImage::Format_RGB32);
    for (int y = 0; y < height_; ++y) {
        auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < width_; ++x) line[x] = *Pixel(x, y) | 0xFF000000u;
    }
    return image;
}

}  // namespace felthawk
