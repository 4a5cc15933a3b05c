#include "engine/duplicate/DuplicateResults.h"

#include "engine/duplicate/PathNames.h"
#include "engine/platform/NativePath.h"

#include <QStringList>
#include <algorithm>

namespace velmora {

namespace {

// Kept as they have always been: "tar.gz" and "tar.bz2" never match a
// single-suffix extension, and "acc" stands beside "aac".
const QStringList kDocumentExtensions = {"doc", "docx", "xls", "xlsx", "mpp", "ppt", "pptx", "txt",
                                         "rtf", "pdf",  "odt", "ott",  "ods", "odg", "odf",  "odb",
                                         "odp", "htm",  "html", "xml", "pages", "key"};
const QStringList kMusicExtensions = {"wav", "aiff", "au", "mp3", "midi", "wma", "acc", "ape", "ra", "aac"};
const QStringList kVideoExtensions = {"avi", "rmvb", "rm",  "3gp", "3g2", "flv", "mpeg", "mpg", "qt",
                                      "qtm", "qtx",  "mov", "mpe", "mp4", "m4v", "mkv",  "wmv", "ogg"};
const QStringList kArchiveExtensions = {"zip", "rar", "tar", "tar.gz", "tar.bz2"};
const QStringList kPictureExtensions = {"bmp", "jpg", "png", "ico", "gif", "tiff", "jpeg", "tga", "exif",
                                        "fpx", "svg", "psd", "cdr", "pcd", "dxf",  "ufo",  "eps"};

}  // namespace

DuplicateResults::DuplicateResults(std::shared_ptr<const FileListing> files) : m_files(std::move(files)) {}

void DuplicateResults::reserve(qsizetype groups, qsizetype copies) {
    m_groups.reserve(size_t(groups));
    m_copies.reserve(size_t(copies));
}

void DuplicateResults::addBundleGroup(const QList<Bundle>& bundles) {
    GroupRecord group;
    group.firstCopy = Copy(m_copies.size());
    group.bundle = true;
    for (const Bundle& bundle : bundles) {
        m_copies.push_back({quint32(m_bundles.size()), Group(m_groups.size()), 0, false});
        m_bundles.push_back(bundle);
        group.size += bundle.size;
    }
    group.copyCount = group.liveCount = quint32(bundles.size());
    m_groups.push_back(group);
}

void DuplicateResults::addFileGroup(const std::vector<quint32>& files) {
    GroupRecord group;
    group.firstCopy = Copy(m_copies.size());
    for (quint32 file : files) {
        m_copies.push_back({file, Group(m_groups.size()), 0, false});
        group.size += m_files->file(file).size;
    }
    group.copyCount = group.liveCount = quint32(files.size());
    m_groups.push_back(group);
}

void DuplicateResults::finishGroups() {
    m_copies.shrink_to_fit();
    m_groups.shrink_to_fit();
    std::vector<Group>& all = m_categoryGroups[None];
    all.resize(m_groups.size());
    for (Group group = 0; group < m_groups.size(); ++group) {
        all[group] = group;
        const Category category = categoryOfExtension(groupExtension(group));
        m_groups[group].category = quint8(category);
        m_categoryGroups[category].push_back(group);
        m_categorySizes[category] += m_groups[group].size;
    }
}

DuplicateResults::Category DuplicateResults::categoryOfExtension(const QString& extendName) {
    const QString extension = extendName.toLower();
    if (kDocumentExtensions.contains(extension)) return Documents;
    if (kMusicExtensions.contains(extension)) return Music;
    if (kVideoExtensions.contains(extension)) return Videos;
    if (kArchiveExtensions.contains(extension)) return Archives;
    if (kPictureExtensions.contains(extension)) return Pictures;
    return Others;
}

DuplicateResults::Category DuplicateResults::categoryOfTab(int tab) {
    static constexpr Category kTabs[kTabCount] = {None, Documents, Videos, Music, Archives, Pictures, Others};
    return tab >= 0 && tab < kTabCount ? kTabs[tab] : None;
}

QString DuplicateResults::categoryLabel(Category category) {
    switch (category) {
    case Documents: return "Documents";
    case Music: return "Music";
    case Videos: return "Videos";
    case Archives: return "Archives";
    case Pictures: return "Pictures";
    case Others: return "Others";
    case None: break;
    }
    return {};
}

void DuplicateResults::reorder(Category category, std::vector<Group> order) {
    m_categoryGroups[category] = std::move(order);
}

QString DuplicateResults::groupName(Group group) const {
    const GroupRecord& record = m_groups[group];
    const CopyRecord& kept = m_copies[record.firstCopy + record.copyCount - 1];
    return record.bundle ? m_bundles[kept.source].name : m_files->name(kept.source);
}

QString DuplicateResults::groupExtension(Group group) const {
    return m_groups[group].bundle ? QStringLiteral("APP") : PathNames::pathExtension(groupName(group));
}

QString DuplicateResults::groupLabel(Group group) const {
    return QString("%1/%2").arg(m_groups[group].labelSelected).arg(m_groups[group].liveCount);
}

QList<DuplicateResults::Copy> DuplicateResults::copies(Group group) const {
    const GroupRecord& record = m_groups[group];
    QList<Copy> live;
    live.reserve(record.liveCount);
    for (Copy copy = record.firstCopy; copy < record.firstCopy + record.copyCount; ++copy)
        if (!m_copies[copy].removed) live.append(copy);
    return live;
}

DuplicateResults::Copy DuplicateResults::copyAt(Group group, qsizetype row) const {
    const GroupRecord& record = m_groups[group];
    for (Copy copy = record.firstCopy; copy < record.firstCopy + record.copyCount; ++copy)
        if (!m_copies[copy].removed && row-- == 0) return copy;
    Q_ASSERT(false);
    return record.firstCopy;
}

qsizetype DuplicateResults::rowOfCopy(Copy copy) const {
    if (m_copies[copy].removed) return -1;
    qsizetype row = 0;
    for (Copy before = m_groups[m_copies[copy].group].firstCopy; before < copy; ++before)
        if (!m_copies[before].removed) ++row;
    return row;
}

QString DuplicateResults::path(Copy copy) const {
    const CopyRecord& record = m_copies[copy];
    return m_groups[record.group].bundle ? m_bundles[record.source].path : m_files->path(record.source);
}

QByteArray DuplicateResults::nativePath(Copy copy) const {
    const CopyRecord& record = m_copies[copy];
    return m_groups[record.group].bundle ? velmora::nativePath(m_bundles[record.source].path)
                                         : m_files->nativePath(record.source);
}

quint64 DuplicateResults::size(Copy copy) const {
    const CopyRecord& record = m_copies[copy];
    return m_groups[record.group].bundle ? m_bundles[record.source].size : m_files->file(record.source).size;
}

FileIdentity DuplicateResults::identity(Copy copy) const {
    const CopyRecord& record = m_copies[copy];
    return m_groups[record.group].bundle ? m_bundles[record.source].identity : m_files->identity(record.source);
}

QDateTime DuplicateResults::modified(Copy copy) const {
    if (m_groups[m_copies[copy].group].bundle) return {};
    return QDateTime::fromMSecsSinceEpoch(identity(copy).modificationMSecs(), Qt::UTC);
}

void DuplicateResults::setCopySelected(Copy copy, bool select) {
    CopyRecord& record = m_copies[copy];
    if (select == (record.selectedAt != 0)) return;
    record.selectedAt = select ? ++m_selectionClock : 0;
    m_selectionSize += select ? 1 : -1;
    if (!record.removed) m_groups[record.group].selectedCount += select ? 1 : -1;
}

void DuplicateResults::updateGroupState(Group group) {
    GroupRecord& record = m_groups[group];
    record.state = record.selectedCount == 0                ? NotSelected
                   : record.selectedCount == record.liveCount ? Selected
                                                              : PartlySelected;
    record.labelSelected = record.selectedCount;
}

void DuplicateResults::setAllSelectOrNoSelect(Category category, bool select) {
    for (Group group : m_categoryGroups[category]) {
        const GroupRecord& record = m_groups[group];
        quint32 live = 0;
        for (Copy copy = record.firstCopy; copy < record.firstCopy + record.copyCount; ++copy)
            if (!m_copies[copy].removed) setCopySelected(copy, select && ++live < record.liveCount);
        updateGroupState(group);
    }
}

bool DuplicateResults::setSelectState(Copy copy, bool select, bool confirmed) {
    const CopyRecord& record = m_copies[copy];
    const GroupRecord& group = m_groups[record.group];
    if (record.removed || group.dropped) return false;
    const bool leavesNoCopy = select && record.selectedAt == 0 && group.selectedCount + 1 >= group.liveCount;
    if (leavesNoCopy && !confirmed) return false;
    setCopySelected(copy, select);
    updateGroupState(record.group);
    return true;
}

QList<DuplicateResults::Copy> DuplicateResults::allSelectNumArr() const {
    std::vector<std::pair<quint32, Copy>> ordered;
    ordered.reserve(size_t(m_selectionSize));
    for (Copy copy = 0; copy < m_copies.size(); ++copy)
        if (m_copies[copy].selectedAt != 0) ordered.emplace_back(m_copies[copy].selectedAt, copy);
    std::sort(ordered.begin(), ordered.end());
    QList<Copy> selected;
    selected.reserve(qsizetype(ordered.size()));
    for (const auto& entry : ordered) selected.append(entry.second);
    return selected;
}

void DuplicateResults::afterRemoval(Copy copy) {
    CopyRecord& removed = m_copies[copy];
    GroupRecord& group = m_groups[removed.group];
    if (removed.removed || group.dropped) return;
    removed.removed = true;
    group.size -= qMin(group.size, size(copy));
    --group.liveCount;
    if (removed.selectedAt != 0) --group.selectedCount;
    const bool wasPartlySelected = group.state == PartlySelected;
    if (group.liveCount == 0 || (wasPartlySelected && group.liveCount == 1)) {
        group.dropped = true;
        return;
    }
    // The label says whether any copy is still selected, not how many.
    group.state = group.selectedCount > 0 ? PartlySelected : NotSelected;
    group.labelSelected = group.selectedCount > 0 ? 1 : 0;
}

void DuplicateResults::refreshOutlineView(const QList<Copy>& removed) {
    bool anyDropped = false;
    for (Copy copy : removed) {
        afterRemoval(copy);
        anyDropped = anyDropped || m_groups[m_copies[copy].group].dropped;
    }
    if (!anyDropped) return;
    for (std::vector<Group>& shown : m_categoryGroups)
        std::erase_if(shown, [this](Group group) { return m_groups[group].dropped; });
}

qsizetype DuplicateResults::forgetRemoved(const QList<Copy>& removed) {
    for (Copy copy : removed) setCopySelected(copy, false);
    return m_selectionSize;
}

size_t DuplicateResults::bytesUsed() const {
    size_t bytes = m_copies.capacity() * sizeof(CopyRecord) + m_groups.capacity() * sizeof(GroupRecord);
    for (const std::vector<Group>& shown : m_categoryGroups) bytes += shown.capacity() * sizeof(Group);
    return bytes + m_bundles.capacity() * sizeof(Bundle);
}

}  // namespace velmora
