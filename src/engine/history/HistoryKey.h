#pragma once

#include <QDateTime>
#include <QString>

namespace velmora {

// The key of a history entry: its end time as "YYYY-MM-dd HH-mm-ss" in local
// time. "YYYY" is the week-based year of the user's locale (ICU pattern
// semantics), so in the last days of December it can already read the next
// year. The key is also the join key between the two history tables.
namespace HistoryKey {

constexpr const char* kPattern = "YYYY-MM-dd HH-mm-ss";

// Formats the wall-clock fields of `when` with the week rules of the named
// locale ("en_US", "de_DE", ...).
QString format(const QDateTime& when, const QString& localeName);
// The locale the user formats dates with.
QString userLocaleName();
// The key of the current moment in the user's locale.
QString now();

}  // namespace HistoryKey
}  // namespace velmora
