#include "gui/widgets/RFOverlayScroller.h"

#include <QAbstractScrollArea>
#include <QScrollBar>

namespace velmora::RFOverlayScroller {

void apply(QAbstractScrollArea* area) {
    const char* style = R"(
        QScrollBar:vertical { background: transparent; width: 8px; margin: 2px; }
        QScrollBar:horizontal { background: transparent; height: 8px; margin: 2px; }
        QScrollBar::handle { background: rgba(255,255,255,70); border-radius: 2px; min-height: 24px; min-width: 24px; }
        QScrollBar::handle:hover { background: rgba(255,255,255,120); }
        QScrollBar::add-line, QScrollBar::sub-line { width: 0; height: 0; }
        QScrollBar::add-page, QScrollBar::sub-page { background: transparent; }
    )";
    area->verticalScrollBar()->setStyleSheet(style);
    area->horizontalScrollBar()->setStyleSheet(style);
    area->setFrameShape(QFrame::NoFrame);
}

}  // namespace velmora::RFOverlayScroller
