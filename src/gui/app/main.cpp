// Velmora Data Eraser: the desktop application.
#include "gui/app/AppDelegate.h"
#include "gui/widgets/Style.h"

#include <QApplication>

int main(int argc, char* argv[]) {
    // On macOS a start without arguments hands over to the enclosing launcher
    // application; on Linux there is no launcher, so the application always
    // starts normally.
    QApplication app(argc, argv);
    QApplication::setOrganizationName("Velmora");
    QApplication::setApplicationName("Velmora Data Eraser");
    QApplication::setApplicationDisplayName("Velmora Data Eraser");

    velmora::AppDelegate delegate;
    delegate.awakeFromNib();
    velmora::Style::apply(app);
    if (!delegate.applicationDidFinishLaunching()) return 0;
    return app.exec();
}
