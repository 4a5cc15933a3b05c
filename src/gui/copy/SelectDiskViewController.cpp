#include "gui/copy/SelectDiskViewController.h"

#include "gui/copy/DiskListViewController.h"
#include "gui/widgets/RFOverlayScroller.h"
#include "gui/widgets/Style.h"

#include <QKeyEvent>
#include <QLabel>
#include <QScrollArea>
#include <QVBoxLayout>

namespace velmora {

SelectDiskViewController::SelectDiskViewController(const QString& heading, QWidget* parent)
    : QWidget(parent),
      m_scrollArea(new QScrollArea(this)),
      m_list(new QWidget),
      m_listLayout(new QVBoxLayout(m_list)),
      m_emptyLabel(Style::label("No volume found.", 12, true)) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(8);
    layout->addWidget(Style::label(heading, 13, false, true));
    m_scrollArea->setWidgetResizable(true);
    m_scrollArea->setFrameShape(QFrame::NoFrame);
    m_scrollArea->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_scrollArea->setFocusPolicy(Qt::NoFocus);
    m_scrollArea->setStyleSheet("QScrollArea { background: transparent; } QScrollArea > QWidget > QWidget { background: transparent; }");
    RFOverlayScroller::apply(m_scrollArea);
    m_listLayout->setContentsMargins(2, 2, 6, 2);
    m_listLayout->setSpacing(4);
    m_listLayout->addWidget(m_emptyLabel);
    m_listLayout->addStretch(1);
    m_scrollArea->setWidget(m_list);
    layout->addWidget(m_scrollArea, 1);
}

void SelectDiskViewController::setVolumes(const VolumeList& volumes) {
    qDeleteAll(m_rows);
    m_rows.clear();
    for (const VolumeObj& volume : volumes) {
        auto* row = new DiskListViewController(volume, m_list);
        row->installEventFilter(this);
        connect(row, &DiskListViewController::chosen, this, &SelectDiskViewController::doSelectDiskWithVolume);
        m_listLayout->insertWidget(int(m_rows.size()), row);
        m_rows.append(row);
    }
    m_emptyLabel->setVisible(m_rows.isEmpty());
    setChosenPath(m_chosenPath);
}

void SelectDiskViewController::setChosenPath(const QString& volumePath) {
    m_chosenPath = volumePath;
    for (DiskListViewController* row : std::as_const(m_rows))
        row->setChosen(!volumePath.isEmpty() && row->volume().volumePath == volumePath);
}

DiskListViewController* SelectDiskViewController::rowOfPath(const QString& volumePath) const {
    for (DiskListViewController* row : m_rows)
        if (row->volume().volumePath == volumePath) return row;
    return nullptr;
}

bool SelectDiskViewController::eventFilter(QObject* watched, QEvent* event) {
    // A row reached with Tab is scrolled into view, so the ring is never out of sight.
    if (event->type() == QEvent::FocusIn) m_scrollArea->ensureWidgetVisible(static_cast<QWidget*>(watched));
    if (event->type() != QEvent::KeyPress) return QWidget::eventFilter(watched, event);
    const int key = static_cast<QKeyEvent*>(event)->key();
    if (key != Qt::Key_Up && key != Qt::Key_Down) return false;
    const int index = int(m_rows.indexOf(static_cast<DiskListViewController*>(watched)));
    const int next = index + (key == Qt::Key_Down ? 1 : -1);
    if (index < 0 || next < 0 || next >= m_rows.size()) return true;
    DiskListViewController* row = m_rows.at(next);
    row->setFocus(Qt::TabFocusReason);
    m_scrollArea->ensureWidgetVisible(row);
    emit doSelectDiskWithVolume(row->volume());
    return true;
}

}  // namespace velmora
