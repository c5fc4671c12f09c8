#include "settings/display_mode.h"

#include <cmath>
#include <cstdlib>
#include <vector>

#include <xcb/randr.h>
#include <xcb/xcb.h>

#include "settings/display_guard.h"

namespace felthawk {

namespace {

// Replies of xcb are malloc'ed and freed by the caller.
template <class T>
struct FreeDeleter {
    void operator()(T* reply) const { std::free(reply); }
};
template <class T>
using Reply = std::unique_ptr<T, FreeDeleter<T>>;

template <class T>
Reply<T> Own(T* reply, xcb_generic_error_t* error) {
    std::free(error);
    return Reply<T>(reply);
}

// The refresh asked for when none is given: the usual rate of a desktop.
constexpr int16_t kUsualFrequency = 60;
// The rate reported when the timings do not tell (virtual screens have
// none). It must not be 0: a mode noted with frequency 0 would not count as
// a full mode to restore. 1 stands for the default rate, as on other
// platforms, and asks for no particular rate.
constexpr int16_t kDefaultFrequency = 1;

// Refresh rate of a mode in whole Hz, 0 when the timings do not tell.
int16_t RefreshOf(const xcb_randr_mode_info_t& mode) {
    double lines = mode.vtotal;
    if (mode.mode_flags & XCB_RANDR_MODE_FLAG_DOUBLE_SCAN) lines *= 2;
    if (mode.mode_flags & XCB_RANDR_MODE_FLAG_INTERLACE) lines /= 2;
    if (mode.htotal == 0 || lines == 0) return 0;
    return static_cast<int16_t>(std::lround(mode.dot_clock / (mode.htotal * lines)));
}

bool Rotated(uint16_t rotation) {
    return (rotation & (XCB_RANDR_ROTATION_ROTATE_90 | XCB_RANDR_ROTATION_ROTATE_270)) != 0;
}

}  // namespace

struct XRandrDisplayModes::Connection {
    xcb_connection_t* conn = nullptr;
    xcb_screen_t* screen = nullptr;
    bool randr = false;

    explicit Connection(const char* displayName) {
        int screenNumber = 0;
        conn = xcb_connect(displayName, &screenNumber);
        if (xcb_connection_has_error(conn)) return;
        xcb_screen_iterator_t it = xcb_setup_roots_iterator(xcb_get_setup(conn));
        for (int i = 0; i < screenNumber && it.rem > 0; ++i) xcb_screen_next(&it);
        if (it.rem == 0) return;
        screen = it.data;
        const xcb_query_extension_reply_t* extension = xcb_get_extension_data(conn, &xcb_randr_id);
        if (extension == nullptr || !extension->present) return;
        // CRTCs and outputs came with version 1.2.
        xcb_generic_error_t* error = nullptr;
        auto version =
            Own(xcb_randr_query_version_reply(conn, xcb_randr_query_version(conn, 1, 2), &error),
                error);
        randr = version && (version->major_version > 1 || version->minor_version >= 2);
    }
    ~Connection() { xcb_disconnect(conn); }
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    bool Usable() const { return screen != nullptr && randr; }

    // The output whose mode counts, its CRTC and what the CRTC shows.
    struct Active {
        Reply<xcb_randr_get_screen_resources_current_reply_t> resources;
        xcb_randr_output_t output = 0;
        xcb_randr_crtc_t crtc = 0;
        Reply<xcb_randr_get_crtc_info_reply_t> crtcInfo;
    };

    Reply<xcb_randr_get_output_info_reply_t> OutputInfo(xcb_randr_output_t output,
                                                        xcb_timestamp_t timestamp) {
        xcb_generic_error_t* error = nullptr;
        return Own(xcb_randr_get_output_info_reply(
                       conn, xcb_randr_get_output_info(conn, output, timestamp), &error),
                   error);
    }

    // The primary output when it shows something, else the first output
    // that does.
    std::optional<Active> FindActive() {
        if (!Usable()) return std::nullopt;
        xcb_generic_error_t* error = nullptr;
        Active active;
        active.resources =
            Own(xcb_randr_get_screen_resources_current_reply(
                    conn, xcb_randr_get_screen_resources_current(conn, screen->root), &error),
                error);
        if (!active.resources) return std::nullopt;
        const xcb_timestamp_t timestamp = active.resources->config_timestamp;

        std::vector<xcb_randr_output_t> candidates;
        auto primary = Own(xcb_randr_get_output_primary_reply(
                               conn, xcb_randr_get_output_primary(conn, screen->root), &error),
                           error);
        if (primary && primary->output != XCB_NONE) candidates.push_back(primary->output);
        const xcb_randr_output_t* outputs =
            xcb_randr_get_screen_resources_current_outputs(active.resources.get());
        const int outputCount =
            xcb_randr_get_screen_resources_current_outputs_length(active.resources.get());
        candidates.insert(candidates.end(), outputs, outputs + outputCount);

        for (xcb_randr_output_t output : candidates) {
            auto info = OutputInfo(output, timestamp);
            if (!info || info->crtc == XCB_NONE) continue;
            auto crtcInfo =
                Own(xcb_randr_get_crtc_info_reply(
                        conn, xcb_randr_get_crtc_info(conn, info->crtc, timestamp), &error),
                    error);
            if (!crtcInfo || crtcInfo->mode == XCB_NONE) continue;
            active.output = output;
            active.crtc = info->crtc;
            active.crtcInfo = std::move(crtcInfo);
            return active;
        }
        return std::nullopt;
    }

