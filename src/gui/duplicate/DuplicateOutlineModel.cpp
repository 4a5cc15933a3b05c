#include "gui/duplicate/DuplicateOutlineModel.h"

#include "engine/platform/NativePath.h"
#include "gui/widgets/SizeText.h"
#include "gui/widgets/Style.h"

#include <QCollator>
#include <algorithm>

namespace velmora {
namespace {

using Group = DuplicateResults::Group;
using Copy = DuplicateResults::Copy;

// A row's internal id: the group number, or the copy number with this bit.
constexpr quintptr kCopyBit = quintptr(1) << 32;

const std::vector<Group> kNoGroups;

qint64 latestCopyDate(const DuplicateResults& results, Group group) {
    qint64 latest = std::numeric_limits<qint64>::min();
    for (Copy copy : results.copies(group))
        if (!results.isBundleGroup(group)) latest = qMax(latest, results.identity(copy).modificationMSecs());
    return latest;
}

}  // namespace

DuplicateOutlineModel::DuplicateOutlineModel(QObject* parent) : QAbstractItemModel(parent) {}

int DuplicateOutlineModel::columnWidth(int column) {
    static constexpr int kWidths[ColumnCount] = {372, 80, 100, 180};
    return column >= 0 && column < ColumnCount ? kWidths[column] : 0;
}

void DuplicateOutlineModel::setResults(const DuplicateResults* results, DuplicateResults::Category category) {
    beginResetModel();
    m_results = results;
    m_category = category;
    rebuildGroupRows();
    endResetModel();
}

const std::vector<Group>& DuplicateOutlineModel::shownGroups() const {
    return m_results ? m_results->groups(m_category) : kNoGroups;
}

void DuplicateOutlineModel::rebuildGroupRows() {
    m_rowOfGroup.assign(m_results ? size_t(m_results->groupCapacity()) : 0, -1);
    const std::vector<Group>& groups = shownGroups();
    for (size_t row = 0; row < groups.size(); ++row) m_rowOfGroup[groups[row]] = qint32(row);
}

bool DuplicateOutlineModel::isGroup(const QModelIndex& index) const {
    return index.isValid() && (index.internalId() & kCopyBit) == 0;
}

Group DuplicateOutlineModel::groupOf(const QModelIndex& index) const {
    return isGroup(index) ? Group(index.internalId()) : m_results->groupOf(copyOf(index));
}

Copy DuplicateOutlineModel::copyOf(const QModelIndex& index) const { return Copy(index.internalId() & ~kCopyBit); }

QModelIndex DuplicateOutlineModel::indexForGroup(Group group) const {
    if (!m_results || group >= m_rowOfGroup.size() || m_rowOfGroup[group] < 0) return {};
    return createIndex(m_rowOfGroup[group], 0, quintptr(group));
}

QModelIndex DuplicateOutlineModel::indexForCopy(Copy copy) const {
    if (!m_results || !indexForGroup(m_results->groupOf(copy)).isValid()) return {};
    const qsizetype row = m_results->rowOfCopy(copy);
    return row < 0 ? QModelIndex() : createIndex(int(row), 0, quintptr(copy) | kCopyBit);
}

void DuplicateOutlineModel::applyTreeChange(const std::function<void()>& change) {
    emit layoutAboutToBeChanged();
    const QModelIndexList before = persistentIndexList();
    change();
    rebuildGroupRows();
    QModelIndexList after;
    after.reserve(before.size());
    for (const QModelIndex& old : before) {
        const QModelIndex now = isGroup(old) ? indexForGroup(Group(old.internalId())) : indexForCopy(copyOf(old));
        after.append(now.isValid() ? now.siblingAtColumn(old.column()) : QModelIndex());
    }
    changePersistentIndexList(before, after);
    emit layoutChanged();
}

// One change over top rows repaints the outline, the copies shown under them
// included.
void DuplicateOutlineModel::selectionChanged(int first, int last) {
    first = qMax(first, 0);
    last = qMin(last, rowCount() - 1);
    if (first <= last) emit dataChanged(index(first, 0), index(last, ColumnCount - 1));
}

std::vector<Group> DuplicateOutlineModel::sortedGroups(const DuplicateResults& results, std::vector<Group> groups,
                                                       int column, bool descending) {
    // One key per group, computed once: a name comparison would otherwise
    // build both names again at every step of the sort.
    std::vector<qint64> numbers(size_t(results.groupCapacity()));
    std::vector<QCollatorSortKey> names;
    if (column == Name) {
        QCollator collator;
        collator.setCaseSensitivity(Qt::CaseInsensitive);
        collator.setNumericMode(true);
        names.reserve(groups.size());
        for (size_t row = 0; row < groups.size(); ++row) {
            names.push_back(collator.sortKey(results.groupName(groups[row])));
            numbers[groups[row]] = qint64(row);
        }
    } else {
        for (Group group : groups)
            numbers[group] = column == Selected ? results.copyCount(group)
                             : column == Size   ? qint64(results.groupSize(group))
                                                : latestCopyDate(results, group);
    }
    const auto less = [&](Group a, Group b) {
        if (column == Name) return names[size_t(numbers[a])].compare(names[size_t(numbers[b])]) < 0;
        return numbers[a] < numbers[b];
    };
    std::stable_sort(groups.begin(), groups.end(), [&](Group a, Group b) { return descending ? less(b, a) : less(a, b); });
    return groups;
}

void DuplicateOutlineModel::showOrder(DuplicateResults& results, std::vector<Group> order) {
    if (m_results != &results) return;
    applyTreeChange([&] { results.reorder(m_category, std::move(order)); });
}

QModelIndex DuplicateOutlineModel::index(int row, int column, const QModelIndex& parent) const {
    if (!m_results || row < 0 || column < 0 || column >= ColumnCount) return {};
    if (!parent.isValid()) {
        const std::vector<Group>& groups = shownGroups();
        return size_t(row) < groups.size() ? createIndex(row, column, quintptr(groups[size_t(row)])) : QModelIndex();
    }
    if (!isGroup(parent)) return {};
    const Group group = groupOf(parent);
    if (row >= m_results->copyCount(group)) return {};
    return createIndex(row, column, quintptr(m_results->copyAt(group, row)) | kCopyBit);
}

QModelIndex DuplicateOutlineModel::parent(const QModelIndex& child) const {
    if (!m_results || !isCopy(child)) return {};
    return indexForGroup(m_results->groupOf(copyOf(child)));
}

int DuplicateOutlineModel::rowCount(const QModelIndex& parent) const {
    if (!m_results) return 0;
    if (!parent.isValid()) return int(shownGroups().size());
    if (parent.column() != 0 || !isGroup(parent)) return 0;
    return int(m_results->copyCount(groupOf(parent)));
}

int DuplicateOutlineModel::columnCount(const QModelIndex&) const { return ColumnCount; }

QString DuplicateOutlineModel::iconImage(Group group) const {
    if (m_results->isBundleGroup(group)) return "ic_folder";
    switch (m_results->groupCategory(group)) {
    case DuplicateResults::Documents: return "ic_type_document";
    case DuplicateResults::Music: return "ic_type_music";
    case DuplicateResults::Videos: return "ic_type_video";
    case DuplicateResults::Archives: return "ic_type_archive";
    case DuplicateResults::Pictures: return "ic_type_picture";
    default: return "ic_file";
    }
}

QVariant DuplicateOutlineModel::data(const QModelIndex& index, int role) const {
    if (!m_results || !index.isValid()) return {};
    const bool group = isGroup(index);
    const Group owner = groupOf(index);
    const Copy copy = group ? 0 : copyOf(index);
    const bool selected = group ? m_results->groupState(owner) == DuplicateResults::Selected
                                : m_results->isSelected(copy);
    const bool partly = group && m_results->groupState(owner) == DuplicateResults::PartlySelected;
    switch (role) {
    case Qt::DisplayRole:
        switch (index.column()) {
        case Name: return displayPath(group ? m_results->groupName(owner) : m_results->path(copy));
        case Selected: return group ? m_results->groupLabel(owner) : QString();
        case Size: return byteToSizeWithByte(group ? m_results->groupSize(owner) : m_results->size(copy));
        case Date: return group ? QString() : m_results->modified(copy).toString("yyyy-MM-dd HH:mm");
        }
        return {};
    case Qt::ToolTipRole:
        // A copy's whole path; a group's name with the path of the copy kept.
        if (index.column() != Name) return {};
        if (!group) return displayPath(m_results->path(copy));
        return displayPath(m_results->groupName(owner)) + '\n' +
               displayPath(m_results->path(m_results->copyAt(owner, m_results->copyCount(owner) - 1)));
    case Qt::FontRole: return group ? Style::boldFont(12) : Style::regularFont(12);
    case Qt::ForegroundRole: return group || index.column() == Selected ? Style::kText : Style::kSecondaryText;
    case CheckImageRole:
        if (index.column() != Name) return {};
        return QString(selected ? "checkbox_yes" : partly ? "checkbox_election" : "checkbox_no");
    case Qt::CheckStateRole:  // what assistive technology announces for the drawn checkbox
        if (index.column() != Name) return {};
        return selected ? Qt::Checked : partly ? Qt::PartiallyChecked : Qt::Unchecked;
    case IconImageRole: return index.column() == Name ? iconImage(owner) : QVariant();
    case IsGroupRole: return group;
    }
    return {};
}

QVariant DuplicateOutlineModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
    static const char* const kTitles[ColumnCount] = {"Name", "Selected", "Size", "Date Modified"};
    return section >= 0 && section < ColumnCount ? QString(kTitles[section]) : QVariant();
}

}  // namespace velmora
