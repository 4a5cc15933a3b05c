#pragma once

#include "support/Screenshot.h"

#include <QPainter>
#include <QPixmap>

// Saves the window with a panel or menu over it, where the user sees it: such
// panels are windows of their own, which a plain grab of the main window
// misses. Behind a modal panel the window is dimmed.
// Several fronts (a panel and a menu opened from it) are drawn in the order given.
inline bool saveScreenshotWith(QWidget* window, const QList<QWidget*>& fronts, const QString& name,
                               bool dimBehind = true) {
    QPixmap picture = window->grab();
    QPainter painter(&picture);
    if (dimBehind) painter.fillRect(picture.rect(), QColor(0, 0, 0, 110));
    for (QWidget* front : fronts) {
        const QPixmap frontPicture = front->grab();
        const QPoint topLeft = front->mapToGlobal(QPoint(0, 0)) - window->mapToGlobal(QPoint(0, 0));
        painter.drawPixmap(QRect(topLeft, frontPicture.size() / frontPicture.devicePixelRatio()), frontPicture);
    }
    painter.end();
    const QString dir = qEnvironmentVariable("VELMORA_SCREENSHOT_DIR", QDir::tempPath() + "/velmora-screenshots");
    QDir().mkpath(dir);
    return picture.save(dir + "/" + name + ".png");
}

inline bool saveScreenshotWith(QWidget* window, QWidget* front, const QString& name, bool dimBehind = true) {
    return saveScreenshotWith(window, QList<QWidget*>{front}, name, dimBehind);
}
