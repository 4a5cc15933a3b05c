#include "engine/platform/SteadyWiperBase.h"

#include "engine/platform/PropertyList.h"
#include "engine/platform/StandardPaths.h"

#include <QFile>

namespace velmora {
namespace {

// "VersionCheck" and "Link" describe the installed build, not the user: when the
// user's copy was made by another build (an upgrade), they are taken over from the
// template, so a new build neither reports the old build number nor keeps old addresses.
void takeOverBuildEntries(const QString& target, const QVariantMap& shipped) {
    QVariantMap settings = propertyListFromFile(target).toMap();
    if (settings.isEmpty() || settings.value("VersionCheck") == shipped.value("VersionCheck")) return;
    settings.insert("VersionCheck", shipped.value("VersionCheck"));
    settings.insert("Link", shipped.value("Link"));
    writePropertyListAtomically(target, settings);
}

void seedFromTemplate(const QString& target) {
    QVariantMap settings = propertyListFromFile(":/templates/SteadyWiperBase.plist").toMap();
    if (QFile::exists(target)) return takeOverBuildEntries(target, settings);
    // The template cannot know who runs the application; the user name is
    // filled in once, when the user's own copy is made.
    settings.insert("USERNAME", QString::fromLocal8Bit(qgetenv("USER")));
    writePropertyListAtomically(target, settings);
}

}  // namespace

QString SteadyWiperBase::path() {
    const QString target = StandardPaths::dataDir() + "/SteadyWiperBase.plist";
    seedFromTemplate(target);
    return target;
}

QVariantMap SteadyWiperBase::read() { return propertyListFromFile(path()).toMap(); }

bool SteadyWiperBase::write(const QVariantMap& settings) { return writePropertyListAtomically(path(), settings); }

QString SteadyWiperBase::stringValue(const QString& key) { return read().value(key).toString(); }

bool SteadyWiperBase::setStringValue(const QString& key, const QString& value) {
    QVariantMap settings = read();
    settings.insert(key, value);
    return write(settings);
}

}  // namespace velmora
