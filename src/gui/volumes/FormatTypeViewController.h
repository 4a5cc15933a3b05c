#pragma once

#include "engine/volumes/FormatChoices.h"

#include <QMenu>

namespace velmora {

// The pop-up list of the file systems a volume can be formatted with; each item
// carries its choice's identifier. Choosing one emits selectFormatbyType with it.
class FormatTypeViewController : public QMenu {
    Q_OBJECT
public:
    FormatTypeViewController(const QList<FormatChoice>& choices, const QString& currentType, QWidget* parent);
    const QList<FormatChoice>& choices() const { return m_choices; }
    // The item that carries the identifier, or null.
    QAction* actionForType(int identifier) const;

signals:
    void selectFormatbyType(int identifier);

private:
    QList<FormatChoice> m_choices;
};

}  // namespace velmora
