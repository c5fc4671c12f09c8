// One reading of the screen at a window's content, kept as the server sent
// it: pixels are converted to colours only where a crop asks for them.
#pragma once

#include <QImage>
#include <cstdint>
#include <optional>
#include <vector>

namespace felthawk {

// How the server lays out the pixels of a true-colour screen.
struct PixelFormat {
    int bytesPerPixel = 4;
    bool lsbFirst = true;
    uint32_t redMask = 0xFF0000;
    uint32_t greenMask = 0x00FF00;
    uint32_t blueMask = 0x0000FF;
    // Rows are padded to a multiple of this many bits.
    int scanlinePad = 32;

    // The colour 0xRRGGBB of one pixel's bytes.
    uint32_t Colour(const uint8_t* pixel) const;
    int Stride(int width) const;
};

class ContentGrab {
  public:
    // A null grab: the window was gone.
    ContentGrab() = default;
    // A content of `width` by `height` of which the screen showed the part
    // at (partLeft, partTop) of partWidth by partHeight, given in `bytes`
    // row by row in `format`; the rest lay off the screen.
    ContentGrab(int width, int height, int partLeft, int partTop, int partWidth, int partHeight,
                const PixelFormat& format, std::vector<uint8_t> bytes);
    // The whole content as a picture holds it.
    static ContentGrab FromImage(const QImage& image);

    bool IsNull() const { return width_ <= 0 || height_ <= 0; }
    int Width() const { return width_; }
    int Height() const { return height_; }

    // The colour 0xRRGGBB at (x, y) of the content: black where the content
    // lay off the screen, nothing outside the content.
    std::optional<uint32_t> Pixel(int x, int y) const;
    // The whole content as a picture: for tools that show or keep it.
    QImage ToImage() const;

  private:
    int width_ = 0;
    int height_ = 0;
    int partLeft_ = 0;
    int partTop_ = 0;
    int partWidth_ = 0;
    int partHeight_ = 0;
    int stride_ = 0;
    PixelFormat format_;
    std::vector<uint8_t> bytes_;
};

}  // namespace felthawk
