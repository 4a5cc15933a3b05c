#pragma once

#include "engine/copy/CopyReport.h"

#include <atomic>
#include <vector>

namespace velmora {

// Compares every copied file with its source byte for byte (and every copied link's
// target), after the copy is written out, reading the copies from the device rather
// than from what is still cached of the writes where the system allows.
class CopyVerifier {
public:
    explicit CopyVerifier(const std::atomic<bool>& cancel) : m_cancel(cancel) {}

    QList<CopyIssue> compare(const QList<std::pair<QByteArray, QByteArray>>& pairs);
    quint64 comparedFiles() const { return m_compared; }

private:
    QString difference(const QByteArray& sourcePath, const QByteArray& copyPath);

    const std::atomic<bool>& m_cancel;
    std::vector<char> m_sourceBuffer;
    std::vector<char> m_copyBuffer;
    quint64 m_compared = 0;
};

}  // namespace velmora
