#pragma once

#include "engine/duplicate/FileIdentity.h"

#include <QDateTime>
#include <QString>
#include <QtGlobal>

namespace velmora {

// What one node of the duplicate result tree shows. Icons are not kept here:
// the engine has no image types, and a page draws them from the name.
struct SimpleNodeData {
    enum SelectState { NotSelected = 0, Selected = 1, PartlySelected = 2 };

    QString name;        // a leaf: the absolute path; a group: the file or bundle name
    QString extendName;  // a group: the extension of its name, "APP" for bundles
    quint64 fileSize = 0;
    QDateTime modificationDate;
    int selectNum = NotSelected;
    QString showSelectNumStr;  // a group: "selected/all"
    bool Mark = false;         // a group: already placed in a category
    int fileType = 0;          // a group: its category number, 0 when none
    bool isLeaf = false;
    FileIdentity identity;     // a leaf: the copy as the search saw it

    static SimpleNodeData leafDataWithName(const QString& name) {
        SimpleNodeData data;
        data.name = name;
        data.isLeaf = true;
        return data;
    }
    static SimpleNodeData groupDataWithName(const QString& name) {
        SimpleNodeData data;
        data.name = name;
        return data;
    }
};

}  // namespace velmora
