#include "engine/platform/SteadyWiperBase.h"

#include "engine/platform/PropertyList.h"
#include "engine/platform/StandardPaths.h"

#include <QFile>

namespace velmora {
namespace {

void seedFromTemplate(const QString& target) {
    if (QFile::exists(target)) return;
    QVariantMap settings = propertyListFromFile(":/templates/SteadyWiperBase.plist").toMap();
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
