#pragma once

#include <QByteArray>
#include <QString>
#include <atomic>
#include <memory>

namespace velmora {

// Creates the file `name` in the open folder with the given contents, never
// through a link and never over an existing file; 0, or the errno of the failure.
int createFileWithContents(int folderFd, const QByteArray& name, const QByteArray& contents);

// Whether a write that failed with `error` failed because the volume holding
// `fd` is full: ENOSPC, or any error while the volume has no block left for us
// (the FUSE FAT driver answers a full volume with EPERM).
bool isVolumeFull(int error, int fd);

// An update handle on an existing file in the fill folder, for the free-space
// fill, which only ever appends. The fill's small writes are gathered into large
// ones, and closing forces the data onto the device, so a fill file that is
// deleted right after has still overwritten the free space. A failed write is
// reported by write or close, with its errno in error(); the file keeps what fitted.
class FillFileWriter {
public:
    FillFileWriter(int folderFd, const QByteArray& name);
    ~FillFileWriter();  // closes, see close()
    FillFileWriter(const FillFileWriter&) = delete;
    FillFileWriter& operator=(const FillFileWriter&) = delete;

    bool isOpen() const { return m_fd >= 0; }
    // The errno of the open or of the first failed write, cut or flush; 0 when none.
    int error() const { return m_error; }
    // Positions at the end of the file. Gathered data already lies at the end,
    // since this handle is the file's only writer.
    bool seekToEndOfFile();
    // Cuts the file at the current position. The cut is made when the handle
    // closes, and only where the file is still longer than what was written
    // from there: the same file in the end, without the cut-then-rewrite that a
    // FUSE FAT driver (fusefat) answers with a failed write and a damaged table.
    bool truncateFileAtOffset();
    bool writeData(const char* data, qsizetype size);
    // Appends zeros until the volume reports it is full, in ever smaller writes
    // once it does, so the last partly free unit is written too. False when the
    // cancel flag was seen or a write failed for another reason (see error()).
    bool writeZerosUntilFull(const std::atomic<bool>& cancel);
    // Writes what is gathered, flushes it to the device and closes; false when
    // any write, the cut or the flush failed.
    bool close();

private:
    bool flush();
    void fail(int error);

    int m_fd = -1;
    qint64 m_offset = 0;     // position in the file of the first gathered byte
    std::unique_ptr<char[]> m_gathered;
    qsizetype m_gatheredSize = 0;
    int m_error = 0;
    bool m_cutAtEnd = false;
};

}  // namespace velmora
