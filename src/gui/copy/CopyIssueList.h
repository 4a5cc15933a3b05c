#pragma once

#include "engine/copy/CopyResult.h"

#include <QTreeWidget>

namespace velmora {

// The details of a drive copy's end: each item not copied, each copied file that differs
// from its source, and what the destination did not keep, with the path and under it
// the reason. Paths are shown in their display form.
class CopyIssueList : public QTreeWidget {
    Q_OBJECT
public:
    CopyIssueList(const CopyResult& result, QWidget* parent);

    // The lines of the list, for the tests: "path: reason".
    QStringList lines() const;

private:
    void addIssue(const QString& path, const QString& reason);
};

}  // namespace velmora
