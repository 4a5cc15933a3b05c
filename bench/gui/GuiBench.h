#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <functional>

namespace velmora::bench {

// One measured action of a page.
struct Measurement {
    QString page;
    QString action;
    double longestStallMs = 0;  // longest gap between two ticks of the 5 ms timer
    double timeToResultMs = 0;  // from the start of the action until its result is on screen
    double peakMiB = 0;         // largest resident set of the process during the action
    bool finished = false;      // false when the result did not appear before the time limit
};

// What every scenario gets: a folder for its generated data (removed after the run) and
// the table the measurements go to.
class BenchContext {
public:
    BenchContext(QString workDir, QString binDir, double scale);

    QString workDir() const { return m_workDir; }
    // Where the built programs are (srm, velmora-diskutil, ...).
    QString binDir() const { return m_binDir; }
    // Multiplies the sizes of the generated data; 1 is the size the goals are set for.
    int scaled(int count) const;

    // Runs `start`, then the event loop until `done` holds or `timeoutMs` passed, while a
    // 5 ms timer on this thread records the longest stall. Records and returns the result.
    Measurement measure(const QString& page, const QString& action, const std::function<void()>& start,
                        const std::function<bool()>& done, int timeoutMs = 10 * 60 * 1000);

    const QList<Measurement>& results() const { return m_results; }

private:
    QString m_workDir;
    QString m_binDir;
    double m_scale;
    QList<Measurement> m_results;
};

// Runs the event loop for `ms` milliseconds, so that a page settles between actions.
void settle(int ms);

// Runs the event loop until `condition` holds or `timeoutMs` passed; true when it held.
bool waitFor(const std::function<bool()>& condition, int timeoutMs);

// The table of results, as Markdown.
QString resultTable(const QList<Measurement>& results);

}  // namespace velmora::bench
