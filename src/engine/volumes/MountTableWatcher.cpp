#include "engine/volumes/MountTableWatcher.h"

#include "engine/platform/StandardPaths.h"

#include <QFileSystemWatcher>
#include <QSocketNotifier>
#include <fcntl.h>
#include <unistd.h>

namespace velmora {

MountTableWatcher::MountTableWatcher(QObject* parent) : QObject(parent) {
    if (StandardPaths::layout() == StandardPaths::Layout::MacOS) {
        m_folderWatcher = new QFileSystemWatcher({StandardPaths::volumesRoot()}, this);
        connect(m_folderWatcher, &QFileSystemWatcher::directoryChanged, this, &MountTableWatcher::mountTableChanged);
        return;
    }
    // The kernel flags the open mount table with a priority event whenever a
    // mount comes or goes; polling for it also takes the event off again.
    m_mountInfo = ::open("/proc/self/mountinfo", O_RDONLY | O_CLOEXEC);
    if (m_mountInfo < 0) return;
    m_notifier = new QSocketNotifier(m_mountInfo, QSocketNotifier::Exception, this);
    connect(m_notifier, &QSocketNotifier::activated, this, &MountTableWatcher::mountTableChanged);
}

MountTableWatcher::~MountTableWatcher() {
    delete m_notifier;
    if (m_mountInfo >= 0) ::close(m_mountInfo);
}

}  // namespace velmora
