#include "engine/duplicate/DuplicateResults.h"

#include <QStringList>

namespace velmora {

namespace {

// Kept as they have always been: "tar.gz" and "tar.bz2" never match a
// single-suffix extension, and "acc" stands beside "aac".
const QStringList kDocumentExtensions = {"doc", "docx", "xls", "xlsx", "mpp", "ppt", "pptx", "txt",
                                         "rtf", "pdf",  "odt", "ott",  "ods", "odg", "odf",  "odb",
                                         "odp", "htm",  "html", "xml", "pages", "key"};
const QStringList kMusicExtensions = {"wav", "aiff", "au", "mp3", "midi", "wma", "acc", "ape", "ra", "aac"};
const QStringList kVideoExtensions = {"avi", "rmvb", "rm",  "3gp", "3g2", "flv", "mpeg", "mpg", "qt",
                                      "qtm", "qtx",  "mov", "mpe", "mp4", "m4v", "mkv",  "wmv", "ogg"};
const QStringList kArchiveExtensions = {"zip", "rar", "tar", "tar.gz", "tar.bz2"};
const QStringList kPictureExtensions = {"bmp", "jpg", "png", "ico", "gif", "tiff", "jpeg", "tga", "exif",
                                        "fpx", "svg", "psd", "cdr", "pcd", "dxf",  "ufo",  "eps"};

QString countLabel(qsizetype selected, qsizetype all) { return QString("%1/%2").arg(selected).arg(all); }

}  // namespace

DuplicateResults::DuplicateResults(SimpleTreeNode::Pointer allTreeNode) : m_allTreeNode(std::move(allTreeNode)) {
    constructSubtrees();
}

DuplicateResults::Category DuplicateResults::categoryOfExtension(const QString& extendName) {
    const QString extension = extendName.toLower();
    if (kDocumentExtensions.contains(extension)) return Documents;
    if (kMusicExtensions.contains(extension)) return Music;
    if (kVideoExtensions.contains(extension)) return Videos;
    if (kArchiveExtensions.contains(extension)) return Archives;
    if (kPictureExtensions.contains(extension)) return Pictures;
    return Others;
}

DuplicateResults::Category DuplicateResults::categoryOfTab(int tab) {
    static constexpr Category kTabs[kTabCount] = {None, Documents, Videos, Music, Archives, Pictures, Others};
    return tab >= 0 && tab < kTabCount ? kTabs[tab] : None;
}

QString DuplicateResults::categoryLabel(Category category) {
    switch (category) {
    case Documents: return "Documents";
    case Music: return "Music";
    case Videos: return "Videos";
    case Archives: return "Archives";
    case Pictures: return "Pictures";
    case Others: return "Others";
    case None: break;
    }
    return {};
}

const SimpleTreeNode::Pointer& DuplicateResults::treeForTab(int tab) const {
    return m_categoryTrees[categoryOfTab(tab)];
}

void DuplicateResults::constructSubtrees() {
    m_categoryTrees[None] = m_allTreeNode;
    for (int category = Documents; category <= Others; ++category) getTypeFile(Category(category));
}

void DuplicateResults::getTypeFile(Category category) {
    SimpleTreeNode::Pointer tree = SimpleTreeNode::create(SimpleNodeData::groupDataWithName(categoryLabel(category)));
    for (const SimpleTreeNode::Pointer& group : m_allTreeNode->children()) {
        SimpleNodeData& data = group->data();
        if (data.Mark) continue;
        if (category != Others && categoryOfExtension(data.extendName) != category) continue;
        data.Mark = true;
        data.fileType = category;
        tree->appendChild(group);
        m_categorySizes[category] += data.fileSize;
    }
    m_categoryTrees[category] = tree;
}

void DuplicateResults::setLeafSelected(const SimpleTreeNode::Pointer& leaf, bool select) {
    const bool wasSelected = leaf->data().selectNum == SimpleNodeData::Selected;
    if (select == wasSelected) return;
    leaf->data().selectNum = select ? SimpleNodeData::Selected : SimpleNodeData::NotSelected;
    if (select) m_selected.append(leaf);
    else m_selected.removeOne(leaf);
}

void DuplicateResults::updateGroupState(SimpleTreeNode& group) {
    qsizetype selected = 0;
    for (const SimpleTreeNode::Pointer& leaf : group.children())
        if (leaf->data().selectNum == SimpleNodeData::Selected) ++selected;
    const qsizetype all = group.children().size();
    SimpleNodeData& data = group.data();
    data.selectNum = selected == 0     ? SimpleNodeData::NotSelected
                     : selected == all ? SimpleNodeData::Selected
                                       : SimpleNodeData::PartlySelected;
    data.showSelectNumStr = countLabel(selected, all);
}

void DuplicateResults::setAllSelectOrNoSelect(const SimpleTreeNode& tree, bool select) {
    for (const SimpleTreeNode::Pointer& group : tree.children()) {
        const QList<SimpleTreeNode::Pointer>& leaves = group->children();
        for (qsizetype i = 0; i < leaves.size(); ++i) setLeafSelected(leaves[i], select && i + 1 < leaves.size());
        updateGroupState(*group);
    }
}

bool DuplicateResults::setSelectState(SimpleTreeNode& leaf, bool select, bool confirmed) {
    SimpleTreeNode* group = leaf.parent();
    if (!group) return false;
    const SimpleTreeNode::Pointer* shared = nullptr;
    qsizetype selected = 0;
    for (const SimpleTreeNode::Pointer& sibling : group->children()) {
        if (sibling.get() == &leaf) shared = &sibling;
        if (sibling->data().selectNum == SimpleNodeData::Selected) ++selected;
    }
    if (!shared) return false;
    const bool leavesNoCopy = select && leaf.data().selectNum != SimpleNodeData::Selected &&
                              selected >= group->children().size() - 1;
    if (leavesNoCopy && !confirmed) return false;
    setLeafSelected(*shared, select);
    updateGroupState(*group);
    return true;
}

void DuplicateResults::refreshOutlineView(SimpleTreeNode& leaf) {
    SimpleTreeNode* group = leaf.parent();
    if (!group) return;
    SimpleNodeData& data = group->data();
    data.fileSize -= qMin(data.fileSize, leaf.data().fileSize);
    const bool wasPartlySelected = data.selectNum == SimpleNodeData::PartlySelected;
    group->removeChild(&leaf);
    const QList<SimpleTreeNode::Pointer>& left = group->children();
    if (left.isEmpty() || (wasPartlySelected && left.size() == 1)) {
        deleteParentNode(*group);
        return;
    }
    // The label says whether any copy is still selected, not how many.
    bool anySelected = false;
    for (const SimpleTreeNode::Pointer& remaining : left)
        anySelected = anySelected || remaining->data().selectNum == SimpleNodeData::Selected;
    data.selectNum = anySelected ? SimpleNodeData::PartlySelected : SimpleNodeData::NotSelected;
    data.showSelectNumStr = countLabel(anySelected ? 1 : 0, left.size());
}

void DuplicateResults::deleteParentNode(SimpleTreeNode& group) {
    // A copy left in a dropped group no longer points at it.
    while (!group.children().isEmpty()) group.removeChild(group.children().first().get());
    const int category = group.data().fileType;
    if (category > None && category < kTabCount) m_categoryTrees[category]->removeChild(&group);
    m_allTreeNode->removeChild(&group);
}

qsizetype DuplicateResults::forgetRemoved(const QList<SimpleTreeNode::Pointer>& removed) {
    for (const SimpleTreeNode::Pointer& leaf : removed) m_selected.removeOne(leaf);
    return m_selected.size();
}

}  // namespace velmora
