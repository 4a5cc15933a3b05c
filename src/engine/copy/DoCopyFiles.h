#pragma once

#include "engine/copy/CopyReport.h"
#include "engine/copy/CopyResult.h"
#include "engine/copy/FileNode.h"
#include "engine/copy/UniqueFd.h"

#include <QObject>
#include <atomic>
#include <memory>

namespace velmora {

// The copy engine: copies the ticked nodes of a source tree into a destination folder.
// Wholly ticked nodes are copied with everything below them; a partly ticked folder gets
// its folder in the destination and its ticked contents copied into it, each level of
// nested partly ticked folders by its own concurrent task on the background queue (each
// task reports its own progress from 5 to 100). Every item is reached from the source
// root's descriptor without following a link. A failed item is reported and the copy
// goes on; copyEnded comes once, after the last task (and the verification, if asked).
class DoCopyFiles : public QObject {
    Q_OBJECT

public:
    explicit DoCopyFiles(QObject* parent = nullptr);
    ~DoCopyFiles() override;  // stops the copy and waits for its tasks

    // The folder the nodes lie under (the source volume's folder), opened once.
    bool setSourceRoot(const QString& path, QString* error);
    void setVerifyAfterCopying(bool verify) { m_verify = verify; }

    // Starts copying the array into the destination folder, asynchronously; returns at once.
    void doCopyFilesWithArr(const FileNodeList& arr, const QString& copyPath);
    // The same into a folder already open (the dated folder made by CloneFolder).
    void doCopyFilesWithArr(const FileNodeList& arr, UniqueFd copyFolder, const QString& copyPath);

    // A name not yet present in the folder: the candidate, else the item's own name
    // without its extension followed by " 1", " 2", ...
    static QString createFileWithPath(int folderFd, const QString& normalName, const QString& fileName);
    static QString createFileWithPath(const QString& folder, const QString& normalName, const QString& fileName);

    void setIsCancel(bool cancel) { m_isCancel.store(cancel, std::memory_order_relaxed); }
    bool isCancel() const { return m_isCancel.load(std::memory_order_relaxed); }
    bool isRunning() const { return m_copyRunning.load(); }

    quint64 copiedBytes() const { return m_report.copiedBytes.load(std::memory_order_relaxed); }
    quint64 copiedItems() const { return m_report.copiedItems.load(std::memory_order_relaxed); }
    // Valid after copyEnded.
    const CopyResult& result() const { return m_result; }

signals:
    void topCopyProgress(float percent);
    void topCopyFilePath(const QString& path);
    void copyFileError();
    void copyEnded();

private:
    struct Folder;
    void startTask(const FileNodeList& arr, std::shared_ptr<Folder> destination);
    void copyArr(const FileNodeList& arr, const std::shared_ptr<Folder>& destination);
    void doCopyFilesWithChiNode(const FileNodeList& children, const std::shared_ptr<Folder>& destination);
    void toCopyFileWithNode(const FileNode& node, const std::shared_ptr<Folder>& destination);
    std::shared_ptr<Folder> makeFolderFor(const FileNode& node, const std::shared_ptr<Folder>& destination);
    bool destinationStillThere(const Folder& destination);
    // The open source folder that holds a node, reached from the source root one folder
    // at a time without following a link or leaving its mount; `name` is the node's own.
    UniqueFd openParentInSource(const FileNode& node, QByteArray& name, QString* failure) const;
    void applyFolderAttributes(const FileNode& node, const Folder& destination);
    void taskEnded();
    void finish();

    UniqueFd m_sourceRoot;
    QByteArray m_sourceRootPath;
    bool m_verify = false;
    std::atomic<bool> m_isCancel{false};
    std::atomic<bool> m_destinationLost{false};
    std::atomic<int> m_pendingTasks{0};
    std::atomic<bool> m_copyRunning{false};
    QString m_copyPath;
    CopyReport m_report;
    CopyResult m_result;
};

}  // namespace velmora
