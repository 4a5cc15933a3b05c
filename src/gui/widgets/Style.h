#pragma once

#include <QColor>
#include <QFont>
#include <QString>

class QApplication;
class QLabel;
class QPainter;
class QProgressBar;
class QRectF;

namespace velmora {

// The one visual style of the application: a dark, calm surface with white text
// and translucent white for secondary text.
namespace Style {

inline const QColor kWindow{0x1E, 0x22, 0x37};
inline const QColor kSidebar{0x17, 0x1A, 0x2B};
inline const QColor kPanel{0x26, 0x2B, 0x45};
inline const QColor kAccent{0x5A, 0xC8, 0xD8};
inline const QColor kText{255, 255, 255};
// Over the window, panel and selection colours this keeps a contrast of at least 4.5:1.
inline const QColor kSecondaryText{255, 255, 255, 160};
inline const QColor kSelection{0x34, 0x3B, 0x5E};

void apply(QApplication& app);
QString imagePath(const QString& name);  // ":/images/<name>.svg"
QString rgba(const QColor& color);       // for style sheets
QFont regularFont(int pointSize);
QFont lightFont(int pointSize);
QFont boldFont(int pointSize);
// A label in the style: white, or half-transparent white for secondary text.
QLabel* label(const QString& text, int pointSize, bool secondary = false, bool bold = false);
// The thin accent bar of the progress views: no text, from 0 to maximum, rounded ends.
void styleProgressBar(QProgressBar& bar, int maximum, int height = 8);
// The ring a control draws around itself while it has the keyboard focus.
void drawFocusRing(QPainter& painter, const QRectF& area, qreal radius);

}  // namespace Style
}  // namespace velmora
