#include "engine/copy/CopyReport.h"

#include <QMutexLocker>

namespace velmora {

void CopyReport::fail(const QString& path, const QString& reason) {
    QMutexLocker lock(&m_mutex);
    m_failures.append({path, reason});
}

void CopyReport::note(const QString& reason, const QString& path) {
    QMutexLocker lock(&m_mutex);
    for (CopyNote& note : m_notes) {
        if (note.reason == reason) {
            ++note.count;
            return;
        }
    }
    m_notes.append({reason, 1, path});
}

QList<CopyIssue> CopyReport::failures() const {
    QMutexLocker lock(&m_mutex);
    return m_failures;
}

QList<CopyNote> CopyReport::notes() const {
    QMutexLocker lock(&m_mutex);
    return m_notes;
}

std::optional<QByteArray> CopyReport::firstCopyOf(dev_t device, ino_t inode) const {
    QMutexLocker lock(&m_mutex);
    const auto found = m_linkedCopies.constFind({quint64(device), quint64(inode)});
    if (found == m_linkedCopies.constEnd()) return std::nullopt;
    return *found;
}

void CopyReport::rememberCopy(dev_t device, ino_t inode, const QByteArray& destinationPath) {
    QMutexLocker lock(&m_mutex);
    m_linkedCopies.insert({quint64(device), quint64(inode)}, destinationPath);
}

void CopyReport::copied(const QByteArray& sourcePath, const QByteArray& destinationPath) {
    if (!m_keepPairs) return;
    QMutexLocker lock(&m_mutex);
    m_pairs.append({sourcePath, destinationPath});
}

QList<std::pair<QByteArray, QByteArray>> CopyReport::copiedPairs() const {
    QMutexLocker lock(&m_mutex);
    return m_pairs;
}

}  // namespace velmora
