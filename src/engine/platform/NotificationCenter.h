#pragma once

#include <QObject>
#include <QVariant>

namespace velmora {

// In-application notifications by name ("appWillTerminate",
// "CHANGE_PROJECT_VERSION", "MCVolumeMount", "MCVolumeUnmount"). Posting is
// thread-safe: observers receive the signal on their own thread.
class NotificationCenter : public QObject {
    Q_OBJECT
public:
    static NotificationCenter* defaultCenter();
    void post(const QString& name, const QVariant& object = {});

signals:
    void posted(const QString& name, const QVariant& object);
};

}  // namespace velmora
