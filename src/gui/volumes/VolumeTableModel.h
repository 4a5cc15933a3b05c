#pragma once

#include "engine/volumes/VolumeObj.h"

#include <QAbstractTableModel>

namespace velmora {

// The erase screens' volume table: one row per volume with the columns
// "CheckBox" (a radio image), "Name" (icon and name), "Type", "TotalSize" and
// "FreeSize". The page owns the list and hands a copy in on every reload,
// together with the device node of the selected volume.
class VolumeTableModel : public QAbstractTableModel {
    Q_OBJECT
public:
    enum Column { CheckBox, Name, Type, TotalSize, FreeSize, ColumnCount };

    explicit VolumeTableModel(QObject* parent = nullptr);

    static QString identifier(int column);
    static int columnWidth(int column);
    // "ic_usb" for an ejectable volume, "ic_os" for the startup volume, else "ic_disk".
    static QString iconName(const VolumeObj& volume);

    void reloadData(const VolumeList& volumes, const QString& selectedVolumePath);
    const VolumeList& volumes() const { return m_volumes; }

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    VolumeList m_volumes;
    QString m_selectedVolumePath;
};

}  // namespace velmora
