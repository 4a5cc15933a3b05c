#include "engine/erase/PublicUtilities.h"

#include "engine/update/HttpGet.h"
#include "engine/update/KxLinkUrl.h"

namespace velmora {
namespace {

constexpr int kProbeTimeoutMs = 5000;
constexpr qint64 kProbeMaxBytes = 4 << 20;

}  // namespace

bool PublicUtilities::isCanBeUseNetWork() {
    const QString probe = KxLinkUrl::GetUrl("ProbeURL");
    if (probe.isEmpty()) return false;
    // Any answer of the server proves the network, whatever its status.
    return httpGet(QUrl(probe), kProbeTimeoutMs, kProbeMaxBytes).answered;
}

}  // namespace velmora
