#include "engine/platform/NotificationCenter.h"

namespace velmora {

NotificationCenter* NotificationCenter::defaultCenter() {
    static NotificationCenter center;
    return &center;
}

void NotificationCenter::post(const QString& name, const QVariant& object) { emit posted(name, object); }

}  // namespace velmora
