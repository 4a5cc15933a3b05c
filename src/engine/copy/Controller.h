#pragma once

#include "engine/copy/EumeRoot.h"
#include "engine/copy/FileNode.h"

#include <QObject>

namespace velmora {

// Owns the source tree of a drive copy for the picking view: lists the source root and
// folders as they are opened, and keeps the three-state ticks consistent between a
// folder and its contents. Lives on the thread of the view.
class Controller : public QObject {
    Q_OBJECT

public:
    explicit Controller(QObject* parent = nullptr);

    FileNodeList& rootArr() { return m_rootArr; }
    EumeRoot& eumeRoot() { return m_eumeRoot; }

    // Lists the source root into the array (which it empties first). With copyAll every
    // top-level node comes wholly ticked, as "Copy All Files" copies them; with
    // measureFolders each folder is measured as it is listed, for the sizes of the tree.
    void eumeAllRootFileNodeWithRootArr(const QString& rootPath, bool copyAll, bool measureFolders);
    // Lists a folder when the user opens it (in the background; childrenListed follows).
    void getNodeListWithFaterNode(const FileNodePtr& node);

    // Ticks or unticks a node with everything listed below it, then its fathers.
    void changeSelectWithNode(FileNode* node, bool selected);
    static void changeChildrenFilNodeStateWithFileNode(FileNode* node, bool selected);
    // Recomputes the fathers' states from their children, up to the top.
    void changeFatherNodeSelectStateWithFileNode(FileNode* node, bool selected);
    void selectAllFileNode(bool selected);
    // The state of the select-all check box: 1 all top-level nodes ticked, 0 none, 2 some.
    int selectAllState() const;
    void changeSelectAllButtonState();
    void reloadTree();

    // The bytes of everything ticked (a partly ticked folder counts its ticked contents).
    quint64 selectedSize() const;
    // Whether anything is ticked at all.
    bool hasSelection() const;

    float getProgress() const { return m_eumeRoot.getProgress(); }
    void stopScan() { m_eumeRoot.stopScan(); }

signals:
    void selectAllButtonStateChanged(int state);
    void treeChanged();
    void childrenListed(velmora::FileNode* node);
    void endScan();

private:
    FileNodeList m_rootArr;
    EumeRoot m_eumeRoot;
    bool m_copyAll = false;
};

}  // namespace velmora
