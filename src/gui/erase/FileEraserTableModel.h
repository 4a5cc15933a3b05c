#pragma once

#include "engine/erase/FileObj.h"

#include <QAbstractTableModel>
#include <QHash>
#include <QIcon>

namespace velmora {

// The file eraser's table: one row per record of the page's list, with the
// columns "CheckBox", "name", "path", "size", "type" and "search". The page
// owns the list and hands a copy in on every reload.
class FileEraserTableModel : public QAbstractTableModel {
    Q_OBJECT
public:
    enum Column { CheckBox, Name, Path, Size, Type, Search, ColumnCount };
    // The image a cell draws instead of text ("checkbox_yes", "ic_search", ...).
    static constexpr int ImageRole = Qt::UserRole + 1;

    explicit FileEraserTableModel(QObject* parent = nullptr);

    static QString identifier(int column);
    static int columnWidth(int column);

    void reloadData(const FileObjList& records);
    const FileObjList& records() const { return m_records; }

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    QIcon iconFor(const FileObj& record) const;

    FileObjList m_records;
    mutable QHash<QString, QIcon> m_iconsByExtension;
};

}  // namespace velmora