    static const xcb_randr_mode_info_t* ModeInfo(
        const xcb_randr_get_screen_resources_current_reply_t& resources, xcb_randr_mode_t id) {
        const xcb_randr_mode_info_t* modes =
            xcb_randr_get_screen_resources_current_modes(&resources);
        const int count = xcb_randr_get_screen_resources_current_modes_length(&resources);
        for (int i = 0; i < count; ++i) {
            if (modes[i].id == id) return &modes[i];
        }
        return nullptr;
    }

    // Whether the CRTC is the only one showing something, so that the
    // screen may be cut down to its size.
    bool OnlyActiveCrtc(const Active& active) {
        const xcb_randr_crtc_t* crtcs =
            xcb_randr_get_screen_resources_current_crtcs(active.resources.get());
        const int count =
            xcb_randr_get_screen_resources_current_crtcs_length(active.resources.get());
        for (int i = 0; i < count; ++i) {
            if (crtcs[i] == active.crtc) continue;
            xcb_generic_error_t* error = nullptr;
            auto info =
                Own(xcb_randr_get_crtc_info_reply(
                        conn,
                        xcb_randr_get_crtc_info(conn, crtcs[i], active.resources->config_timestamp),
                        &error),
                    error);
            if (!info || info->mode != XCB_NONE) return false;
        }
        return true;
    }

    bool SetScreenSize(uint16_t width, uint16_t height) {
        // Keep the physical size in step so the dots per inch stay as they are.
        const auto mm = [](uint16_t pixels, uint16_t screenPixels, uint16_t screenMm) {
            return static_cast<uint32_t>(screenPixels == 0 ? 0 : pixels * screenMm / screenPixels);
        };
        xcb_generic_error_t* error = xcb_request_check(
            conn, xcb_randr_set_screen_size_checked(
                      conn, screen->root, width, height,
                      mm(width, screen->width_in_pixels, screen->width_in_millimeters),
                      mm(height, screen->height_in_pixels, screen->height_in_millimeters)));
        std::free(error);
        return error == nullptr;
    }

