#include "gui/history/HistoryDeleteTextFieldCell.h"

#include "gui/widgets/ImageToggle.h"

#include <QHBoxLayout>

namespace velmora {

HistoryDeleteTextFieldCell::HistoryDeleteTextFieldCell(const QString& date, QWidget* parent)
    : QWidget(parent),
      m_date(date),
      m_exportButton(new ImageToggle("ic_export", this, 20)),
      m_deleteButton(new ImageToggle("ic_delete", this, 20)) {
    m_exportButton->setToolTip("Export as HTML");
    m_deleteButton->setToolTip("Delete");
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(6, 0, 10, 0);
    layout->setSpacing(14);
    layout->addStretch(1);
    layout->addWidget(m_exportButton);
    layout->addWidget(m_deleteButton);
    connect(m_exportButton, &ImageToggle::clicked, this, [this] { emit clickExportWithDate(m_date); });
    connect(m_deleteButton, &ImageToggle::clicked, this, [this] { emit clickDeleteWithDate(m_date); });
}

void HistoryDeleteTextFieldCell::setButtonsVisible(bool visible) {
    m_exportButton->setVisible(visible);
    m_deleteButton->setVisible(visible);
}

}  // namespace velmora
