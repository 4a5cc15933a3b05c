#include "engine/erase/PrivilegedHelper.h"

#include "engine/erase/MessageChannel.h"

#include <QList>
#include <climits>

namespace velmora::PrivilegedHelper {

QByteArray refusalFor(const QByteArray& path) {
    if (!path.startsWith('/')) return "refused: not an absolute path";
    if (path.size() >= PATH_MAX) return "refused: path too long";
    bool onlySlashes = true;
    for (const QByteArray& component : path.split('/')) {
        if (component == "." || component == "..") return "refused: the path holds a . or .. component";
        if (!component.isEmpty()) onlySlashes = false;
    }
    if (onlySlashes) return "refused: will not remove /";
    return {};
}

QByteArray removeExactly(const QByteArray& path, const TreeRemoval::Identity& identity) {
    const QByteArray refusal = refusalFor(path);
    if (!refusal.isEmpty()) return refusal;
    return TreeRemoval::remove(path, identity);
}

QByteArray removalRequest(const QByteArray& path, const TreeRemoval::Identity& identity) {
    return QByteArray::number(quint64(identity.device)) + ' ' + QByteArray::number(quint64(identity.inode)) + ' ' + path;
}

QByteArray answer(const QByteArray& request) {
    const qsizetype firstSpace = request.indexOf(' ');
    const qsizetype secondSpace = firstSpace < 0 ? -1 : request.indexOf(' ', firstSpace + 1);
    bool deviceOk = false;
    bool inodeOk = false;
    const quint64 device = request.left(firstSpace).toULongLong(&deviceOk);
    const quint64 inode = request.mid(firstSpace + 1, secondSpace - firstSpace - 1).toULongLong(&inodeOk);
    if (secondSpace < 0 || !deviceOk || !inodeOk) return "refused: not a removal request";
    return removeExactly(request.mid(secondSpace + 1), {dev_t(device), ino_t(inode)});
}

int serve(int inFd, int outFd) {
    MessageChannel channel(inFd, outFd);
    if (!channel.send(kGreeting)) return 1;
    QByteArray request;
    while (channel.receive(&request))
        if (!channel.send(answer(request))) return 1;
    return 0;
}

}  // namespace velmora::PrivilegedHelper
