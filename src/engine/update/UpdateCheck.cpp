#include "engine/update/UpdateCheck.h"

#include "engine/erase/PublicUtilities.h"
#include "engine/platform/PropertyList.h"
#include "engine/platform/SteadyWiperBase.h"
#include "engine/platform/UserDefaults.h"
#include "engine/update/HttpGet.h"
#include "engine/update/KxLinkUrl.h"

#include <QRegularExpression>

namespace velmora::UpdateCheck {
namespace {

// Stored as 1 when the user turned the launch check off, so that a missing value
// (0) means on.
constexpr const char* kNoLaunchCheckKey = "NoUpdateCheckAtStartup";

}  // namespace

UpdateList fetchUpdateList() {
    UpdateList list;
    const QString address = KxLinkUrl::GetUrl("IniURL");
    if (address.isEmpty()) {
        list.failure = "this build has no update address";
        return list;
    }
    const HttpReply reply = httpGet(QUrl(address), kListTimeoutMs, kListMaxBytes);
    if (!reply.ok()) {
        list.failure = reply.failure;
        return list;
    }
    const QVariant value = propertyListFromData(reply.body);
    if (value.typeId() != QMetaType::QVariantMap) {
        list.failure = "the update list is not a property-list dictionary";
        return list;
    }
    list.fetched = true;
    list.dictionary = value.toMap();
    return list;
}

qint64 integerValue(const QVariant& value) {
    switch (value.typeId()) {
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::Double:
    case QMetaType::Bool:
        return value.toLongLong();
    case QMetaType::QString: {
        static const QRegularExpression leadingNumber(R"(^\s*([+-]?\d{1,18}))");
        const QRegularExpressionMatch match = leadingNumber.match(value.toString());
        return match.hasMatch() ? match.captured(1).toLongLong() : 0;
    }
    default:
        return 0;
    }
}

qint64 localVersionCheck() { return integerValue(SteadyWiperBase::read().value("VersionCheck")); }

bool isNewer(const QVariantMap& remote) { return integerValue(remote.value("VersionCheck")) > localVersionCheck(); }

QVariantMap newerReleaseAtLaunch() {
    const UpdateList list = fetchUpdateList();
    // An unfetched or unreadable list counts as build 0: never newer.
    if (!isNewer(list.dictionary)) return {};
    if (!PublicUtilities::isCanBeUseNetWork()) return {};
    return list.dictionary;
}

QVariantMap notesOf(const QVariantMap& remote) {
    QVariantMap notes = remote;
    notes.remove("VersionCheck");
    notes.remove("Version");
    return notes;
}

QString noteText(const QVariantMap& notes, int number) {
    const QString key = QString::number(number);
    return notes.contains(key) ? notes.value(key).toString() : QStringLiteral("(null)");
}

QStringList numberedNotes(const QVariantMap& notes) {
    QStringList lines;
    for (int number = 1; number <= notes.size(); ++number)
        lines.append(QString("%1.%2").arg(number).arg(noteText(notes, number)));
    return lines;
}

bool launchCheckSetting() { return UserDefaults::integerForKey(kNoLaunchCheckKey) != 1; }

void setLaunchCheckSetting(bool enabled) { UserDefaults::setInteger(kNoLaunchCheckKey, enabled ? 0 : 1); }

bool checksAtLaunch() { return qEnvironmentVariable("VELMORA_NO_UPDATE_CHECK") != "1" && launchCheckSetting(); }

bool hasUpdateAddress() { return !KxLinkUrl::GetUrl("IniURL").isEmpty(); }

}  // namespace velmora::UpdateCheck