    std::pair<uint16_t, uint16_t> ScreenSize() {
        xcb_generic_error_t* error = nullptr;
        auto geometry =
            Own(xcb_get_geometry_reply(conn, xcb_get_geometry(conn, screen->root), &error), error);
        if (!geometry) return {screen->width_in_pixels, screen->height_in_pixels};
        return {geometry->width, geometry->height};
    }
};

XRandrDisplayModes::XRandrDisplayModes(const char* displayName)
    : connection_(std::make_unique<Connection>(displayName)) {}

XRandrDisplayModes::~XRandrDisplayModes() = default;

std::optional<DisplayMode> XRandrDisplayModes::Current() {
    std::optional<Connection::Active> active = connection_->FindActive();
    if (!active) return std::nullopt;
    const xcb_randr_mode_info_t* mode =
        Connection::ModeInfo(*active->resources, active->crtcInfo->mode);
    return DisplayMode{static_cast<int16_t>(active->crtcInfo->width),
                       static_cast<int16_t>(active->crtcInfo->height),
                       static_cast<int16_t>(connection_->screen->root_depth),
                       mode && RefreshOf(*mode) != 0 ? RefreshOf(*mode) : kDefaultFrequency};
}

bool XRandrDisplayModes::Apply(const DisplayMode& wanted) {
    std::optional<Connection::Active> active = connection_->FindActive();
    if (!active) return false;
    auto output = connection_->OutputInfo(active->output, active->resources->config_timestamp);
    if (!output) return false;

    // The mode of the asked size whose refresh lies nearest the asked one.
    // The depth is not the mode's to choose: it is the root visual's.
    const int16_t frequency =
        wanted.frequency > kDefaultFrequency ? wanted.frequency : kUsualFrequency;
    const xcb_randr_mode_t* ids = xcb_randr_get_output_info_modes(output.get());
    const int idCount = xcb_randr_get_output_info_modes_length(output.get());
    const xcb_randr_mode_info_t* chosen = nullptr;
    for (int i = 0; i < idCount; ++i) {
        const xcb_randr_mode_info_t* mode = Connection::ModeInfo(*active->resources, ids[i]);
        if (mode == nullptr || mode->width != wanted.width || mode->height != wanted.height) {
            continue;
        }
        if (chosen == nullptr ||
            std::abs(RefreshOf(*mode) - frequency) < std::abs(RefreshOf(*chosen) - frequency)) {
            chosen = mode;
        }
    }
    if (chosen == nullptr) return false;
    if (chosen->id == active->crtcInfo->mode) return true;

    const xcb_randr_get_crtc_info_reply_t& crtc = *active->crtcInfo;
    const bool rotated = Rotated(crtc.rotation);
    const uint16_t needWidth = crtc.x + (rotated ? chosen->height : chosen->width);
    const uint16_t needHeight = crtc.y + (rotated ? chosen->width : chosen->height);
    const auto [screenWidth, screenHeight] = connection_->ScreenSize();

    // The screen must hold the new mode before the CRTC may show it.
    if (needWidth > screenWidth || needHeight > screenHeight) {
        if (!connection_->SetScreenSize(std::max(needWidth, screenWidth),
                                        std::max(needHeight, screenHeight))) {
            return false;
        }
    }
    xcb_generic_error_t* error = nullptr;
    auto result = Own(xcb_randr_set_crtc_config_reply(
                          connection_->conn,
                          xcb_randr_set_crtc_config(
                              connection_->conn, active->crtc, XCB_CURRENT_TIME,
                              active->resources->config_timestamp, crtc.x, crtc.y, chosen->id,
                              crtc.rotation, xcb_randr_get_crtc_info_outputs_length(&crtc),
                              xcb_randr_get_crtc_info_outputs(&crtc)),
                          &error),
                      error);
    if (!result || result->status != XCB_RANDR_SET_CONFIG_SUCCESS) return false;
    // With one screen in use, the screen shrinks to the mode, as a mode
    // change on a single monitor does.
    if (connection_->OnlyActiveCrtc(*active)) connection_->SetScreenSize(needWidth, needHeight);
    return true;
}

ModeChange ClassifyModeChange(int16_t width, int16_t height, int16_t depth, int16_t frequency) {
    const bool w = width != 0, h = height != 0, d = depth != 0, f = frequency != 0;
    if (!w && !h && !d && !f) return ModeChange::None;
    if (w && h && !d && !f) return ModeChange::ChangeResol;
    if (!w && !h && d && !f) return ModeChange::ChangeColor;
    if (!w && !h && !d && f) return ModeChange::ChangeFreq;
    if (w && h && d && f) return ModeChange::ChangeAll;
    return ModeChange::Unchanged;
}

void modresolution::SaveDisplayMode() {
    // Without the mode found there would be nothing to put back at the end,
    // so a screen that cannot be read is left alone.
    std::optional<DisplayMode> current = modes_.Current();
    if (!current) return;
    record_ = *current;
    startMode_ = *current;
    // The frequency is not looked at. Where the depth is fixed for the
    // session, the depth of the screen counts as the one needed.
    const bool rightSize =
        current->width == kCaptureMode.width && current->height == kCaptureMode.height;
    const bool rightDepth = current->depth == kCaptureMode.depth || modes_.DepthIsFixed();
    if (rightSize && rightDepth) return;
    // Whoever puts the mode back after a crash reads it from the note, so
    // without one the screen is better left alone.
    if (note_ != nullptr && !note_->Write(startMode_)) return;
    SetDisplayMode(kCaptureMode.width, kCaptureMode.height, kCaptureMode.depth,
                   kCaptureMode.frequency);
}

void modresolution::RestoreDisplayMode() {
    SetDisplayMode(startMode_.width, startMode_.height, startMode_.depth, startMode_.frequency);
    startMode_ = DisplayMode{};
    if (note_ != nullptr) note_->Remove();
}

void modresolution::SetDisplayMode(int16_t width, int16_t height, int16_t depth,
                                   int16_t frequency) {
    switch (ClassifyModeChange(width, height, depth, frequency)) {
        case ModeChange::None:
            return;
        case ModeChange::ChangeResol:
            record_ = {width, height, lastSet_.depth, lastSet_.frequency};
            lastSet_.width = width;
            lastSet_.height = height;
            break;
        case ModeChange::ChangeColor:
            record_ = {lastSet_.width, lastSet_.height, depth, lastSet_.frequency};
            lastSet_.depth = depth;
            break;
        case ModeChange::ChangeFreq:
            record_ = {lastSet_.width, lastSet_.height, lastSet_.depth, frequency};
            lastSet_.frequency = frequency;
            break;
        case ModeChange::ChangeAll:
            record_ = {width, height, depth, frequency};
            lastSet_ = record_;
            break;
        case ModeChange::Unchanged:
            break;
    }
    // A refused change is not noticed: the program goes on in the mode it has.
    modes_.Apply(record_);
}

}  // namespace felthawk
