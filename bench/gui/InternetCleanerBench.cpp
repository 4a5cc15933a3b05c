// The Internet Cleaner on a fake home with four browsers and large databases: three of
// the Chrome family with 100,000 history entries and 20,000 cookies each, and Firefox
// with 100,000 places. Scanning fills the browser and category tables; cleaning empties
// the ticked categories.
#include "GuiBench.h"
#include "gui/inter/CleanerInterEndViewController.h"
#include "gui/inter/InternetViewController.h"
#include "support/BrowserProfiles.h"

#include <QPushButton>
#include <QStackedWidget>
#include <string>

namespace velmora::bench {
namespace {

// The rows go in as one statement each, in one transaction: minutes faster than row by row.
std::string numbers(int count) {
    return "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < " + std::to_string(count) + ") ";
}

void makeChromeFamilyProfile(const std::string& folder, int urls, int cookies) {
    test::makeChromeProfile(folder, {});
    test::runSql(folder + "/History", numbers(urls) +
                 "INSERT INTO urls(id,url,title,visit_count,last_visit_time) "
                 "SELECT i, 'https://site' || i || '.example/page', 'Page ' || i, 1, 13300000000000000 FROM n");
    test::runSql(folder + "/History", numbers(urls) + "INSERT INTO visits(url,visit_time) SELECT i, 13300000000000000 FROM n");
    test::runSql(folder + "/Network/Cookies", numbers(cookies) +
                 "INSERT INTO cookies SELECT 1,'.site' || i || '.example','','c','v',x'','/',0,1,1,1,1,1,1,0,2,443,1 FROM n");
}

void makeFirefoxFamilyProfile(const std::string& folder, int places, int cookies) {
    test::makeFirefoxProfile(folder, {});
    test::runSql(folder + "/places.sqlite", numbers(places) +
                 "INSERT INTO moz_places(id,url,title,rev_host,guid) "
                 "SELECT i, 'https://place' || i || '.example/', 'Place', 'elpmaxe.', 'guid' || i FROM n");
    test::runSql(folder + "/places.sqlite", numbers(places) +
                 "INSERT INTO moz_historyvisits(place_id,visit_date,visit_type) SELECT i, 1, 1 FROM n");
    test::runSql(folder + "/cookies.sqlite", numbers(cookies) +
                 "INSERT INTO moz_cookies(name,value,host,path) SELECT 'c' || i, 'v', '.example.com', '/' FROM n");
}

}  // namespace

void benchInternetCleaner(BenchContext& context) {
    test::FakeBrowserHome home;
    const int urls = context.scaled(100000);
    const int cookies = context.scaled(20000);
    for (const char* profile : {".config/google-chrome/Default", ".config/chromium/Default",
                                ".config/BraveSoftware/Brave-Browser/Default"})
        makeChromeFamilyProfile(home / profile, urls, cookies);
    makeFirefoxFamilyProfile(home / ".mozilla/firefox/bench.default-release", urls, cookies);

    auto* page = new InternetViewController(nullptr);
    page->resize(1000, 700);
    page->show();
    settle(100);
    context.measure("Internet Cleaner", QString("scan, tables of 4 browsers with %1 URLs each").arg(urls),
                    [&] { page->checkOpenBrower(); },
                    [&] { return page->views()->currentWidget() == page->resultView() && page->isCanClick(); });
    for (int row = 1; row < page->browserArr().size(); ++row)
        context.measure("Internet Cleaner", QString("highlight browser %1").arg(row + 1),
                        [&] { page->highlightBrowser(row); }, [&] { return page->broSelectIndex() == row; });
    if (page->cleanButton()->isEnabled()) {
        context.measure("Internet Cleaner", "clean the ticked categories", [&] { page->cleanButtonAction(); },
                        [&] { return page->endPanel() && page->endPanel()->isVisible(); });
        page->endPanel()->okButton()->click();
    }
    settle(300);
    delete page;
}

}  // namespace velmora::bench
