#pragma once

#include <QByteArray>
#include <atomic>
#include <sys/stat.h>
#include <vector>

namespace velmora {

class CopyReport;

// Copies one item faithfully, relative to folder descriptors: a file with its contents
// (holes kept, through reflink or copy_file_range where the kernel can, else large
// buffered reads), a folder with everything in it, a symbolic link as a link (never
// followed); permissions, owners (as root), extended attributes and times are set on
// the copy, and files with several links inside the copy become links again. Special
// files are not copied, and a folder on another mount is not entered; both are
// reported. Whatever fails or is not kept goes to the report; the copy carries on.
// One copier per task (it owns its buffer); the report is shared.
class TreeCopier {
public:
    TreeCopier(CopyReport& report, const std::atomic<bool>& cancel);

    // Copies the entry `name` of the open source folder to `destinationName` in the open
    // destination folder, which must not exist yet. The paths name both for the report.
    void copyEntry(int sourceFolder, const QByteArray& name, const QByteArray& sourcePath, int destinationFolder,
                   const QByteArray& destinationName, const QByteArray& destinationPath);

    // Sets permissions, owner (as root), extended attributes and times of a copied folder
    // on its open descriptor, and reports what the destination did not keep.
    void applyAttributes(int sourceFd, int destinationFd, const struct stat& source, const QByteArray& sourcePath);

private:
    void copyFolder(int sourceFolder, const QByteArray& name, const struct stat& status, const QByteArray& sourcePath,
                    int destinationFolder, const QByteArray& destinationName, const QByteArray& destinationPath);
    void copyFile(int sourceFolder, const QByteArray& name, const struct stat& status, const QByteArray& sourcePath,
                  int destinationFolder, const QByteArray& destinationName, const QByteArray& destinationPath);
    void copyLink(int sourceFolder, const QByteArray& name, const struct stat& status, const QByteArray& sourcePath,
                  int destinationFolder, const QByteArray& destinationName, const QByteArray& destinationPath);
    bool linkToFirstCopy(const struct stat& status, const QByteArray& sourcePath, int destinationFolder,
                         const QByteArray& destinationName);
    // 0 or the errno of the failure.
    int copyContents(int in, int out, const struct stat& status);
    int copyRange(int in, int out, off_t offset, off_t length);
    void copyExtendedAttributes(int in, int out, const QByteArray& sourcePath);
    bool cancelled() const { return m_cancel.load(std::memory_order_relaxed); }

    CopyReport& m_report;
    const std::atomic<bool>& m_cancel;
    std::vector<char> m_buffer;
    bool m_tryClone = true;
    bool m_tryCopyRange = true;
};

// The readable name of a failure's errno.
QString reasonOf(int error);

}  // namespace velmora
