#pragma once

#include "engine/copy/FileNode.h"
#include "engine/copy/NodeTreeOperator.h"

#include <QFuture>
#include <QObject>
#include <QStringList>
#include <atomic>
#include <functional>

namespace velmora {

// Lists the source of a drive copy into FileNode objects with sizes: the volume root
// first, other folders when they are opened. Listings run on the background queue and
// hand their nodes to the thread that owns this object, which alone changes the root
// array. Entries on another mount (a volume mounted inside the source) are not listed:
// they are not part of the source.
class EumeRoot : public QObject {
    Q_OBJECT

public:
    explicit EumeRoot(QObject* parent = nullptr);
    ~EumeRoot() override;  // stops and waits for a listing under way

    // Names never listed, exact match.
    static const QStringList& neverListedNames();

    // Remembers the array and lists the path into it (eumeRootListNode, or
    // getRootNodeListWithPath when folders are to be measured too).
    void eumeAllRootFileNodeWithRootArr(FileNodeList* rootArr, const QString& rootPath, bool measureFolders = false);
    // Lists the path into the root array in the background; files are measured, folders
    // are not. endScan follows the last node.
    void eumeRootListNode(const QString& path);
    // The same, measuring every folder too, and stoppable before each entry.
    void getRootNodeListWithPath(const QString& path);
    // Lists a folder node's entries into its children at once (files measured, folders
    // measured when asked), their ticks following the folder's when it is wholly ticked or
    // not ticked. Nothing when already listed.
    void getNodeListWithFaterNode(FileNode* node, bool measureFolders = false);
    // The same in the background for a page: childrenListed follows on this thread.
    void listChildrenInBackground(const FileNodePtr& node);

    // Inserts before the first node whose size is less than or equal to its own.
    static void insertFileInRootArrWithFile(FileNodeList& rootArr, const FileNodePtr& node);
    // Largest first; equal sizes keep their order.
    static void doRootArrSort(FileNodeList& rootArr);

    float getProgress() const;
    void pauseScan();
    void stopScan();
    bool isScanning() const;

    // Lists a folder without the root array: every entry that is not left out, in listing
    // order, each given to `take` as it is made. False when stopped.
    bool listFolder(const QString& folderPath, FileNode* father, bool measureFolders,
                    const std::function<void(const FileNodePtr&)>& take);

signals:
    void rootArrChanged();
    void childrenListed(velmora::FileNode* node);
    void endScan();

private:
    void startRootListing(const QString& path, bool measureFolders);
    void addToRootArr(const FileNodePtr& node, int generation);
    void endScanOf(int generation);  // from the background: endScan unless a newer listing began
    void waitWhilePaused() const;
    void track(QFuture<void> task);

    FileNodeList* m_rootArr = nullptr;
    NodeTreeOperator m_sizes;
    std::atomic<qint32> m_toList{0};
    std::atomic<qint32> m_listed{0};
    std::atomic<bool> m_stop{false};
    std::atomic<bool> m_pause{false};
    QList<QFuture<void>> m_tasks;
    int m_generation = 0;  // of the root listing; changed on this object's thread only
};

}  // namespace velmora
