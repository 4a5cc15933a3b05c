#pragma once

#include <QString>

namespace velmora {

// A style sheet that draws the indicators of a widget class (QCheckBox, QTreeView) with
// the application's check box images, the partly ticked state included.
QString checkBoxStyleSheet(const QString& widgetClass);

}  // namespace velmora
