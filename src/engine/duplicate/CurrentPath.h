#pragma once

#include <QMutex>
#include <QString>

namespace velmora {

// A path written by a search thread and read by a polling timer.
class CurrentPath {
public:
    void set(const QString& path) {
        QMutexLocker lock(&m_mutex);
        m_path = path;
    }
    QString get() const {
        QMutexLocker lock(&m_mutex);
        return m_path;
    }

private:
    mutable QMutex m_mutex;
    QString m_path;
};

}  // namespace velmora
