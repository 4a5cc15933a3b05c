#pragma once

#include <QAbstractItemModel>

namespace velmora {

class UninstallSession;

// The confirmation tree: one top row per application, its records (the application
// first, then its related files) as child rows. Ticks and sizes come from the session;
// the roles are those the duplicate outline's view and delegate draw.
class UninstallTreeModel : public QAbstractItemModel {
    Q_OBJECT
public:
    enum Column { Name, Size, ColumnCount };

    explicit UninstallTreeModel(UninstallSession* session, QObject* parent = nullptr);
    static int columnWidth(int column);
    // The row's group and, for a file row, its place in the group (-1 for a group row).
    static int groupOf(const QModelIndex& index);
    static int recordOf(const QModelIndex& index);
    void redraw();

    QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
    QModelIndex parent(const QModelIndex& child) const override;
    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

private:
    UninstallSession* m_session;
};

}  // namespace velmora
