#pragma once

#include <QString>
#include <QStringList>
#include <QVariantMap>

namespace velmora {

// The remote update list, fetched from "IniURL": a property-list dictionary with
// "VersionCheck" (the newest build number), "Version" (its display version) and the
// change notes under "1", "2", ... .
struct UpdateList {
    bool fetched = false;  // fetched and read as a dictionary
    QString failure;       // why not
    QVariantMap dictionary;
};

namespace UpdateCheck {

constexpr int kListTimeoutMs = 15000;
constexpr qint64 kListMaxBytes = 1 << 20;

// Fetches and reads the list (XML or binary). No address means no connection at all.
UpdateList fetchUpdateList();
// A build number as an integer: a number, or the leading digits of a text; 0 otherwise.
qint64 integerValue(const QVariant& value);
// "VersionCheck" of "SteadyWiperBase": the build number of this release.
qint64 localVersionCheck();
bool isNewer(const QVariantMap& remote);

// The launch-time check: the remote dictionary when a newer build exists and the
// network answers the probe, else an empty map. Nothing is shown by it.
QVariantMap newerReleaseAtLaunch();

// The notes: every entry but "VersionCheck" and "Version".
QVariantMap notesOf(const QVariantMap& remote);
// The numbered note lines as the panel shows them: one per note, "%d.%@" of the
// position and the note stored under that number; a gap in the numbering shows as
// "(null)" and moves the last note out of reach.
QStringList numberedNotes(const QVariantMap& notes);
// The text of the note stored under `number`, "(null)" when there is none.
QString noteText(const QVariantMap& notes, int number);

// Whether the check runs at launch: the user's setting and VELMORA_NO_UPDATE_CHECK=1.
bool checksAtLaunch();
bool launchCheckSetting();
void setLaunchCheckSetting(bool enabled);
// Whether this build has an update address at all ("IniURL" not empty).
bool hasUpdateAddress();

}  // namespace UpdateCheck
}  // namespace velmora
