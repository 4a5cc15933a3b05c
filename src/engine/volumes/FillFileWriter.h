#pragma once

#include <QByteArray>
#include <QString>
#include <memory>

namespace velmora {

// Creates a file with the given contents; false when it could not be written whole.
bool createFileWithContents(const QString& path, const QByteArray& contents);

// An update handle on an existing file for the free-space fill, which only ever
// appends. The fill's small writes are gathered into large ones, and closing
// forces the data onto the device, so a fill file that is deleted right after
// has still overwritten the free space. A failed write (the volume is full) is
// reported by write or close; the file keeps what fitted.
class FillFileWriter {
public:
    explicit FillFileWriter(const QString& path);
    ~FillFileWriter();  // closes, see close()
    FillFileWriter(const FillFileWriter&) = delete;
    FillFileWriter& operator=(const FillFileWriter&) = delete;

    bool isOpen() const { return m_fd >= 0; }
    // Positions at the end of the file. Gathered data already lies at the end,
    // since this handle is the file's only writer.
    bool seekToEndOfFile();
    // Cuts the file at the current position. The cut is made when the handle
    // closes, and only where the file is still longer than what was written
    // from there: the same file in the end, without the cut-then-rewrite that a
    // FUSE FAT driver (fusefat) answers with a failed write and a damaged table.
    bool truncateFileAtOffset();
    bool writeData(const char* data, qsizetype size);
    // Writes what is gathered, flushes it to the device and closes; false when
    // any write failed.
    bool close();

private:
    bool flush();

    int m_fd = -1;
    qint64 m_offset = 0;     // position in the file of the first gathered byte
    std::unique_ptr<char[]> m_gathered;
    qsizetype m_gatheredSize = 0;
    bool m_failed = false;
    bool m_cutAtEnd = false;
};

}  // namespace velmora
