#include "gui/duplicate/DuplicateTabBar.h"

#include "engine/duplicate/DuplicateResults.h"
#include "engine/duplicate/PathNames.h"
#include "engine/platform/NativePath.h"
#include "gui/widgets/Style.h"

namespace velmora {

DuplicateTabBar::DuplicateTabBar(QWidget* parent) : QTabBar(parent) {
    setDrawBase(false);
    setExpanding(false);
    // Category names are short; only the folder's name is shortened, by hand.
    setElideMode(Qt::ElideNone);
    setUsesScrollButtons(false);
    setFocusPolicy(Qt::TabFocus);  // the arrow keys then switch tabs
    setFont(Style::regularFont(13));
    setCursor(Qt::PointingHandCursor);
    // Every tab keeps a 2-point border on all sides, so the focus ring around the current
    // one changes no size.
    setStyleSheet(QString("QTabBar::tab { background: transparent; color: %1; border: 2px solid transparent;"
                          "  padding: 4px 10px; margin-right: 4px; }"
                          "QTabBar::tab:hover { color: white; }"
                          "QTabBar::tab:selected { color: white; border-bottom-color: %2; }"
                          "QTabBar::tab:selected:focus { border-color: %2; border-radius: 6px; }")
                      .arg(Style::rgba(Style::kSecondaryText), Style::rgba(Style::kAccent)));
    addTab("All");
    for (int tab = 1; tab < kTabCount; ++tab)
        addTab(DuplicateResults::categoryLabel(DuplicateResults::categoryOfTab(tab)));
}

void DuplicateTabBar::setAllTabLabel(const QString& searchPath) {
    m_allLabel = displayPath(PathNames::lastComponent(searchPath));
    setTabText(0, fontMetrics().elidedText(m_allLabel, Qt::ElideMiddle, 160));
    setTabToolTip(0, displayPath(searchPath));
}

QString DuplicateTabBar::label(int tab) const { return tab == 0 ? m_allLabel : tabText(tab); }

}  // namespace velmora
