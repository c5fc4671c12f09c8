// An X desktop of the test's own: Xvfb on a display number it picks itself,
// a window manager on it when asked, and a 1024x768 mode offered by a
// "monitor" that the test controls.
#pragma once

#include <xcb/randr.h>
#include <xcb/xcb.h>

#include <chrono>
#include <cstdlib>
#include <memory>
#include <thread>

#include <QProcess>
#include <QProcessEnvironment>

namespace felthawk::testing {

// Xvfb; Display() is "" when it did not come up.
class Xvfb {
  public:
    explicit Xvfb(const QString& screen) {
        process_.start("Xvfb", {"-displayfd", "1", "-screen", "0", screen, "-nolisten", "tcp"});
        while (display_.isEmpty() && process_.waitForReadyRead(10000)) {
            if (process_.canReadLine()) display_ = ":" + process_.readLine().trimmed();
        }
    }
    ~Xvfb() {
        windowManager_.terminate();
        windowManager_.waitForFinished(5000);
        process_.terminate();
        process_.waitForFinished(5000);
    }
    const char* Display() const { return display_.constData(); }

    // Starts openbox and waits until it manages the screen; false when it
    // did not within `limit`.
    bool StartWindowManager(std::chrono::milliseconds limit = std::chrono::seconds(20)) {
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert("DISPLAY", QString::fromLatin1(display_));
        windowManager_.setProcessEnvironment(env);
        windowManager_.start("openbox", {"--sm-disable"});
        if (!windowManager_.waitForStarted(10000)) return false;
        xcb_connection_t* c = xcb_connect(display_.constData(), nullptr);
        const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(c)).data->root;
        const char name[] = "_NET_SUPPORTING_WM_CHECK";
        auto* atom =
            xcb_intern_atom_reply(c, xcb_intern_atom(c, 0, sizeof name - 1, name), nullptr);
        bool managed = false;
        const auto end = std::chrono::steady_clock::now() + limit;
        while (atom != nullptr && !managed && std::chrono::steady_clock::now() < end) {
            auto* reply = xcb_get_property_reply(
                c, xcb_get_property(c, 0, root, atom->atom, XCB_ATOM_WINDOW, 0, 1), nullptr);
            managed = reply != nullptr && xcb_get_property_value_length(reply) > 0;
            std::free(reply);
            if (!managed) std::this_thread::sleep_for(std::chrono::milliseconds(50));
        }
        std::free(atom);
        xcb_disconnect(c);
        return managed;
    }

  private:
    QProcess process_;
    QProcess windowManager_;
    QByteArray display_;
};

// Offers 1024x768 at 60 Hz (the VESA timings) on the first output, as a
// monitor would; the server drops the mode when the returned connection closes.
using Connection = std::unique_ptr<xcb_connection_t, void (*)(xcb_connection_t*)>;
inline Connection OfferCaptureMode(const char* display) {
    Connection conn(xcb_connect(display, nullptr), xcb_disconnect);
    xcb_connection_t* c = conn.get();
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(c)).data->root;
    std::free(xcb_randr_query_version_reply(c, xcb_randr_query_version(c, 1, 2), nullptr));
    auto* resources = xcb_randr_get_screen_resources_current_reply(
        c, xcb_randr_get_screen_resources_current(c, root), nullptr);
    if (resources == nullptr) return conn;
    const xcb_randr_output_t output = xcb_randr_get_screen_resources_current_outputs(resources)[0];
    std::free(resources);
    const char name[] = "1024x768_60";
    // Id, size, dot clock, horizontal sync, total and skew, vertical sync and
    // total, name length, flags.
    const xcb_randr_mode_info_t mode{0,   1024, 768, 65000000,        1048, 1184, 1344, 0,
                                     771, 777,  806, sizeof name - 1, 0};
    auto* created = xcb_randr_create_mode_reply(
        c, xcb_randr_create_mode(c, root, mode, mode.name_len, name), nullptr);
    if (created == nullptr) return conn;
    std::free(xcb_request_check(c, xcb_randr_add_output_mode_checked(c, output, created->mode)));
    std::free(created);
    return conn;
}

}  // namespace felthawk::testing
