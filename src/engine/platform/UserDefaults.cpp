#include "engine/platform/UserDefaults.h"

#include <QSettings>
#include <memory>

namespace velmora {
namespace {

std::unique_ptr<QSettings> openDefaults() {
    const QString dataDir = qEnvironmentVariable("VELMORA_DATA_DIR");
    if (!dataDir.isEmpty())
        return std::make_unique<QSettings>(dataDir + "/defaults.ini", QSettings::IniFormat);
    return std::make_unique<QSettings>(QSettings::NativeFormat, QSettings::UserScope, "Velmora", "Velmora Data Eraser");
}

}  // namespace

int UserDefaults::integerForKey(const QString& key) { return openDefaults()->value(key, 0).toInt(); }

void UserDefaults::setInteger(const QString& key, int value) {
    auto defaults = openDefaults();
    defaults->setValue(key, value);
    defaults->sync();
}

}  // namespace velmora
