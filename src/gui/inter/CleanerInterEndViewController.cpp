#include "gui/inter/CleanerInterEndViewController.h"

#include "gui/widgets/ImageSetButton.h"
#include "gui/widgets/PanelContent.h"
#include "gui/widgets/SvgImageView.h"

#include <QKeyEvent>
#include <QLabel>
#include <QVBoxLayout>

namespace velmora {
namespace {

constexpr int kFailuresShown = 3;
constexpr int kMessageWidth = 360;  // the message column of the panel

}  // namespace

CleanerInterEndViewController::CleanerInterEndViewController(QWidget* parent)
    : MAAttachedWindow(parent, {480, 250}), m_okButton(ImageSetButton::primary("OK", this)) {
    QVBoxLayout* layout = PanelContent::addMessage(this, "ic_success", QString(), QString());
    m_image = findChild<SvgImageView*>();
    m_title = findChild<QLabel*>("panelTitle");
    QLabel* message = PanelContent::messageLabel(this);
    message->setTextFormat(Qt::PlainText);
    PanelContent::addButtons(layout, {m_okButton});
    setCancelButton(m_okButton);
    connect(m_okButton, &QPushButton::clicked, this, &QDialog::accept);
}

void CleanerInterEndViewController::setResult(int cleaned, int skipped, const QStringList& failures) {
    m_image->setImageName(failures.isEmpty() ? "ic_success" : "ic_warning");
    QString message = QString("%1 %2 cleaned.").arg(cleaned).arg(cleaned == 1 ? "category was" : "categories were");
    if (skipped > 0)
        message += QString(" %1 had nothing to clean.").arg(skipped);
    if (failures.isEmpty()) {
        m_title->setText("Browser data cleaned");
    } else {
        m_title->setText(failures.size() == 1 ? "1 category could not be cleaned"
                                              : QString("%1 categories could not be cleaned").arg(failures.size()));
        QLabel* label = PanelContent::messageLabel(this);
        const int width = label->width() > 0 ? label->width() : kMessageWidth;
        for (const QString& failure : failures.mid(0, kFailuresShown))
            message += "\n" + label->fontMetrics().elidedText(failure, Qt::ElideMiddle, width);
        if (failures.size() > kFailuresShown) message += QString("\nand %1 more").arg(failures.size() - kFailuresShown);
        label->setToolTip(failures.join('\n'));
    }
    PanelContent::messageLabel(this)->setText(message);
}

QString CleanerInterEndViewController::titleText() const { return m_title->text(); }
QString CleanerInterEndViewController::messageText() const { return PanelContent::messageLabel(this)->text(); }

void CleanerInterEndViewController::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape) {
        accept();
        return;
    }
    MAAttachedWindow::keyPressEvent(event);
}

}  // namespace velmora
