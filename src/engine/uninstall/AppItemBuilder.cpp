// The records of the related-files scanner and the inventory: one path read into an
// AMAppItem (bundle information, or the Linux counterparts: .desktop entries, AppImage
// integration, Flatpak and Snap install folders, widget metadata).
#include "engine/uninstall/RelatedAppFilesScanner.h"

#include "engine/platform/NativePath.h"
#include "engine/platform/PropertyList.h"
#include "engine/platform/StandardPaths.h"
#include "engine/uninstall/DesktopEntry.h"
#include "engine/volumes/CommUti.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QFile>
#include <fcntl.h>
#include <sys/stat.h>

namespace velmora {
namespace {

const QStringList kBundleExtensions = {"app", "wdgt", "plugin", "webplugin", "component", "mdimporter",
                                       "qlgenerator", "dictionary", "safariextz", "bundle", "prefPane"};

QDateTime creationDate(const QString& path) {
    struct statx info;
    if (::statx(AT_FDCWD, nativePath(path).constData(), AT_SYMLINK_NOFOLLOW, STATX_BTIME | STATX_MTIME, &info) != 0)
        return {};
    const statx_timestamp stamp = (info.stx_mask & STATX_BTIME) ? info.stx_btime : info.stx_mtime;
    return QDateTime::fromMSecsSinceEpoch(qint64(stamp.tv_sec) * 1000 + stamp.tv_nsec / 1000000);
}

bool isFolder(const QString& path) {
    struct stat info;
    return ::lstat(nativePath(path).constData(), &info) == 0 && S_ISDIR(info.st_mode);
}

QString lastComponent(const QString& path) {
    QString trimmed = path;
    while (trimmed.size() > 1 && trimmed.endsWith('/')) trimmed.chop(1);
    return trimmed.section('/', -1);
}

// "Go-1.2-x86_64.AppImage" -> "Go": the file name without version and architecture.
QString appImageBaseName(const QString& fileName) {
    static const QRegularExpression kSuffix("\\.appimage$", QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression kArchitecture("[-_. ](x86[-_]64|amd64|aarch64|arm64|armhf|i[3-6]86)$",
                                                  QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression kVersion("[-_ ]v?\\d.*$", QRegularExpression::CaseInsensitiveOption);
    QString name = fileName;
    name.remove(kSuffix).remove(kArchitecture).remove(kVersion);
    return name.isEmpty() ? fileName : name;
}

QJsonObject jsonFile(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) return {};
    return QJsonDocument::fromJson(file.read(1 << 20)).object();
}

void readBundle(AMAppItem& item) {
    const QVariantMap info = propertyListFromFile(item.path + "/Contents/Info.plist").toMap();
    item.bundleID = info.value("CFBundleIdentifier").toString();
    item.bundleVersion = info.value("CFBundleShortVersionString").toString();
    QString icon = info.value("CFBundleIconFile").toString();
    if (!icon.isEmpty() && !icon.contains('.')) icon += ".icns";
    if (!icon.isEmpty()) item.image = item.path + "/Contents/Resources/" + icon;
    if (!info.isEmpty() || item.path.endsWith(".app")) item.kind = AppKind::Bundle;
}

void readAppImage(AMAppItem& item) {
    item.kind = AppKind::AppImage;
    const DesktopEntry entry = integratedEntryOf(item.path);
    item.name = entry.valid() ? entry.name : appImageBaseName(item.name);
    item.bundleID = entry.valid() ? entry.id : item.name;
    item.bundleVersion = entry.appImageVersion;
    item.image = entry.icon;
}

void readLinuxFolder(AMAppItem& item, const QString& parent) {
    const QString home = StandardPaths::homeDir();
    if (parent.endsWith("/flatpak/app")) {
        item.kind = AppKind::Flatpak;
        item.bundleID = item.name;
        item.installation = item.path.startsWith(home + "/") ? "user" : "system";
        return;
    }
    const QString root = StandardPaths::systemRoot();
    if (parent == (root == "/" ? QString("/snap") : root + "/snap")) {
        item.kind = AppKind::Snap;
        item.bundleID = item.name;
        return;
    }
    if (parent.endsWith("/gnome-shell/extensions")) {
        const QJsonObject metadata = jsonFile(item.path + "/metadata.json");
        item.kind = AppKind::Widget;
        item.bundleID = item.name;
        if (!metadata.value("name").toString().isEmpty()) item.name = metadata.value("name").toString();
        item.bundleVersion = metadata.value("version").toVariant().toString();
        return;
    }
    if (parent.endsWith("/plasma/plasmoids")) {
        const QJsonObject plugin = jsonFile(item.path + "/metadata.json").value("KPlugin").toObject();
        item.kind = AppKind::Widget;
        item.bundleID = plugin.value("Id").toString(item.name);
        if (!plugin.value("Name").toString().isEmpty()) item.name = plugin.value("Name").toString();
        item.bundleVersion = plugin.value("Version").toString();
        return;
    }
    const DesktopEntry launcher = launcherInFolder(item.path);
    if (!launcher.valid()) return;
    item.kind = AppKind::AppFolder;
    item.name = launcher.name;
    item.bundleID = launcher.id;
    item.bundleVersion = launcher.appImageVersion;
    item.image = launcher.icon;
}

}  // namespace

AMAppItemPtr RelatedAppFilesScanner::getAppItemWithFilePath(const QString& path, bool appFlag) {
    Q_UNUSED(appFlag);
    auto item = AMAppItemPtr::create();
    item->path = path;
    item->name = lastComponent(path);
    item->date = creationDate(path);
    const bool folder = isFolder(path);
    item->isFolder = folder;
    const QString extension = item->name.section('.', -1);
    if (folder && item->name.contains('.') && kBundleExtensions.contains(extension)) item->name.chop(extension.size() + 1);
    if (StandardPaths::layout() == StandardPaths::Layout::MacOS || path.endsWith(".app")) {
        if (folder) readBundle(*item);
    } else if (!folder && path.endsWith(".appimage", Qt::CaseInsensitive)) {
        readAppImage(*item);
    } else if (folder) {
        readLinuxFolder(*item, path.section('/', 0, -2));
    }
    item->isSystemApp = item->bundleID.startsWith("com.apple.");
    item->isSystemAppStr = item->isSystemApp ? "YES" : "NO";
    return item;
}

AMAppItemPtr RelatedAppFilesScanner::aConstructItem(const QString& path, bool appFlag) {
    AMAppItemPtr item = getAppItemWithFilePath(path, appFlag);
    item->size = getFileSizeItem(path);
    item->bIsGetSize = true;
    return item;
}

AMAppItemPtr RelatedAppFilesScanner::constructItem(const QString& path, bool appFlag) {
    AMAppItemPtr item = getAppItemWithFilePath(path, appFlag);
    item->size = "0KB";
    return item;
}

QString RelatedAppFilesScanner::getFileSizeItem(const QString& path) {
    return CommUti::convertVolSpace(CommUti::sizeOfFileRef(path));
}

}  // namespace velmora
