#pragma once

#include "engine/uninstall/AMAppItem.h"

#include <QAbstractTableModel>
#include <QHash>
#include <QIcon>

namespace velmora {

class ApplicationInventory;

// The uninstaller's table: the records the page shows now, each with its tick box, icon,
// name and identifier, the per-row remove image, version and size. A size is computed the
// first time its cell is drawn. The page owns the ticked lists; the model reads the
// current tab's one.
class UninstallTableModel : public QAbstractTableModel {
    Q_OBJECT
public:
    enum Column { CheckBox, AppName, Version, Size, Uninstall, ColumnCount };
    static constexpr int SecondLineRole = Qt::UserRole + 10;  // the identifier under the name

    UninstallTableModel(ApplicationInventory* inventory, QObject* parent = nullptr);
    static int columnWidth(int column);
    // The column identifiers of the table ("CheckBox", "appname", "version", "Size", "uninstall").
    static QString identifier(int column);

    void reloadData(const AMAppItemList& shown);
    void appendRecord(const AMAppItemPtr& item);
    const AMAppItemList& showListArr() const { return m_shown; }
    AMAppItemPtr recordAt(int row) const { return m_shown.value(row); }
    void setTickedList(const AMAppItemList* ticked);
    void setNameHeader(const QString& text);
    void redraw();
    void redrawRecord(const AMAppItemPtr& item);

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    QIcon iconOf(const AMAppItem& item) const;

    ApplicationInventory* m_inventory;
    AMAppItemList m_shown;
    const AMAppItemList* m_ticked = nullptr;
    QString m_nameHeader;
    mutable QHash<QString, QIcon> m_icons;  // by icon source, looked up once
};

}  // namespace velmora
