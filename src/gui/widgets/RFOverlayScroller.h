#pragma once

class QAbstractScrollArea;

namespace velmora {

// Thin, translucent scroll bars that sit over the content instead of taking
// room beside it, as on the rest of the application's surfaces.
namespace RFOverlayScroller {
void apply(QAbstractScrollArea* area);
}

}  // namespace velmora
