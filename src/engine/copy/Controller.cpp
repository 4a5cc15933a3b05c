#include "engine/copy/Controller.h"

#include <algorithm>

namespace velmora {

Controller::Controller(QObject* parent) : QObject(parent) {
    connect(&m_eumeRoot, &EumeRoot::rootArrChanged, this, &Controller::treeChanged);
    connect(&m_eumeRoot, &EumeRoot::childrenListed, this, &Controller::childrenListed);
    connect(&m_eumeRoot, &EumeRoot::endScan, this, [this] {
        if (m_copyAll) selectAllFileNode(true);
        emit endScan();
    });
}

void Controller::eumeAllRootFileNodeWithRootArr(const QString& rootPath, bool copyAll, bool measureFolders) {
    m_eumeRoot.stopScan();
    m_rootArr.clear();
    m_copyAll = copyAll;
    m_eumeRoot.eumeAllRootFileNodeWithRootArr(&m_rootArr, rootPath, measureFolders);
}

void Controller::getNodeListWithFaterNode(const FileNodePtr& node) { m_eumeRoot.listChildrenInBackground(node); }

void Controller::changeSelectWithNode(FileNode* node, bool selected) {
    changeChildrenFilNodeStateWithFileNode(node, selected);
    changeFatherNodeSelectStateWithFileNode(node, selected);
}

void Controller::changeChildrenFilNodeStateWithFileNode(FileNode* node, bool selected) {
    node->state = selected ? FileNode::Ticked : FileNode::NotTicked;
    if (!node->isDirectory) return;
    for (const FileNodePtr& child : node->children) changeChildrenFilNodeStateWithFileNode(child.get(), selected);
}

void Controller::changeFatherNodeSelectStateWithFileNode(FileNode* node, bool) {
    for (FileNode* father = node->father; father; father = father->father) {
        qsizetype ticked = 0;
        bool anyPartly = false;
        for (const FileNodePtr& child : father->children) {
            if (child->state == FileNode::Ticked) ++ticked;
            if (child->state == FileNode::PartlyTicked) anyPartly = true;
        }
        // A father with no children at all becomes ticked.
        if (ticked == father->children.size())
            father->state = FileNode::Ticked;
        else
            father->state = (ticked > 0 || anyPartly) ? FileNode::PartlyTicked : FileNode::NotTicked;
    }
    changeSelectAllButtonState();
    reloadTree();
}

void Controller::selectAllFileNode(bool selected) {
    for (const FileNodePtr& node : m_rootArr) changeChildrenFilNodeStateWithFileNode(node.get(), selected);
    changeSelectAllButtonState();
    reloadTree();
}

int Controller::selectAllState() const {
    qsizetype ticked = 0;
    bool anyPartly = false;
    for (const FileNodePtr& node : m_rootArr) {
        if (node->state == FileNode::Ticked) ++ticked;
        if (node->state == FileNode::PartlyTicked) anyPartly = true;
    }
    if (!m_rootArr.isEmpty() && ticked == m_rootArr.size()) return FileNode::Ticked;
    return (ticked > 0 || anyPartly) ? FileNode::PartlyTicked : FileNode::NotTicked;
}

void Controller::changeSelectAllButtonState() { emit selectAllButtonStateChanged(selectAllState()); }

void Controller::reloadTree() { emit treeChanged(); }

static quint64 tickedSize(const FileNodeList& nodes, bool wholly) {
    quint64 total = 0;
    for (const FileNodePtr& node : nodes) {
        const bool ticked = wholly || node->state == FileNode::Ticked;
        // A folder not measured yet counts what is known of its contents.
        if (ticked && (node->sizeKnown || !node->isDirectory)) total += node->size;
        else if (ticked) total += tickedSize(node->children, true);
        else if (node->state == FileNode::PartlyTicked) total += tickedSize(node->children, false);
    }
    return total;
}

quint64 Controller::selectedSize() const { return tickedSize(m_rootArr, false); }

bool Controller::hasSelection() const {
    return std::any_of(m_rootArr.begin(), m_rootArr.end(),
                       [](const FileNodePtr& node) { return node->state == FileNode::Ticked || node->state == FileNode::PartlyTicked; });
}

}  // namespace velmora
