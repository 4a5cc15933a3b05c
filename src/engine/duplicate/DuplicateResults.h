#pragma once

#include "engine/duplicate/FileIdentity.h"
#include "engine/duplicate/FileListing.h"

#include <QDateTime>
#include <QList>
#include <QString>
#include <array>
#include <memory>
#include <vector>

namespace velmora {

// The results of one duplicate search as a page or a command shows them:
// groups of copies, the category each group falls in, the copies ticked for
// removal, and the bookkeeping after each removal. A copy is an index into
// the search's file listing (or into the few application bundles found), so
// a result costs a few bytes per copy; paths, names and labels are built
// only when asked for. Groups and copies keep their numbers for the life of
// the result; removed copies and dropped groups are marked, not moved.
// Not thread-safe: it belongs to the thread that shows it.
class DuplicateResults {
public:
    // Category numbers; a group goes to the first whose extensions hold its
    // own (compared in lower case), every other group to Others. None stands
    // for all groups.
    enum Category { None = 0, Documents = 1, Music = 2, Videos = 3, Archives = 4, Pictures = 5, Others = 6 };
    static constexpr int kTabCount = 7;
    enum SelectState { NotSelected = 0, Selected = 1, PartlySelected = 2 };
    using Group = quint32;
    using Copy = quint32;

    // An application bundle: a folder compared as a whole.
    struct Bundle {
        QString path;
        QString name;
        quint64 size = 0;  // sum of the sizes of the non-folder entries
        FileIdentity identity;
    };

    // Groups are added one after the other: bundle groups (copies are
    // bundles) or file groups (copies are indexes into `files`), each copy
    // in its shown order; the last copy is the one kept and names the group.
    explicit DuplicateResults(std::shared_ptr<const FileListing> files);
    // Room for that many groups and copies in all, so that adding them
    // copies nothing.
    void reserve(qsizetype groups, qsizetype copies);
    void addBundleGroup(const QList<Bundle>& bundles);
    void addFileGroup(const std::vector<quint32>& files);
    // Places the groups in their categories; called once all are added.
    void finishGroups();

    static Category categoryOfExtension(const QString& extendName);
    // The category shown by each tab: 0 All, 1 Documents, 2 Videos, 3 Music,
    // 4 Archives, 5 Pictures, 6 Others.
    static Category categoryOfTab(int tab);
    static QString categoryLabel(Category category);

    // The groups of a category in their shown order (None: all groups).
    const std::vector<Group>& groups(Category category) const { return m_categoryGroups[category]; }
    const std::vector<Group>& groupsForTab(int tab) const { return groups(categoryOfTab(tab)); }
    quint64 categorySize(Category category) const { return m_categorySizes[category]; }
    // Shows the groups of a category in another order (the same groups).
    void reorder(Category category, std::vector<Group> order);
    qsizetype groupCapacity() const { return qsizetype(m_groups.size()); }

    // A group: its name (of the kept copy), its extension ("APP" for
    // bundles), the size and number of its copies still listed, its state
    // of selection and its label "selected/all".
    QString groupName(Group group) const;
    QString groupExtension(Group group) const;
    bool isBundleGroup(Group group) const { return m_groups[group].bundle; }
    Category groupCategory(Group group) const { return Category(m_groups[group].category); }
    quint64 groupSize(Group group) const { return m_groups[group].size; }
    qsizetype copyCount(Group group) const { return m_groups[group].liveCount; }
    qsizetype selectedCount(Group group) const { return m_groups[group].selectedCount; }
    SelectState groupState(Group group) const { return SelectState(m_groups[group].state); }
    QString groupLabel(Group group) const;
    bool isDropped(Group group) const { return m_groups[group].dropped; }
    // The copies still listed, in order; the row-th of them.
    QList<Copy> copies(Group group) const;
    Copy copyAt(Group group, qsizetype row) const;
    qsizetype rowOfCopy(Copy copy) const;

    // A copy: its group, absolute path (lossless, see NativePath.h), size,
    // identity as searched, modification time (none for a bundle).
    Group groupOf(Copy copy) const { return m_copies[copy].group; }
    QString path(Copy copy) const;
    QByteArray nativePath(Copy copy) const;
    quint64 size(Copy copy) const;
    FileIdentity identity(Copy copy) const;
    QDateTime modified(Copy copy) const;
    bool isSelected(Copy copy) const { return m_copies[copy].selectedAt != 0; }
    bool isRemoved(Copy copy) const { return m_copies[copy].removed; }

    // Select all: in every group of the category every copy but the last
    // is selected and the group becomes partly selected. Unselect all
    // clears every copy of every group.
    void setAllSelectOrNoSelect(Category category, bool select);

    // Ticks or unticks one copy. Ticking the last unselected copy of a group
    // answers false and changes nothing unless `confirmed` (the page asks
    // "Are you sure you want to delete all the duplicate files?" first).
    bool setSelectState(Copy copy, bool select, bool confirmed = false);

    // The selected copies, in the order they were selected.
    QList<Copy> allSelectNumArr() const;
    qsizetype selectionSize() const { return m_selectionSize; }

    // After copies have been removed from the disk: takes each out of its
    // group and drops a group when no duplicate is left in it.
    void refreshOutlineView(const QList<Copy>& removed);

    // At the end of a removal: forgets the removed copies from the
    // selection; answers how many selected copies could not be removed.
    qsizetype forgetRemoved(const QList<Copy>& removed);

    // Bytes this result holds per copy and group (not the listing's), for the log.
    size_t bytesUsed() const;

private:
    struct CopyRecord {
        quint32 source = 0;      // a file of the listing, or a bundle
        Group group = 0;
        quint32 selectedAt = 0;  // the order of selection, 0 when not selected
        bool removed = false;
    };
    struct GroupRecord {
        quint64 size = 0;
        Copy firstCopy = 0;
        quint32 copyCount = 0;      // with the removed ones
        quint32 liveCount = 0;
        quint32 selectedCount = 0;  // live copies selected
        quint32 labelSelected = 0;  // the first number of the label
        quint8 category = None;
        quint8 state = NotSelected;
        bool bundle = false;
        bool dropped = false;
    };

    void setCopySelected(Copy copy, bool select);
    void updateGroupState(Group group);
    void afterRemoval(Copy copy);

    std::shared_ptr<const FileListing> m_files;
    std::vector<Bundle> m_bundles;
    std::vector<CopyRecord> m_copies;
    std::vector<GroupRecord> m_groups;
    std::array<std::vector<Group>, kTabCount> m_categoryGroups;  // index = category, [None] every group
    std::array<quint64, kTabCount> m_categorySizes{};
    quint32 m_selectionClock = 0;
    qsizetype m_selectionSize = 0;
};

}  // namespace velmora
