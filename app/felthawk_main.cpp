// felthawk: the desktop program. Creates the platform services and the main
// window, runs the start order and hands over to the event loop.
#include <unistd.h>
#include <csignal>

#include <QApplication>
#include <QSocketNotifier>

#include "board/frm_felthawk.h"
#include "board/services.h"
#include "capture/capture_service.h"
#include "mail/mail_service.h"
#include "online/banner_service.h"
#include "online/desktop.h"
#include "online/update_service.h"
#include "settings/dialogs.h"
#include "settings/display_mode.h"

namespace {

// SIGINT and SIGTERM close the main window like "Exit" does, so the display
// mode is put back. The handler only writes a byte to a pipe; the event loop
// reads it.
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
    });
    struct sigaction action {};
    action.sa_handler = OnSignal;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
}

}  // namespace

int main(int argc, char* argv[]) {
    QApplication app(argc, argv);
    QApplication::setOrganizationName(QStringLiteral("FELTHAWK"));
    QApplication::setApplicationName(QStringLiteral("FELTHAWK"));

    felthawk::QtDialogs dialogs;
    felthawk::BoardServices services;

    // The services, one line each.
    felthawk::XRandrDisplayModes displayModes;
    felthawk::modresolution display(displayModes);
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
    window.FormLoad();
    if (window.Unloaded()) return 0;
    window.show();
    return app.exec();
}
