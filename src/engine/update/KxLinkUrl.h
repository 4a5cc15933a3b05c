#pragma once

#include <QString>

namespace velmora {

// The addresses of the deployment, kept in the "Link" dictionary of "SteadyWiperBase":
// "IniURL" (the update list), "UpdateURL" (the download page) and "ProbeURL" (the
// connectivity probe). VELMORA_INI_URL and VELMORA_PROBE_URL, when set and not empty,
// override "IniURL" and "ProbeURL".
class KxLinkUrl {
public:
    // The address under `key`; empty when the dictionary or the entry is missing or empty.
    static QString GetUrl(const QString& key);
};

}  // namespace velmora
