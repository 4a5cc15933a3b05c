#pragma once

#include "engine/volumes/FreeSpaceWipe.h"
#include "engine/volumes/WholeDriveErase.h"

#include <QEventLoop>
#include <QStringList>
#include <QTimer>
#include <functional>

namespace velmora::test {

// What a wipe run reported until its end view, or until the whole-drive erase stopped without one.
struct WipeRun {
    QStringList progressTexts;
    QList<float> percents;
    int closeWindowCount = 0;
    bool ended = false;
    bool succeeded = false;
    bool cancelled = false;
    QString endText;
    bool stalled = false;
    bool timedOut = false;

    // Starts the run and serves the event loop until it ends, stalls or times out.
    // onProgress, when given, runs at each progress text.
    static WipeRun until(FreeSpaceWipe& wipe, WholeDriveErase* erase, const std::function<void()>& start, int timeoutMs,
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
        if (erase) {
            QObject::connect(erase, &WholeDriveErase::runStalled, &loop, [&](const QString& reason) {
                run.stalled = true;
                run.endText = reason;
                loop.quit();
            });
        }
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
