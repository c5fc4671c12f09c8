#include "settings/transparency.h"

#include <algorithm>
#include <limits>

#include <QVariant>
#include <QWidget>

#include "cards/runtime_fault.h"
#include "settings/dialogs.h"
#include "settings/settings_store.h"

namespace felthawk {

namespace {

// Where the real layer keeps its state on the window.
constexpr const char* kLayeredProperty = "felthawkLayered";
constexpr const char* kAlphaProperty = "felthawkAlpha";

constexpr uint8_t kOpaque = 255;

// The held route's range test: a value of 0 or above 100 is taken for a
// missing percentage and replaced by the default.
constexpr int16_t kHeldDefault = 80;
constexpr int16_t kHeldMaxPercent = 100;

uint8_t StoredAlpha(const QWidget* window) {
    QVariant alpha = window->property(kAlphaProperty);
    return alpha.isValid() ? static_cast<uint8_t>(alpha.toUInt()) : kOpaque;
}

// A layered window shows its alpha; any other window is opaque.
void ShowOpacity(QWidget* window) {
    const bool layered = window->property(kLayeredProperty).toBool();
    window->setWindowOpacity(layered ? StoredAlpha(window) / 255.0 : 1.0);
}

// The whole number of an answer the way the runtime converts one: blanks
// around it allowed, halves to even, and it must fit the setting.
std::optional<int16_t> WholeNumber(const QString& answer) {
    bool ok = false;
    const double value = answer.trimmed().toDouble(&ok);
    if (!ok) return std::nullopt;
    try {
        return ToInt16(value);
    } catch (const RuntimeFault&) {
        return std::nullopt;
    }
}

QtWindowLayer& RealLayer() {
    static QtWindowLayer layer;
    return layer;
}

}  // namespace

bool QtWindowLayer::IsLayered(QWidget* window) const {
    return window != nullptr && window->property(kLayeredProperty).toBool();
}

bool QtWindowLayer::SetLayered(QWidget* window, bool layered) {
    if (window == nullptr) return false;
    window->setProperty(kLayeredProperty, layered);
    ShowOpacity(window);
    return true;
}

bool QtWindowLayer::SetLayeredAlpha(QWidget* window, uint8_t alpha) {
    if (window == nullptr) return false;
    window->setProperty(kAlphaProperty, static_cast<unsigned>(alpha));
    ShowOpacity(window);
    return true;
}

bool QtWindowLayer::Redraw(QWidget* window) {
    if (window == nullptr) return false;
    // Repainting the window repaints its children with it.
    window->update();
    return true;
}

void clsAlpha::SetAlpha(QWidget* window, bool enable, uint8_t alpha) {
    // The look is never reported on: a refusal leaves the window as it is.
    layer_.SetLayered(window, enable);
    if (!enable) {
        layer_.Redraw(window);
        return;
    }
    layer_.SetLayeredAlpha(window, alpha);
}

void clsAlpha::Clear(QWidget* window) {
    SetAlpha(window, false, kOpaque);
}

int SetWindowAlpha(IWindowLayer& layer, QWidget* window, int16_t& value) {
    if (value == 0 || value > kHeldMaxPercent) value = kHeldDefault;
    if (value < 0 || value > 255) return kAlphaOutOfRange;
    if (window == nullptr) return kAlphaFault;
    if (!layer.SetLayered(window, true)) return kAlphaFault;
    if (!layer.SetLayeredAlpha(window, static_cast<uint8_t>(value))) return kAlphaFault;
    return kAlphaDone;
}

int ClearWindowAlpha(IWindowLayer& layer, QWidget* window) {
    if (window == nullptr) return kAlphaFault;
    if (!layer.SetLayered(window, false)) return kAlphaFault;
    if (!layer.SetLayeredAlpha(window, 0)) return kAlphaFault;
    return kAlphaDone;
}

int SetWindowAlpha(QWidget* window, int16_t& value) {
    return SetWindowAlpha(RealLayer(), window, value);
}

int ClearWindowAlpha(QWidget* window) {
    return ClearWindowAlpha(RealLayer(), window);
}

std::optional<uint8_t> F3Alpha(int16_t transparency) {
    try {
        return ToByte(transparency * 255 / 100.0);
    } catch (const RuntimeFault&) {
        return std::nullopt;
    }
}

bool HeldPressActs(int logicalButton, int yTwips) {
    return logicalButton == 2 && yTwips < kHeldBandTwips;
}

int16_t HeldAlphaValue(int16_t transparency) {
    const double value = RoundHalfEven(transparency * 254 / 100.0);
    return static_cast<int16_t>(std::clamp<double>(value, std::numeric_limits<int16_t>::min(),
                                                   std::numeric_limits<int16_t>::max()));
}

bool AskTransparency(QWidget* parent, IDialogs& dialogs, FelthawkSettings& settings) {
    bool accepted = false;
    const QString answer = dialogs.InputBox(parent, QStringLiteral("Enter the % of Transparency"),
                                            QStringLiteral("Felthawk"),
                                            QString::number(settings.transparency), &accepted);
    // A cancelled box answers "", which is no number either.
    const std::optional<int16_t> number = WholeNumber(answer);
    if (!number) return false;
    if (*number >= 1 && *number <= 100) settings.transparency = *number;
    const QString failure = SetFelthawksettings(settings);
    if (!failure.isEmpty()) {
        dialogs.MessageBox(parent, failure, QStringLiteral("Felthawk"), MessageIcon::Warning);
    }
    return true;
}

}  // namespace felthawk
