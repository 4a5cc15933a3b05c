#include "gui/inter/BrowserIcon.h"

#include "engine/inter/CatalogueResource.h"
#include "engine/platform/StandardPaths.h"
#include "gui/widgets/Style.h"

#include <QFile>
#include <QFileInfo>
#include <QImageReader>

namespace velmora {
namespace {

bool readableImage(const QString& path) { return QImageReader(path).canRead(); }

// The Icon= value of a .desktop file's [Desktop Entry] group, "" if none.
QString desktopEntryIcon(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) return {};
    bool inEntryGroup = false;
    while (!file.atEnd()) {
        const QString line = QString::fromUtf8(file.readLine()).trimmed();
        if (line.startsWith('[')) {
            inEntryGroup = line == "[Desktop Entry]";
        } else if (inEntryGroup && line.startsWith("Icon=")) {
            return line.mid(5).trimmed();
        }
    }
    return {};
}

QIcon iconOfDesktopEntries(const QStringList& desktopEntries) {
    QStringList dataDirs =
        qEnvironmentVariable("XDG_DATA_DIRS", "/usr/local/share:/usr/share").split(':', Qt::SkipEmptyParts);
    dataDirs.prepend(StandardPaths::applicationSupportDir());
    for (const QString& dir : dataDirs) {
        for (const QString& entry : desktopEntries) {
            const QString name = desktopEntryIcon(dir + "/applications/" + entry);
            if (name.isEmpty()) continue;
            if (QFileInfo(name).isAbsolute()) {
                if (readableImage(name)) return QIcon(name);
            } else if (QIcon::hasThemeIcon(name)) {
                return QIcon::fromTheme(name);
            }
        }
    }
    return {};
}

QIcon platformIcon(const BrowerObj& browser) {
    if (QFileInfo(browser.iconImage).isAbsolute())
        return readableImage(browser.iconImage) ? QIcon(browser.iconImage) : QIcon();
    if (StandardPaths::layout() != StandardPaths::Layout::Linux) return {};
    for (const CatalogueResource::Programs& programs : CatalogueResource::browserPrograms())
        if (programs.key == browser.catalogueKey) return iconOfDesktopEntries(programs.desktopEntries);
    return {};
}

}  // namespace

QIcon artworkIcon(const QString& imageName) {
    if (imageName.isEmpty() || !QFile::exists(Style::imagePath(imageName))) return {};
    return QIcon(Style::imagePath(imageName));
}

QIcon browserIcon(const BrowerObj& browser) {
    QIcon icon = platformIcon(browser);
    if (icon.isNull()) icon = artworkIcon(browser.iconImage);
    return icon.isNull() ? artworkIcon("ic_browser") : icon;
}

}  // namespace velmora
