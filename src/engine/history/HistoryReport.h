#pragma once

#include "engine/history/DoDataBase.h"

#include <QDateTime>
#include <QString>

namespace velmora {

// The HTML report of one history entry, shared by the history panel and
// velmora-cli: a fixed header, one table row for the key and one per entry row,
// and a fixed footer, all on one line with the report's fixed spacing.
class HistoryReport {
public:
    // The name the save panel proposes: "ErasureHistory(<key of `when`>)".
    static QString proposedFileName(const QDateTime& when = QDateTime::currentDateTime());
    // The save panel's target: ".html" is appended to whatever the user chose.
    static QString exportPath(const QString& chosenPath);

    static QString html(const QString& key, const HistoryRows& rows);
    // Writes html() atomically in UTF-8 to exactly `path` (mode 0600), replacing a
    // file or link of that name without following the link; false when it failed.
    static bool writeHTML(const QString& path, const QString& key, const HistoryRows& rows);
};

}  // namespace velmora
