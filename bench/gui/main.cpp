// bench_gui: drives the real pages offscreen on large generated data and prints, for each
// action, the longest stall of the event loop, the time until the result is on screen and
// the peak memory.
//
//   bench_gui [--work DIR] [--only PAGE[,PAGE...]] [--scale F]
//
// --work   folder for the generated data (default /var/tmp/velmora-bench-gui; removed after)
// --only   runs only the scenarios whose page name contains one of the words
// --scale  multiplies the data sizes (0.1 for a quick look; the goals are for 1)
#include "GuiBench.h"
#include "gui/widgets/Style.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QTemporaryDir>
#include <algorithm>
#include <cstdio>

namespace velmora::bench {

// The scenarios, one per page; each file of this folder defines one.
void benchShell(BenchContext& context);
void benchEraseFiles(BenchContext& context);
void benchHistory(BenchContext& context);
void benchDuplicateFinder(BenchContext& context);
void benchUninstaller(BenchContext& context);
void benchInternetCleaner(BenchContext& context);
void benchDriveCopy(BenchContext& context);

}  // namespace velmora::bench

using namespace velmora::bench;

int main(int argc, char* argv[]) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    // The pages keep their history and settings here, never in the user's own data.
    QTemporaryDir dataDir;
    qputenv("VELMORA_DATA_DIR", dataDir.path().toUtf8());

    QApplication app(argc, argv);
    QApplication::setOrganizationName("Velmora");
    QApplication::setApplicationName("Velmora Data Eraser bench");
    QCommandLineParser parser;
    parser.setApplicationDescription("Responsiveness of the pages on large generated data.");
    parser.addHelpOption();
    parser.addOption({"work", "Folder for the generated data.", "dir", "/var/tmp/velmora-bench-gui"});
    parser.addOption({"only", "Only the pages whose name contains one of these words.", "pages"});
    parser.addOption({"scale", "Multiplies the data sizes.", "factor", "1"});
    parser.process(app);

    QFont font = QApplication::font();
    font.setPointSize(12);
    QApplication::setFont(font);
    velmora::Style::apply(app);

    const QString workDir = QDir(parser.value("work")).absolutePath();
    QDir(workDir).removeRecursively();
    QDir().mkpath(workDir);
    BenchContext context(workDir, QCoreApplication::applicationDirPath(), parser.value("scale").toDouble());

    const struct {
        const char* page;
        void (*run)(BenchContext&);
    } scenarios[] = {
        {"Shell", benchShell},
        {"Erase Files", benchEraseFiles},
        {"History", benchHistory},
        {"Duplicate Finder", benchDuplicateFinder},
        {"Uninstaller", benchUninstaller},
        {"Internet Cleaner", benchInternetCleaner},
        {"Drive Copy", benchDriveCopy},
    };
    const QStringList only = parser.value("only").split(',', Qt::SkipEmptyParts);
    for (const auto& scenario : scenarios) {
        const QString page = scenario.page;
        if (!only.isEmpty() &&
            std::none_of(only.begin(), only.end(), [&](const QString& word) { return page.contains(word, Qt::CaseInsensitive); }))
            continue;
        std::fprintf(stderr, "%s...\n", scenario.page);
        scenario.run(context);
        std::fputs(qPrintable(resultTable(context.results())), stderr);
    }
    QDir(workDir).removeRecursively();
    std::fputs(qPrintable(resultTable(context.results())), stdout);
    return 0;
}
