#include "gui/widgets/LComboBox.h"

#include "gui/widgets/Style.h"

namespace velmora {

LComboBox::LComboBox(QWidget* parent) : QComboBox(parent) {
    setFont(Style::regularFont(12));
    setMinimumHeight(28);
    setStyleSheet(QString(R"(
        QComboBox { background: rgba(255,255,255,18); border: 1px solid rgba(255,255,255,60);
                    border-radius: 5px; padding: 3px 10px; color: white; }
        QComboBox:hover { border-color: %1; }
        QComboBox:focus { border: 2px solid %1; }
        QComboBox::drop-down { border: none; width: 22px; }
        QComboBox QAbstractItemView { background: %2; color: white; selection-background-color: %3;
                                      border: 1px solid rgba(255,255,255,60); outline: 0; }
    )").arg(Style::rgba(Style::kAccent), Style::rgba(Style::kPanel), Style::rgba(Style::kSelection)));
}

}  // namespace velmora
