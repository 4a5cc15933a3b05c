// Velmora Data Eraser: the desktop application.
#include "gui/app/AppDelegate.h"
#include "gui/app/HelperToolsCheck.h"
#include "gui/app/MainWindowController.h"
#include "gui/widgets/Style.h"

#include <QApplication>
#include <cstdio>
#include <string_view>

namespace {

const char* const kUsage =
    "usage: velmora [Qt options]\n"
    "       velmora --help | --version\n"
    "Starts Velmora Data Eraser. A second start brings the running window forward.\n"
    "Qt's own options apply, e.g. -platform offscreen. velmora-cli offers the same jobs in a terminal.\n";

}  // namespace

int main(int argc, char* argv[]) {
    // Answered before the application object exists, so they work without a display.
    if (argc == 2 && std::string_view(argv[1]) == "--version") {
        std::printf("velmora (Velmora Data Eraser) %s\n", VELMORA_VERSION);
        return 0;
    }
    if (argc == 2 && (std::string_view(argv[1]) == "--help" || std::string_view(argv[1]) == "-h")) {
        std::fputs(kUsage, stdout);
        return 0;
    }
    // On macOS a start without arguments hands over to the enclosing launcher
    // application; on Linux there is no launcher, so the application always
    // starts normally.
    QApplication app(argc, argv);
    QApplication::setOrganizationName("Velmora");
    QApplication::setApplicationName("Velmora Data Eraser");
    QApplication::setApplicationDisplayName("Velmora Data Eraser");
    QApplication::setApplicationVersion(VELMORA_VERSION);
    // Ties the windows to the installed launcher entry (its icon and name on Wayland).
    QGuiApplication::setDesktopFileName("app.velmora.dataeraser");

    velmora::AppDelegate delegate;
    delegate.awakeFromNib();
    velmora::Style::apply(app);
    if (!delegate.applicationDidFinishLaunching()) return 0;
    velmora::warnAboutMissingHelperTools(delegate.mainWindowController());
    return app.exec();
}
