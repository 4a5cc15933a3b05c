#pragma once

#include "engine/duplicate/DuplicateResults.h"

#include <QAbstractItemModel>
#include <functional>
#include <vector>

namespace velmora {

// The outline of duplicate groups: the groups of one category of a result
// as top rows, one child row per copy. Rows are read from the result when
// the view asks, so a row costs nothing until it is shown; every change of
// the result goes through applyTreeChange() or selectionChanged().
class DuplicateOutlineModel : public QAbstractItemModel {
    Q_OBJECT
public:
    enum Column { Name, Selected, Size, Date, ColumnCount };
    enum Role {
        CheckImageRole = Qt::UserRole + 1,  // "checkbox_no", "checkbox_yes" or "checkbox_election"
        IconImageRole,                      // the image of the file's kind
        IsGroupRole,
    };

    explicit DuplicateOutlineModel(QObject* parent = nullptr);

    static int columnWidth(int column);

    // Shows the groups of a category of a result (none: an empty outline).
    void setResults(const DuplicateResults* results, DuplicateResults::Category category);
    const DuplicateResults* results() const { return m_results; }
    DuplicateResults::Category category() const { return m_category; }
    // The groups shown, in their rows.
    const std::vector<DuplicateResults::Group>& shownGroups() const;

    bool isGroup(const QModelIndex& index) const;
    bool isCopy(const QModelIndex& index) const { return index.isValid() && !isGroup(index); }
    // The row's group (a copy's own group) and the copy of a copy row.
    DuplicateResults::Group groupOf(const QModelIndex& index) const;
    DuplicateResults::Copy copyOf(const QModelIndex& index) const;
    QModelIndex indexForGroup(DuplicateResults::Group group) const;
    QModelIndex indexForCopy(DuplicateResults::Copy copy) const;

    // Runs a change that removes or reorders rows of the shown groups; the
    // rows that remain keep their expanded state and selection in the view.
    void applyTreeChange(const std::function<void()>& change);
    // Redraws the top rows from `first` to `last` (and the copies under
    // them) after selections or labels changed.
    void selectionChanged(int first, int last);
    // The groups in the order of a column; the copies keep their order (the
    // last copy of a group is the one select-all keeps). Only reads the
    // result, so it may run on another thread while the result is not changed.
    static std::vector<DuplicateResults::Group> sortedGroups(const DuplicateResults& results,
                                                             std::vector<DuplicateResults::Group> groups, int column,
                                                             bool descending);
    // Shows the groups in that order.
    void showOrder(DuplicateResults& results, std::vector<DuplicateResults::Group> order);

    QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
    QModelIndex parent(const QModelIndex& child) const override;
    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

private:
    void rebuildGroupRows();
    QString iconImage(DuplicateResults::Group group) const;

    const DuplicateResults* m_results = nullptr;
    DuplicateResults::Category m_category = DuplicateResults::None;
    std::vector<qint32> m_rowOfGroup;  // by group number, -1 when not shown
};

}  // namespace velmora
