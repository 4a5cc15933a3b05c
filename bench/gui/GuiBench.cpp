#include "GuiBench.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QTimer>
#include <algorithm>
#include <cmath>
#include <utility>

namespace velmora::bench {

namespace {

constexpr int kTickMs = 5;

// The kernel keeps the largest resident set in VmHWM; writing 5 to clear_refs starts it
// again from the present size, so each action gets its own peak.
void resetPeakMemory() {
    QFile clearRefs("/proc/self/clear_refs");
    if (clearRefs.open(QIODevice::WriteOnly)) clearRefs.write("5");
}

double peakMemoryMiB() {
    QFile status("/proc/self/status");
    if (!status.open(QIODevice::ReadOnly)) return 0;
    for (const QByteArray& line : status.readAll().split('\n')) {
        if (!line.startsWith("VmHWM:")) continue;
        const QByteArray kib = line.mid(6).trimmed().split(' ').value(0);
        return kib.toDouble() / 1024.0;
    }
    return 0;
}

// Ticks every 5 ms on the user interface thread and keeps the longest gap between ticks:
// any work that holds the thread shows up as a gap.
class StallMeter {
public:
    StallMeter() {
        m_timer.setTimerType(Qt::PreciseTimer);
        m_timer.setInterval(kTickMs);
        QObject::connect(&m_timer, &QTimer::timeout, [this] { tick(); });
    }

    void start() {
        m_clock.start();
        m_lastTickNs = 0;
        m_longestNs = 0;
        m_timer.start();
    }

    void tick() {
        const qint64 now = m_clock.nsecsElapsed();
        m_longestNs = std::max(m_longestNs, now - m_lastTickNs);
        m_lastTickNs = now;
    }

    double longestMs() {
        tick();  // a stall that lasts until now counts too
        return double(m_longestNs) / 1e6;
    }

    void stop() { m_timer.stop(); }

private:
    QTimer m_timer;
    QElapsedTimer m_clock;
    qint64 m_lastTickNs = 0;
    qint64 m_longestNs = 0;
};

}  // namespace

BenchContext::BenchContext(QString workDir, QString binDir, double scale)
    : m_workDir(std::move(workDir)), m_binDir(std::move(binDir)), m_scale(scale) {}

int BenchContext::scaled(int count) const { return std::max(1, int(std::lround(count * m_scale))); }

Measurement BenchContext::measure(const QString& page, const QString& action, const std::function<void()>& start,
                                  const std::function<bool()>& done, int timeoutMs) {
    settle(50);
    resetPeakMemory();
    StallMeter meter;
    meter.start();
    settle(20);  // the meter has ticked before the action starts

    QElapsedTimer sinceStart;
    sinceStart.start();
    start();
    Measurement result{page, action};
    result.finished = waitFor(done, timeoutMs);
    result.timeToResultMs = double(sinceStart.nsecsElapsed()) / 1e6;
    result.longestStallMs = meter.longestMs();
    meter.stop();
    result.peakMiB = peakMemoryMiB();
    m_results.append(result);
    return result;
}

void settle(int ms) {
    QEventLoop loop;
    QTimer::singleShot(ms, &loop, &QEventLoop::quit);
    loop.exec();
}

bool waitFor(const std::function<bool()>& condition, int timeoutMs) {
    if (condition()) return true;
    QElapsedTimer clock;
    clock.start();
    QEventLoop loop;
    QTimer poll;
    poll.setTimerType(Qt::PreciseTimer);
    bool held = false;
    QObject::connect(&poll, &QTimer::timeout, [&] {
        held = condition();
        if (held || clock.elapsed() > timeoutMs) loop.quit();
    });
    poll.start(1);
    loop.exec();
    return held;
}

QString resultTable(const QList<Measurement>& results) {
    QString table = "| page | action | longest stall ms | time to result ms | peak MiB |\n|---|---|---|---|---|\n";
    for (const Measurement& row : results) {
        table += QString("| %1 | %2 | %3 | %4 | %5 |\n")
                     .arg(row.page, row.action, QString::number(row.longestStallMs, 'f', 1),
                          row.finished ? QString::number(row.timeToResultMs, 'f', 0) : QString("not finished"),
                          QString::number(row.peakMiB, 'f', 1));
    }
    return table;
}

}  // namespace velmora::bench
