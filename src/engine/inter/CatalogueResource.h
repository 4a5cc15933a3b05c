#pragma once

#include <QList>
#include <QPair>
#include <QString>
#include <QStringList>

namespace velmora::CatalogueResource {

// One category of the catalogue: its name and its path formats (usually one; where a
// browser moved a file, the newer place first).
struct Category {
    QString name;
    QStringList pathFormats;
};

struct Browser {
    QString key;
    QList<Category> categories;
};

// What finds and recognises a browser on Linux (the macOS layout finds applications).
struct Programs {
    QString key;
    QString rules;              // "Google Chrome", "Firefox", "Opera"
    QString profileFormat;      // the folder whose presence means installed
    QStringList programs;       // executables that make it running
    QStringList executables;    // program names looked up in PATH
    QStringList desktopEntries; // .desktop file names
    QString icon;
};

// The "EraserHistory" catalogue of the current layout, in the resource's own order.
QList<Browser> eraserHistory();
// The Linux browser programs, in the resource's own order.
QList<Programs> browserPrograms();

}  // namespace velmora::CatalogueResource
