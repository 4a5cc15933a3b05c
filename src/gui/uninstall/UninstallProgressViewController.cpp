#include "gui/uninstall/UninstallProgressViewController.h"

#include "engine/platform/NativePath.h"
#include "gui/widgets/ImageSetButton.h"
#include "gui/widgets/RFOverlayScroller.h"
#include "gui/widgets/Style.h"
#include "gui/widgets/SvgImageView.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QListWidget>
#include <QProgressBar>
#include <QStackedWidget>
#include <QVBoxLayout>

namespace velmora {

UninstallProgressViewController::UninstallProgressViewController(QWidget* parent)
    : MAAttachedWindow(parent, {500, 200}), m_views(new QStackedWidget(this)) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_views);
    m_views->addWidget(createProgressView());
    m_views->addWidget(createEndView());
}

QWidget* UninstallProgressViewController::createProgressView() {
    auto* view = new QWidget(m_views);
    auto* layout = new QVBoxLayout(view);
    layout->setContentsMargins(28, 26, 28, 22);
    layout->setSpacing(10);
    layout->addWidget(Style::label("Uninstalling…", 15, false, true));
    layout->addWidget(Style::label("Removing the applications and their files.", 12, true));
    layout->addSpacing(10);
    m_bar = new QProgressBar(view);
    Style::styleProgressBar(*m_bar, 100);
    layout->addWidget(m_bar);
    m_pathLabel = Style::label(QString(), 11, true);
    m_pathLabel->setObjectName("pathLabel");
    m_pathLabel->setTextFormat(Qt::PlainText);
    layout->addWidget(m_pathLabel);
    layout->addStretch(1);
    return view;
}

QWidget* UninstallProgressViewController::createEndView() {
    auto* view = new QWidget(m_views);
    auto* layout = new QVBoxLayout(view);
    layout->setContentsMargins(28, 24, 28, 20);
    layout->setSpacing(10);
    auto* top = new QHBoxLayout;
    top->setSpacing(18);
    m_endImage = new SvgImageView("ic_success", {44, 44}, view);
    top->addWidget(m_endImage, 0, Qt::AlignTop);
    auto* texts = new QVBoxLayout;
    texts->setSpacing(6);
    m_endTitle = Style::label("Uninstall complete", 15, false, true);
    texts->addWidget(m_endTitle);
    m_messageLabel = Style::label(QString(), 12, true);
    m_messageLabel->setObjectName("endMessage");
    m_messageLabel->setTextFormat(Qt::PlainText);
    m_messageLabel->setWordWrap(true);
    texts->addWidget(m_messageLabel);
    top->addLayout(texts, 1);
    layout->addLayout(top);

    m_failureList = new QListWidget(view);
    m_failureList->setObjectName("failureList");
    m_failureList->setFocusPolicy(Qt::NoFocus);
    m_failureList->setSelectionMode(QAbstractItemView::NoSelection);
    m_failureList->setWordWrap(true);
    m_failureList->setFont(Style::regularFont(11));
    m_failureList->setStyleSheet("QListWidget { background: rgba(0,0,0,40); border: none; border-radius: 6px;"
                                 " color: rgba(255,255,255,200); }");
    RFOverlayScroller::apply(m_failureList);
    m_failureList->hide();
    layout->addWidget(m_failureList, 1);
    layout->addStretch(0);

    m_okButton = ImageSetButton::primary("OK", view);
    m_okButton->setFixedWidth(110);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(m_okButton);
    layout->addLayout(buttons);
    connect(m_okButton, &QPushButton::clicked, this, [this] {
        emit okButtonAction();
        accept();
    });
    return view;
}

void UninstallProgressViewController::changeProgressValue(int percent, const QString& path) {
    m_path = displayPath(path);
    m_bar->setValue(percent);
    m_pathLabel->setText(m_pathLabel->fontMetrics().elidedText(m_path, Qt::ElideMiddle, width() - 56));
    m_pathLabel->setToolTip(m_path);
    if (percent >= 100) {
        m_views->setCurrentIndex(1);
        m_okButton->setFocus();
    }
}

void UninstallProgressViewController::changeLabel(const QString& message) { m_messageLabel->setText(message); }

void UninstallProgressViewController::setFailures(const QStringList& failures) {
    m_failureList->clear();
    m_failureList->addItems(failures);
    // A long path may still not fit on its wrapped lines: the whole text is the tool tip.
    for (int row = 0; row < m_failureList->count(); ++row)
        m_failureList->item(row)->setToolTip(failures.at(row));
    m_failureList->setVisible(!failures.isEmpty());
    // The list needs room; without it the panel stays small.
    setFixedSize(500, failures.isEmpty() ? 200 : 320);
    centreOnParent();
    m_endImage->setImageName(failures.isEmpty() ? "ic_success" : "ic_warning");
    m_endTitle->setText(failures.isEmpty() ? "Uninstall complete" : "Some items were not removed");
}

int UninstallProgressViewController::progressValue() const { return m_bar->value(); }
QString UninstallProgressViewController::messageText() const { return m_messageLabel->text(); }
bool UninstallProgressViewController::isEndViewShown() const { return m_views->currentIndex() == 1; }

void UninstallProgressViewController::keyPressEvent(QKeyEvent* event) {
    const int key = event->key();
    if (key == Qt::Key_Escape || key == Qt::Key_Return || key == Qt::Key_Enter) {
        if (isEndViewShown()) m_okButton->click();
        return;
    }
    MAAttachedWindow::keyPressEvent(event);
}

}  // namespace velmora
