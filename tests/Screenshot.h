#pragma once

#include <QDir>
#include <QWidget>

// Saves a picture of a widget to the build's screenshots folder for review.
inline bool saveScreenshot(QWidget* widget, const QString& name) {
    const QString dir = qEnvironmentVariable("VELMORA_SCREENSHOT_DIR", QDir::tempPath() + "/velmora-screenshots");
    QDir().mkpath(dir);
    return widget->grab().save(dir + "/" + name + ".png");
}
