#pragma once

#include "engine/erase/FileObj.h"

#include <QTreeWidget>

namespace velmora {

// The per-item outcome of a run, as the result panels show it: each path with
// "Erased" or "Failed".
class ErasureResultList : public QTreeWidget {
    Q_OBJECT
public:
    ErasureResultList(const FileObjList& results, QWidget* parent);
};

}  // namespace velmora
