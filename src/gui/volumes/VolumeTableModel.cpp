#include "gui/volumes/VolumeTableModel.h"

#include "gui/erase/FileEraserTableModel.h"
#include "gui/widgets/Style.h"

#include <QIcon>

namespace velmora {

VolumeTableModel::VolumeTableModel(QObject* parent) : QAbstractTableModel(parent) {}

QString VolumeTableModel::identifier(int column) {
    static const char* const kIdentifiers[] = {"CheckBox", "Name", "Type", "TotalSize", "FreeSize"};
    return (column >= 0 && column < ColumnCount) ? kIdentifiers[column] : QString();
}

int VolumeTableModel::columnWidth(int column) {
    static constexpr int kWidths[] = {40, 280, 156, 128, 128};
    return (column >= 0 && column < ColumnCount) ? kWidths[column] : 0;
}

QString VolumeTableModel::iconName(const VolumeObj& volume) {
    if (volume.bCanEject) return "ic_usb";
    return volume.volumeMountPoint == "/" ? "ic_os" : "ic_disk";
}

void VolumeTableModel::reloadData(const VolumeList& volumes, const QString& selectedVolumePath) {
    beginResetModel();
    m_volumes = volumes;
    m_selectedVolumePath = selectedVolumePath;
    endResetModel();
}

int VolumeTableModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : int(m_volumes.size());
}

int VolumeTableModel::columnCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : ColumnCount; }

QVariant VolumeTableModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= m_volumes.size()) return {};
    const VolumeObj& volume = m_volumes.at(index.row());
    const int column = index.column();
    switch (role) {
    case Qt::DisplayRole:
        switch (column) {
        case Name: return volume.volumeName;
        // The disk tool's scan names the file system in diskType instead.
        case Type: return volume.volumeType.isEmpty() ? volume.diskType : volume.volumeType;
        case TotalSize: return volume.volumeTotalSize;
        case FreeSize: return volume.volumeFreeSize;
        default: return {};
        }
    case Qt::DecorationRole:
        return column == Name ? QVariant(QIcon(Style::imagePath(iconName(volume)))) : QVariant();
    // The file eraser's delegate draws the rows, so the radio image goes by its image role.
    case FileEraserTableModel::ImageRole:
        if (column == CheckBox)
            return !m_selectedVolumePath.isEmpty() && volume.volumePath == m_selectedVolumePath ? "radiobutton_sel"
                                                                                               : "radiobutton_no";
        return {};
    case Qt::ForegroundRole:
        return column == Name ? Style::kText : Style::kSecondaryText;
    case Qt::FontRole:
        return Style::regularFont(13);
    case Qt::ToolTipRole:
        return volume.volumeMountPoint.isEmpty() ? volume.volumePath
                                                 : volume.volumePath + " on " + volume.volumeMountPoint;
    default:
        return {};
    }
}

QVariant VolumeTableModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal) return {};
    static const char* const kCaptions[] = {"", "Name", "Type", "Total Size", "Free Size"};
    if (role == Qt::DisplayRole && section >= 0 && section < ColumnCount) return QString(kCaptions[section]);
    if (role == Qt::ForegroundRole) return Style::kSecondaryText;
    return {};
}

}  // namespace velmora
