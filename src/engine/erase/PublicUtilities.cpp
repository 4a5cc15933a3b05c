#include "engine/erase/PublicUtilities.h"

#include "engine/erase/EraserLevel.h"
#include "engine/platform/SteadyWiperBase.h"

namespace velmora {

QString PublicUtilities::getEraserTimes() { return EraserLevel::displayName(EraserLevel::stored()); }

void PublicUtilities::writeUpDataHistoryStr(const QString& key, const QString& value) {
    SteadyWiperBase::setStringValue(key, value);
}

QString PublicUtilities::getUpDataHistoryStr(const QString& key) { return SteadyWiperBase::stringValue(key); }

}  // namespace velmora
