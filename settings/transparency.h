// Making the main window see-through.
//
// Two routes reach the same window attribute, the "layered" look with an
// alpha 0..255:
// - the persistent one, clsAlpha: F3 applies the transparency setting, F4
//   makes the window opaque but layered, closing the window ends the look;
// - the while-held one: logical button 2 held on the top band of the board
//   makes the window faint, releasing it ends the look.
// The two use different scales, and the held route keeps an old quirk: its
// range test treats the already scaled value as a percentage, so every
// setting from 40 upward gives alpha 80, much fainter than F3.
//
// On X11 the attribute is the window's opacity. The layered bit is kept as
// explicit state beside it: layered off means opacity 1.0 whatever the alpha,
// layered on with alpha a means opacity a / 255.
#pragma once

#include <cstdint>
#include <optional>

class QWidget;

namespace felthawk {

class IDialogs;
struct FelthawkSettings;

// The window attribute behind one small interface, so the routes can be
// tested without a window system. A method returns false when the platform
// refused the call.
class IWindowLayer {
  public:
    virtual ~IWindowLayer() = default;
    virtual bool IsLayered(QWidget* window) const = 0;
    virtual bool SetLayered(QWidget* window, bool layered) = 0;
    virtual bool SetLayeredAlpha(QWidget* window, uint8_t alpha) = 0;
    // Repaints the window, frame and children included.
    virtual bool Redraw(QWidget* window) = 0;
};

// The real attribute: QWidget::setWindowOpacity, with the layered bit and the
// alpha kept as properties of the window.
class QtWindowLayer : public IWindowLayer {
  public:
    bool IsLayered(QWidget* window) const override;
    bool SetLayered(QWidget* window, bool layered) override;
    bool SetLayeredAlpha(QWidget* window, uint8_t alpha) override;
    bool Redraw(QWidget* window) override;
};

// The persistent route; the main window makes one at start and keeps it.
class clsAlpha {
  public:
    explicit clsAlpha(IWindowLayer& layer) : layer_(layer) {}
    // Sets or clears the layered bit. Clearing repaints the window; setting
    // gives it `alpha`.
    void SetAlpha(QWidget* window, bool enable, uint8_t alpha);
    // Ends the layered look: SetAlpha(window, false, 255).
    void Clear(QWidget* window);

  private:
    IWindowLayer& layer_;
};

// Statuses of SetWindowAlpha and ClearWindowAlpha.
constexpr int kAlphaDone = 0;
constexpr int kAlphaOutOfRange = 1;
constexpr int kAlphaFault = 2;

// The held route. `value` 0 or above 100 is first replaced by 80 (and the
// caller sees the replacement); a value then in 0..255 becomes the alpha of a
// layered window (kAlphaDone), anything else gives kAlphaOutOfRange. A
// refusal of the platform, or no window, gives kAlphaFault.
int SetWindowAlpha(IWindowLayer& layer, QWidget* window, int16_t& value);
// Clears the layered bit and sets alpha 0.
int ClearWindowAlpha(IWindowLayer& layer, QWidget* window);
// The same on the real window attribute.
int SetWindowAlpha(QWidget* window, int16_t& value);
int ClearWindowAlpha(QWidget* window);

// F3: transparency * 255 / 100 as a byte, an exact half to the even
// neighbour (80 gives 204, 100 gives 255). No byte for a stored setting
// above 100: the key then does nothing.
std::optional<uint8_t> F3Alpha(int16_t transparency);
// F4: opaque, but layered.
constexpr uint8_t kF4Alpha = 255;

// The band at the top of the board (button images and banner) where a held
// logical button 2 acts, in twips.
constexpr int kHeldBandTwips = 1140;
// Whether a press acts: logical button 2 above the band's lower edge.
bool HeldPressActs(int logicalButton, int yTwips);
// The value handed to SetWindowAlpha by a held press: transparency * 254 / 100
// as a whole number, halves to even (80 gives 203, 30 gives 76). Settings
// too large for the product saturate; SetWindowAlpha replaces them anyway.
int16_t HeldAlphaValue(int16_t transparency);

// "Transparency" on the settings menu: asks for the percentage with the
// current one as default. A whole number 1..100 becomes the setting, another
// number is ignored; in both cases the store is written. A cancelled box or
// an answer that is no number changes and writes nothing. The window itself
// is not touched: the value takes effect at the next F3 or held press.
// Returns true when the store was written; a write that failed is reported
// with one message.
bool AskTransparency(QWidget* parent, IDialogs& dialogs, FelthawkSettings& settings);

}  // namespace felthawk
