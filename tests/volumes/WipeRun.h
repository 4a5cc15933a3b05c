#pragma once

#include "engine/volumes/FreeSpaceWipe.h"

#include <QEventLoop>
#include <QStringList>
#include <QTimer>
#include <functional>

namespace velmora::test {

// What a wipe run reported until its end view.
struct WipeRun {
    QStringList progressTexts;
    QList<float> percents;
    int closeWindowCount = 0;
    bool ended = false;
    bool succeeded = false;
    bool cancelled = false;
    QString endText;
    bool timedOut = false;

    // Starts the run and serves the event loop until it ends or times out.
    // onProgress, when given, runs at each progress text.
    static WipeRun until(FreeSpaceWipe& wipe, const std::function<void()>& start, int timeoutMs,
                         const std::function<void(const QString&)>& onProgress = {}) {
        WipeRun run;
        QEventLoop loop;
        QObject::connect(&wipe, &FreeSpaceWipe::setRemoveProgress, &loop, [&](const QString& text, float percent) {
            run.progressTexts.append(text);
            run.percents.append(percent);
            if (onProgress) onProgress(text);
        });
        QObject::connect(&wipe, &FreeSpaceWipe::closeWindow, &loop, [&] { ++run.closeWindowCount; });
        QObject::connect(&wipe, &FreeSpaceWipe::eraserEnded, &loop, [&](bool succeeded, const QString& text, bool cancelled) {
            run.ended = true;
            run.succeeded = succeeded;
            run.endText = text;
            run.cancelled = cancelled;
            loop.quit();
        });
        QTimer::singleShot(timeoutMs, &loop, [&] {
            run.timedOut = true;
            loop.quit();
        });
        start();
        loop.exec();
        return run;
    }
};

}  // namespace velmora::test
