#pragma once

#include <QDateTime>
#include <QList>
#include <QSharedPointer>
#include <QString>

namespace velmora {

// What a record stands for, which decides how it is removed: files and folders through
// the batch deleter, Flatpak and Snap applications through their manager.
enum class AppKind { File, Bundle, AppImage, AppFolder, Flatpak, Snap, Widget, Plugin };

// One row of the uninstaller: an application, widget or plug-in of the inventory, or one
// file or folder that the related-files scanner found for an application.
struct AMAppItem {
    QString image;          // where the icon comes from: an icon file's path or an icon theme name; may be empty
    QString name;           // display name (bundle extension removed); may hold U+DC80.. bytes, show with displayPath
    QString path;           // absolute path in the lossless NativePath form
    QString bundleID;       // identifier (CFBundleIdentifier, desktop-file id, Flatpak id); may be empty
    bool isSystemApp = false;
    QString bundleVersion;
    QDateTime date;         // creation date of the path
    bool bIsSelected = false;
    QString isSystemAppStr = "NO";
    QString size = "0KB";   // convertVolSpace text once computed
    bool bIsGetSize = false;
    bool isFolder = false;  // a real folder (not a link to one) when the record was made

    AppKind kind = AppKind::File;
    QString installation;   // Flatpak: "user" or "system"
    // Leftover rule: found only because the search term runs on into further letters or
    // digits ("Note" -> "Notebook"). Listed, never pre-ticked.
    bool isPossibleMatch = false;
    // Another installed application's name or identifier matches it too: never pre-ticked.
    QString sharedWith;
    // Whether the confirmation ticks it at first.
    bool preTicked = true;

    static AMAppItem initWithInfoDictionary(const QString& image, const QString& name, const QString& path,
                                            const QString& bundleID, const QString& bundleVersion,
                                            const QDateTime& date, const QString& isSystemAppStr, const QString& size);
};

using AMAppItemPtr = QSharedPointer<AMAppItem>;
using AMAppItemList = QList<AMAppItemPtr>;

}  // namespace velmora
