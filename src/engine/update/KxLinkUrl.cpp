#include "engine/update/KxLinkUrl.h"

#include "engine/platform/SteadyWiperBase.h"

namespace velmora {

QString KxLinkUrl::GetUrl(const QString& key) {
    const char* overrideVariable = key == "IniURL" ? "VELMORA_INI_URL" : key == "ProbeURL" ? "VELMORA_PROBE_URL" : nullptr;
    if (overrideVariable) {
        const QString address = qEnvironmentVariable(overrideVariable);
        if (!address.isEmpty()) return address;
    }
    return SteadyWiperBase::read().value("Link").toMap().value(key).toString();
}

}  // namespace velmora
