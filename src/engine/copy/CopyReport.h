#pragma once

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QMutex>
#include <QString>
#include <atomic>
#include <optional>
#include <sys/types.h>
#include <utility>

namespace velmora {

// An item that was not copied, or a copied file whose contents differ, with the reason.
struct CopyIssue {
    QString path;
    QString reason;
};

// Something the destination could not hold for copied items (their permissions, owners,
// extended attributes, times, hard links): how many items, and the first of them.
struct CopyNote {
    QString reason;
    qint64 count = 0;
    QString firstPath;
};

// What a copy found, gathered from its concurrent tasks.
class CopyReport {
public:
    std::atomic<quint64> copiedBytes{0};
    std::atomic<quint64> copiedItems{0};

    void fail(const QString& path, const QString& reason);
    void note(const QString& reason, const QString& path);
    QList<CopyIssue> failures() const;
    QList<CopyNote> notes() const;

    // The destination of the first copy of a file with more than one link, by its
    // source identity, so the other names become links to it.
    std::optional<QByteArray> firstCopyOf(dev_t device, ino_t inode) const;
    void rememberCopy(dev_t device, ino_t inode, const QByteArray& destinationPath);

    // Copied files and links (source, destination) for the verification, when kept.
    void keepForVerification(bool keep) { m_keepPairs = keep; }
    void copied(const QByteArray& sourcePath, const QByteArray& destinationPath);
    QList<std::pair<QByteArray, QByteArray>> copiedPairs() const;

private:
    mutable QMutex m_mutex;
    QList<CopyIssue> m_failures;
    QList<CopyNote> m_notes;
    QHash<QPair<quint64, quint64>, QByteArray> m_linkedCopies;
    bool m_keepPairs = false;
    QList<std::pair<QByteArray, QByteArray>> m_pairs;
};

}  // namespace velmora
