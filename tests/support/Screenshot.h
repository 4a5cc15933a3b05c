#pragma once

#include <QDir>
#include <QPainter>
#include <QPixmap>
#include <QWidget>

// Saves a picture of a widget to the build's screenshots folder for review.
inline bool saveScreenshot(QWidget* widget, const QString& name) {
    const QString dir = qEnvironmentVariable("VELMORA_SCREENSHOT_DIR", QDir::tempPath() + "/velmora-screenshots");
    QDir().mkpath(dir);
    return widget->grab().save(dir + "/" + name + ".png");
}

// The window with a modal panel over it, as the user sees it (the panel is a
// window of its own, which a grab of the main window misses).
inline bool saveScreenshotWithPanel(QWidget* window, QWidget* panel, const QString& name) {
    QPixmap picture = window->grab();
    QPainter painter(&picture);
    painter.fillRect(picture.rect(), QColor(0, 0, 0, 110));
    const QPixmap front = panel->grab();
    const QSize size = front.size() / front.devicePixelRatio();
    painter.drawPixmap(QRect(QPoint((window->width() - size.width()) / 2, (window->height() - size.height()) / 2), size),
                       front);
    painter.end();
    const QString dir = qEnvironmentVariable("VELMORA_SCREENSHOT_DIR", QDir::tempPath() + "/velmora-screenshots");
    QDir().mkpath(dir);
    return picture.save(dir + "/" + name + ".png");
}
