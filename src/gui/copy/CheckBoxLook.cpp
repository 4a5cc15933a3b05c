#include "gui/copy/CheckBoxLook.h"

#include "gui/widgets/Style.h"

namespace velmora {

QString checkBoxStyleSheet(const QString& widgetClass) {
    return QString("%1::indicator { width: 16px; height: 16px; }"
                   "%1::indicator:unchecked { image: url(%2); }"
                   "%1::indicator:checked { image: url(%3); }"
                   "%1::indicator:indeterminate { image: url(%4); }")
        .arg(widgetClass, Style::imagePath("checkbox_no"), Style::imagePath("checkbox_yes"),
             Style::imagePath("checkbox_election"));
}

}  // namespace velmora
