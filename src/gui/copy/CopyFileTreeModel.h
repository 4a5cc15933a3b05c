#pragma once

#include "engine/copy/FileNode.h"

#include <QAbstractItemModel>
#include <QHash>
#include <QSet>
#include <QTimer>

namespace velmora {

class Controller;

// The source tree of "Copy Some Files" as an item model over the copy Controller: a
// name column with the three-state tick and a size column. Folders show their arrow
// before they are listed and are listed in the background when first opened (fetchMore);
// a tick goes through the Controller, which ticks down and up.
class CopyFileTreeModel : public QAbstractItemModel {
    Q_OBJECT
public:
    enum Column { Name = 0, Size = 1, ColumnCount = 2 };

    explicit CopyFileTreeModel(Controller& controller, QObject* parent = nullptr);

    FileNode* nodeOf(const QModelIndex& index) const;
    QModelIndex indexOf(const FileNode* node, int column = Name) const;
    // Whether an opened folder is still being listed.
    bool isListing(const QModelIndex& index) const;

    QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
    QModelIndex parent(const QModelIndex& child) const override;
    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    bool hasChildren(const QModelIndex& parent = {}) const override;
    bool canFetchMore(const QModelIndex& parent) const override;
    void fetchMore(const QModelIndex& parent) override;
    QVariant data(const QModelIndex& index, int role) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    const FileNodeList& childrenOf(const FileNode* node) const;
    int rowOf(const FileNode* node) const;
    void takeRoots();
    void childrenListed(FileNode* node);
    void ticksChanged();

    Controller& m_controller;
    FileNodeList m_roots;                 // the top level as last shown
    QSet<const FileNode*> m_shownChildren;  // folders whose listed children the view knows
    QSet<const FileNode*> m_listing;        // folders being listed
    QTimer m_rootsTimer;                  // gathers the nodes of a root listing into one reset
};

}  // namespace velmora
