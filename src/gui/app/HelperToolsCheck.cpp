#include "gui/app/HelperToolsCheck.h"

#include "engine/platform/LogCategories.h"
#include "engine/platform/NativePath.h"
#include "engine/platform/StandardPaths.h"

#include <QMessageBox>
#include <unistd.h>

namespace velmora {

QStringList missingHelperTools() {
    QStringList missing;
    for (const QString& name : StandardPaths::helperToolNames()) {
        const QString path = StandardPaths::toolPath(name);
        if (::access(nativePath(path).constData(), X_OK) != 0) missing.append(path);
    }
    return missing;
}

void warnAboutMissingHelperTools(QWidget* parent) {
    const QStringList missing = missingHelperTools();
    if (missing.isEmpty()) return;
    QStringList shown;
    for (const QString& path : missing) {
        qCWarning(lcApp, "helper program missing: %s", qPrintable(escapedPath(path)));
        shown.append(displayPath(path));
    }
    auto* box = new QMessageBox(QMessageBox::Warning, "Velmora Data Eraser is incomplete",
                                "These helper programs were not found, so the jobs that need them will fail. "
                                "Install the application again.",
                                QMessageBox::Ok, parent);
    box->setDetailedText(shown.join('\n'));
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->open();
}

}  // namespace velmora
