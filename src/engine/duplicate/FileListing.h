#pragma once

#include "engine/duplicate/BlockArray.h"
#include "engine/duplicate/FileIdentity.h"

#include <QByteArray>
#include <QString>
#include <QtGlobal>
#include <vector>

namespace velmora {

// The files a duplicate search listed, kept compact so that a million of them
// fit in little memory: each folder once, with its path as file-system bytes,
// and each file as a fixed record whose name is a slice of one shared arena.
// Paths and display strings are built only for the files asked about.
class FileListing {
public:
    struct File {
        quint64 size = 0;
        quint64 inode = 0;
        qint64 modifiedSeconds = 0;
        quint32 modifiedNanoseconds = 0;
        quint32 folder = 0;      // index into the folders
        quint32 nameOffset = 0;  // into the name arena
        quint16 nameLength = 0;
        quint16 device = 0;      // index into the devices met
    };
    static constexpr size_t kMaxDevices = 65536;

    // Adds a folder given by its absolute path and identity; answers its index.
    quint32 addFolder(const QByteArray& nativePath, const struct stat& st);
    // False, and nothing added, when the file lies on yet another device
    // after kMaxDevices of them.
    bool addFile(quint32 folder, const char* name, size_t nameLength, const struct stat& st);
    // Keeps only the files for which keep(index) is true, in their order.
    template <typename Keep>
    void filter(Keep keep) {
        size_t kept = 0;
        for (size_t i = 0; i < m_files.size(); ++i)
            if (keep(qsizetype(i))) m_files[kept++] = m_files[i];
        m_files.truncate(kept);
    }

    qsizetype size() const { return qsizetype(m_files.size()); }
    bool isEmpty() const { return m_files.empty(); }
    const File& file(qsizetype i) const { return m_files[size_t(i)]; }

    // The file's absolute path as bytes, and as the lossless QString the rest
    // of the program passes around.
    QByteArray nativePath(qsizetype i) const;
    QString path(qsizetype i) const;
    QString name(qsizetype i) const;
    FileIdentity identity(qsizetype i) const;
    // Bytes held per listed file (records, names and folders), for the log.
    size_t bytesUsed() const;

private:
    struct Folder {
        QByteArray path;
        quint64 device = 0;
        quint64 inode = 0;
    };

    BlockArray<File, 16384> m_files;
    std::vector<Folder> m_folders;
    std::vector<quint64> m_devices;
    BlockArray<char, 65536> m_names;  // a name never spans two blocks
};

}  // namespace velmora
