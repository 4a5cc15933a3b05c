#include "engine/duplicate/FileListing.h"

#include "engine/platform/NativePath.h"

#include <algorithm>
#include <sys/stat.h>

namespace velmora {

quint32 FileListing::addFolder(const QByteArray& nativePath, const struct stat& st) {
    m_folders.push_back({nativePath, quint64(st.st_dev), quint64(st.st_ino)});
    return quint32(m_folders.size() - 1);
}

bool FileListing::addFile(quint32 folder, const char* name, size_t nameLength, const struct stat& st) {
    const FileIdentity seen = FileIdentity::of(st, st);
    // Few devices are met, and the newest is the likeliest.
    auto device = std::find(m_devices.rbegin(), m_devices.rend(), seen.device);
    if (device == m_devices.rend()) {
        if (m_devices.size() == kMaxDevices) return false;
        m_devices.push_back(seen.device);
        device = m_devices.rbegin();
    }
    File record;
    record.size = seen.size;
    record.device = quint16(m_devices.rend() - device - 1);
    record.inode = seen.inode;
    record.modifiedSeconds = seen.modifiedSeconds;
    record.modifiedNanoseconds = quint32(seen.modifiedNanoseconds);
    record.folder = folder;
    record.nameLength = quint16(nameLength);
    record.nameOffset = quint32(m_names.appendInOneBlock(name, nameLength));
    m_files.push_back(record);
    return true;
}

QByteArray FileListing::nativePath(qsizetype i) const {
    const File& record = m_files[size_t(i)];
    const QByteArray& folder = m_folders[record.folder].path;
    QByteArray result;
    result.reserve(folder.size() + 1 + record.nameLength);
    result.append(folder);
    if (!folder.endsWith('/')) result.append('/');
    result.append(m_names.at(record.nameOffset), record.nameLength);
    return result;
}

QString FileListing::path(qsizetype i) const { return pathFromNative(nativePath(i)); }

QString FileListing::name(qsizetype i) const {
    const File& record = m_files[size_t(i)];
    return pathFromNative(QByteArray(m_names.at(record.nameOffset), record.nameLength));
}

FileIdentity FileListing::identity(qsizetype i) const {
    const File& record = m_files[size_t(i)];
    const Folder& folder = m_folders[record.folder];
    FileIdentity identity;
    identity.device = m_devices[record.device];
    identity.inode = record.inode;
    identity.size = record.size;
    identity.modifiedSeconds = record.modifiedSeconds;
    identity.modifiedNanoseconds = record.modifiedNanoseconds;
    identity.folderDevice = folder.device;
    identity.folderInode = folder.inode;
    return identity;
}

size_t FileListing::bytesUsed() const {
    size_t folders = m_folders.capacity() * sizeof(Folder);
    for (const Folder& folder : m_folders) folders += size_t(folder.path.capacity());
    return m_files.capacity() * sizeof(File) + m_names.capacity() + folders + m_devices.capacity() * sizeof(quint64);
}

}  // namespace velmora
