// felthawk: the desktop program. Creates the platform services and the main
// window, runs the start order and hands over to the event loop.
#include <unistd.h>
#include <xcb/xcb.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>

#include <QApplication>
#include <QDir>
#include <QSocketNotifier>
#include <QStandardPaths>

#include "board/frm_felthawk.h"
#include "board/services.h"
#include "board/single_instance.h"
#include "capture/capture_service.h"
#include "mail/mail_service.h"
#include "online/banner_service.h"
#include "online/desktop.h"
#include "online/update_service.h"
#include "settings/dialogs.h"
#include "settings/display_guard.h"
#include "settings/display_mode.h"

namespace {

// SIGINT and SIGTERM close the main window like "Exit" does, so the display
// mode is put back, and then end every event loop: the splash's, a modal
// dialogue's, a download's, and the main one. The handler only writes a byte
// to a pipe; whichever event loop runs reads it.
int gSignalPipe[2] = {-1, -1};

void OnSignal(int) {
    const char byte = 1;
    [[maybe_unused]] const ssize_t written = write(gSignalPipe[1], &byte, 1);
}

void CloseOnSignals(QWidget& window) {
    if (pipe(gSignalPipe) != 0) return;
    auto* notifier = new QSocketNotifier(gSignalPipe[0], QSocketNotifier::Read, &window);
    QObject::connect(notifier, &QSocketNotifier::activated, &window, [&window] {
        char byte = 0;
        [[maybe_unused]] const ssize_t got = read(gSignalPipe[0], &byte, 1);
        window.close();
        // Unlike quit(), exit() also ends the loops that run before the main
        // one starts, and keeps any later one from starting.
        QCoreApplication::exit(0);
    });
    struct sigaction action {};
    action.sa_handler = OnSignal;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
}

// Qt ends the program with an abort when the X display cannot be opened.
// Say plainly what is missing and how to get it instead, in one line.
bool DisplayMissing() {
    const QByteArray platform = qgetenv("QT_QPA_PLATFORM");
    if (!platform.isEmpty() && !platform.startsWith("xcb")) return false;
    xcb_connection_t* connection = xcb_connect(nullptr, nullptr);
    const bool missing = xcb_connection_has_error(connection) != 0;
    xcb_disconnect(connection);
    if (!missing) return false;
    const char* display = std::getenv("DISPLAY");
    const QByteArray what = display == nullptr || *display == '\0'
                                ? QByteArrayLiteral("there is no display (DISPLAY is not set)")
                                : "cannot open the X display \"" + QByteArray(display) + '"';
    std::fprintf(stderr,
                 "felthawk: %s; start it on a virtual screen with: xvfb-run -s \"-screen 0 "
                 "1280x1024x24\" felthawk\n",
                 what.constData());
    return true;
}

}  // namespace

int main(int argc, char* argv[]) {
    if (DisplayMissing()) return 1;
    QApplication::setOrganizationName(QStringLiteral("FELTHAWK"));
    QApplication::setApplicationName(QStringLiteral("FELTHAWK"));
    const QString dataFolder = QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
    QDir().mkpath(dataFolder);
    const QString displayName = qEnvironmentVariable("DISPLAY");

    // One Felthawk per user and display: a second start raises the first.
    felthawk::SingleInstance instance(dataFolder, displayName);
    if (!instance.Acquire()) {
        QCoreApplication raiser(argc, argv);
        if (!instance.RaiseRunning())
            std::fputs("felthawk: already running on this display\n", stderr);
        return 0;
    }
    // The screen first: a mode left switched by a run that did not end
    // cleanly goes back before this run notes the mode it finds; then the
    // guard, forked while this process has no other thread.
    const felthawk::DisplayModeNote note(
        felthawk::DisplayModeNote::PathFor(dataFolder, displayName));
    {
        felthawk::XRandrDisplayModes modes;
        felthawk::RestoreNotedMode(note, modes);
    }
    felthawk::StartDisplayGuard(note.Path().toStdString(), displayName.toStdString());

    QApplication app(argc, argv);
    felthawk::QtDialogs dialogs;
    felthawk::BoardServices services;

    // The services, one line each.
    felthawk::XRandrDisplayModes displayModes;
    felthawk::modresolution display(displayModes, &note);
    services.display = &display;
    felthawk::QtDesktop desktop;
    const felthawk::OnlineConfig online = felthawk::OnlineConfig::FromEnvironment();
    felthawk::UpdateService update(dialogs, desktop, online);
    services.update = &update;
    felthawk::BannerService banners(desktop, online);
    services.banners = &banners;
    felthawk::MailService mail(dialogs);
    services.mail = &mail;
    felthawk::CaptureService capture(dialogs);
    services.capture = &capture;

    felthawk::frmFelthawk window(services, dialogs);
    CloseOnSignals(window);
    instance.Listen([&window] {
        // During the splash the window is not up yet; the splash is in front.
        if (!window.isVisible()) return;
        window.showNormal();
        window.raise();
        window.activateWindow();
    });
    window.FormLoad();
    if (window.Unloaded()) return 0;
    window.show();
    return app.exec();
}
