// The uninstaller on a fake Linux home with 2,000 applications: AppImages and folders with
// a launcher and some files each, many with settings left in the home. Opening the page
// lists them; their sizes are computed as their rows are drawn.
#include "GuiBench.h"
#include "gui/uninstall/MakeSureUninstallViewController.h"
#include "gui/uninstall/UninstallViewController.h"
#include "support/FakeAppTrees.h"

#include <QLineEdit>
#include <QScrollBar>
#include <QTableView>
#include <string>

namespace velmora::bench {
namespace {

// Every third application is a folder with a launcher and ten files; the rest are
// AppImages. Every other one has a settings folder and a cache in the home.
void makeApplications(const test::FakeAppTree& tree, int count) {
    for (int i = 0; i < count; ++i) {
        const std::string name = "Bench App " + std::to_string(i);
        const std::string folderName = "BenchApp" + std::to_string(i);
        if (i % 3 == 0) {
            const std::string folder = tree.inHome("Applications/" + folderName);
            test::writeTreeFile(folder + "/" + folderName + ".desktop",
                                "[Desktop Entry]\nName=" + name + "\nExec=" + folderName + "\n");
            for (int file = 0; file < 10; ++file) test::makeSizedFile(folder + "/lib/part" + std::to_string(file), 4096);
        } else {
            test::makeSizedFile(tree.inHome("Applications/" + folderName + "-1.0-x86_64.AppImage"), 100000 + i);
        }
        if (i % 2 == 0) {
            test::makeSizedFile(tree.inHome(".config/" + folderName + "/settings.json"), 300);
            test::makeSizedFile(tree.inHome(".cache/" + folderName + "/cache.bin"), 3000);
        }
    }
}

bool visibleSizesKnown(UninstallViewController& page) {
    QTableView* table = page.tableView();
    const int first = table->rowAt(0);
    int last = table->rowAt(table->viewport()->height() - 1);
    if (last < 0) last = int(page.showListArr().size()) - 1;
    if (first < 0) return false;
    for (int row = first; row <= last; ++row)
        if (page.showListArr().at(row)->size.isEmpty()) return false;
    return true;
}

}  // namespace

void benchUninstaller(BenchContext& context) {
    test::FakeAppTree tree("linux");
    const int count = context.scaled(2000);
    makeApplications(tree, count);

    UninstallViewController* page = nullptr;
    context.measure("Uninstaller", QString("open the page, %1 applications listed").arg(count), [&] {
        page = new UninstallViewController(nullptr);
        page->resize(1000, 700);
        page->show();
    }, [&] { return !page->isScan() && page->showListArr().size() == count; });

    context.measure("Uninstaller", "sizes of the shown rows fill in", [] {}, [&] { return visibleSizesKnown(*page); });
    context.measure("Uninstaller", "scroll to the end, sizes fill in", [&] { page->tableView()->scrollToBottom(); },
                    [&] { return visibleSizesKnown(*page); });
    context.measure("Uninstaller", "search", [&] { page->searchField()->setText("app 1"); },
                    [&] { return page->showListArr().size() < count; });
    context.measure("Uninstaller", "clear the search", [&] { page->searchField()->clear(); },
                    [&] { return page->showListArr().size() == count; });
    context.measure("Uninstaller", "sort by size", [&] { page->selectSortbyType(1, 1); },
                    [&] { return page->sortType() == 1; });
    context.measure("Uninstaller", "select all", [&] { page->selectAllButtonAction(); },
                    [&] { return page->tickedList().size() == count; });

    const auto panelShown = [&] { return page->makeSurePanel() && page->makeSurePanel()->isVisible(); };
    context.measure("Uninstaller", "one application -> related files", [&] { page->oneAppRemove(0); }, panelShown);
    page->makeSurePanel()->reject();
    settle(300);
    context.measure("Uninstaller", QString("%1 ticked -> related files").arg(count),
                    [&] { page->uninstallAppButtonAction(); }, panelShown);
    page->makeSurePanel()->reject();
    settle(300);
    delete page;
}

}  // namespace velmora::bench
