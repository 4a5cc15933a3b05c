#include "gui/app/PlaceholderPage.h"

#include "gui/widgets/Style.h"

#include <QLabel>
#include <QVBoxLayout>

namespace velmora {

PlaceholderPage::PlaceholderPage(const QStringList& modeTitles, QWidget* parent)
    : QWidget(parent), m_modeTitles(modeTitles), m_title(Style::label(modeTitles.first(), 22, false, true)) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(40, 34, 40, 40);
    layout->addWidget(m_title, 0);
    QLabel* notice = Style::label("Not available yet", 16, true);
    notice->setAlignment(Qt::AlignCenter);
    layout->addWidget(notice, 1);
}

QString PlaceholderPage::title() const { return m_title->text(); }

void PlaceholderPage::changeFormatOrFreeSpaceView(int tag) {
    m_title->setText(m_modeTitles.value(tag == 2 ? 1 : 0));
}

void PlaceholderPage::setIsFormatOrRename(int isFormat) { m_title->setText(m_modeTitles.value(isFormat == 1 ? 0 : 1)); }

}  // namespace velmora
