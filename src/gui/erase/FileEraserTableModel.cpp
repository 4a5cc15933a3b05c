#include "gui/erase/FileEraserTableModel.h"

#include "engine/platform/NativePath.h"
#include "gui/widgets/SizeText.h"
#include "gui/widgets/Style.h"

#include <QFileIconProvider>
#include <QFileInfo>
#include <QMimeDatabase>

namespace velmora {

FileEraserTableModel::FileEraserTableModel(QObject* parent) : QAbstractTableModel(parent) {}

QString FileEraserTableModel::identifier(int column) {
    static const char* const kIdentifiers[] = {"CheckBox", "name", "path", "size", "type", "search"};
    return (column >= 0 && column < ColumnCount) ? kIdentifiers[column] : QString();
}

int FileEraserTableModel::columnWidth(int column) {
    static constexpr int kWidths[] = {34, 170, 287, 100, 100, 40};
    return (column >= 0 && column < ColumnCount) ? kWidths[column] : 0;
}

void FileEraserTableModel::reloadData(const FileObjList& records) {
    beginResetModel();
    m_records = records;
    endResetModel();
}

int FileEraserTableModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : int(m_records.size());
}

int FileEraserTableModel::columnCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : ColumnCount; }

QIcon FileEraserTableModel::iconFor(const FileObj& record) const {
    // The icon follows the name's text alone; Qt's file classes cannot read a name
    // that is not UTF-8.
    const qsizetype dot = record.name.lastIndexOf('.');
    const QString extension = dot < 0 ? QString() : record.name.mid(dot + 1).toLower();
    if (record.isDir) {
        // An application bundle shows its own icon where the platform has one.
        if (extension == "app" && !hasNonTextBytes(record.url)) {
            const QIcon bundle = QFileIconProvider().icon(QFileInfo(record.url));
            if (!bundle.isNull()) return bundle;
        }
        return QIcon(Style::imagePath("ic_folder"));
    }
    auto cached = m_iconsByExtension.constFind(extension);
    if (cached != m_iconsByExtension.constEnd()) return *cached;
    const QMimeType type = QMimeDatabase().mimeTypeForFile(displayPath(record.name), QMimeDatabase::MatchExtension);
    const QIcon icon = QIcon::fromTheme(type.iconName(), QIcon(Style::imagePath("ic_file")));
    m_iconsByExtension.insert(extension, icon);
    return icon;
}

QVariant FileEraserTableModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= m_records.size()) return {};
    const FileObj& record = m_records.at(index.row());
    const int column = index.column();
    switch (role) {
    case Qt::DisplayRole:
        switch (column) {
        case Name: return displayPath(record.name);
        case Path: return displayPath(record.url);
        case Size: return record.isDir ? QString("--") : byteToSizeWithByte(record.size);
        case Type: return displayPath(record.type);
        default: return {};
        }
    case Qt::DecorationRole:
        return column == Name ? QVariant(iconFor(record)) : QVariant();
    case ImageRole:
        if (column == CheckBox) return record.isSelect ? "checkbox_yes" : "checkbox_no";
        if (column == Search) return "ic_search";
        return {};
    case Qt::ForegroundRole:
        return column == Name ? Style::kText : Style::kSecondaryText;
    case Qt::FontRole:
        return Style::regularFont(13);
    case Qt::ToolTipRole:
        return displayPath(record.url);
    default:
        return {};
    }
}

QVariant FileEraserTableModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal) return {};
    static const char* const kCaptions[] = {"", "Name", "Path", "Size", "Type", ""};
    if (role == Qt::DisplayRole && section >= 0 && section < ColumnCount) return QString(kCaptions[section]);
    if (role == Qt::ForegroundRole) return Style::kSecondaryText;
    return {};
}

}  // namespace velmora
