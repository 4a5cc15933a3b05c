#include "gui/volumes/FormatTypeViewController.h"

#include "gui/widgets/Style.h"

namespace velmora {

FormatTypeViewController::FormatTypeViewController(const QList<FormatChoice>& choices, const QString& currentType,
                                                   QWidget* parent)
    : QMenu(parent), m_choices(choices) {
    setFont(Style::regularFont(13));
    for (const FormatChoice& choice : choices) {
        QAction* item = addAction(choice.typeText);
        item->setData(choice.identifier);
        item->setCheckable(true);
        item->setChecked(choice.typeText == currentType);
        connect(item, &QAction::triggered, this, [this, identifier = choice.identifier] {
            emit selectFormatbyType(identifier);
        });
    }
}

QAction* FormatTypeViewController::actionForType(int identifier) const {
    for (QAction* item : actions())
        if (item->data().toInt() == identifier) return item;
    return nullptr;
}

}  // namespace velmora
