#include "gui/copy/CopyIssueList.h"

#include "engine/platform/NativePath.h"
#include "gui/copy/PlainToolTip.h"
#include "gui/widgets/RFOverlayScroller.h"
#include "gui/widgets/Style.h"

#include <QHeaderView>

namespace velmora {

CopyIssueList::CopyIssueList(const CopyResult& result, QWidget* parent) : QTreeWidget(parent) {
    setHeaderHidden(true);
    setRootIsDecorated(false);
    setIndentation(14);
    setFocusPolicy(Qt::TabFocus);
    setSelectionMode(QAbstractItemView::NoSelection);
    setWordWrap(true);
    setTextElideMode(Qt::ElideMiddle);
    setStyleSheet(QString("QTreeWidget { background: rgba(0,0,0,40); border: 1px solid rgba(255,255,255,25);"
                          " border-radius: 6px; }"
                          "QTreeWidget:focus { border: 2px solid %1; }")
                      .arg(Style::rgba(Style::kAccent)));
    RFOverlayScroller::apply(this);
    for (const CopyIssue& failure : result.failures) addIssue(failure.path, "Not copied: " + failure.reason);
    for (const CopyIssue& mismatch : result.mismatches) addIssue(mismatch.path, "Differs from its source: " + mismatch.reason);
    for (const CopyNote& note : result.notes) {
        const QString count = note.count > 1 ? QString(" (%1 items, the first shown)").arg(note.count) : QString();
        addIssue(note.firstPath, "Copied, but " + note.reason + count);
    }
    expandAll();
}

void CopyIssueList::addIssue(const QString& path, const QString& reason) {
    auto* item = new QTreeWidgetItem(this, {displayPath(path)});
    item->setToolTip(0, plainToolTip(displayPath(path)));
    item->setData(0, Qt::UserRole, reason);
    auto* reasonItem = new QTreeWidgetItem(item, {reason});
    reasonItem->setForeground(0, Style::kSecondaryText);
    reasonItem->setToolTip(0, plainToolTip(reason));
}

QStringList CopyIssueList::lines() const {
    QStringList result;
    for (int row = 0; row < topLevelItemCount(); ++row)
        result.append(topLevelItem(row)->text(0) + ": " + topLevelItem(row)->data(0, Qt::UserRole).toString());
    return result;
}

}  // namespace velmora
