#pragma once

#include <QByteArray>

// What the free-space fill does on ext4 to reach every free block, not only
// those a file may take.
namespace velmora {

// ext4 keeps a few clusters in reserve that no writer may take, not even the
// administrator (/sys/fs/ext4/<device>/reserved_clusters, by default 2 % of the
// volume, at most 4,096 clusters), so a fill that ran until the volume was full
// still leaves them, and the old data in them, unwritten. While this object lives
// the ext4 file system holding the open file `fd` keeps no such reserve; the old
// value is put back when it goes. Only root may change it: for anyone else, and
// on any other file system, nothing is changed. A run killed meanwhile leaves the
// reserve at 0 until the volume is mounted again, which recomputes it.
class Ext4ReserveRelease {
public:
    explicit Ext4ReserveRelease(int fd);
    ~Ext4ReserveRelease();
    Ext4ReserveRelease(const Ext4ReserveRelease&) = delete;
    Ext4ReserveRelease& operator=(const Ext4ReserveRelease&) = delete;

private:
    QByteArray m_attribute;  // its sysfs attribute while released
    QByteArray m_oldValue;
};

// Writes every metadata block the journal holds to its place on the volume (a
// checkpoint) and zeroes the journal. A block the fill's files took for their
// own bookkeeping (extent blocks, the fill folder's entries) reaches the volume
// only at a checkpoint; one freed before it, when the files are removed, keeps
// the old data it held. Only root may; for anyone else, and on any other file
// system, nothing is done. False (with errno) only when root's checkpoint of an
// ext4 volume failed.
bool checkpointExt4Journal(int fd);

}  // namespace velmora
