#pragma once

#include <QString>
#include <atomic>

namespace velmora {

class FileNode;

// Measures files and folders of the copy source: the bytes of the regular files below a
// path, walked relative to folder descriptors without following links and without
// entering another mount. Can be stopped from any thread.
class NodeTreeOperator {
public:
    // The size of one item itself (a link is the link); 0 when it cannot be read.
    quint64 getOneFileSizeWithPath(const QString& path) const;
    // Adds the bytes of every regular file at or below the path to totalSize. False when
    // stopped before the end (totalSize then holds what was found so far).
    bool getFileSizeWithPat(const QString& path, quint64& totalSize) const;
    // Measures a node: a file by its own size, a folder by everything below it. Marks the
    // size known unless the measuring was stopped.
    void measure(FileNode& node) const;

    void stop() { m_stopped.store(true, std::memory_order_relaxed); }
    void resume() { m_stopped.store(false, std::memory_order_relaxed); }
    bool isStopped() const { return m_stopped.load(std::memory_order_relaxed); }

    // The bytes of the regular files below an open folder, on its own mount only.
    static bool sizeBelow(int folderFd, const std::atomic<bool>& stopped, quint64& totalSize);

private:
    std::atomic<bool> m_stopped{false};
};

}  // namespace velmora
