#pragma once

#include "engine/erase/FileObj.h"

#include <QTreeWidget>

namespace velmora {

// The per-item outcome of a run, as the result panels show it: each path with
// "Erased" or "Failed", and under a failed one the reason, wrapped to the width.
class ErasureResultList : public QTreeWidget {
    Q_OBJECT
public:
    ErasureResultList(const FileObjList& results, QWidget* parent);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    QList<QTreeWidgetItem*> m_reasons;  // their full text is kept in Qt::UserRole
};

}  // namespace velmora
