#include "gui/app/HelperToolsCheck.h"

#include "engine/platform/LogCategories.h"
#include "engine/platform/NativePath.h"
#include "engine/platform/StandardPaths.h"

#include "gui/widgets/ImageSetButton.h"
#include "gui/widgets/MAAttachedWindow.h"
#include "gui/widgets/PanelContent.h"
#include "gui/widgets/Style.h"

#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>
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

QWidget* warnAboutMissingHelperTools(QWidget* parent) {
    const QStringList missing = missingHelperTools();
    if (missing.isEmpty()) return nullptr;
    QStringList shown;
    for (const QString& path : missing) {
        qCWarning(lcApp, "helper program missing: %s", qPrintable(escapedPath(path)));
        shown.append(displayPath(path));
    }
    auto* panel = new MAAttachedWindow(parent, {520, 210 + 22 * int(shown.size())});
    panel->setAttribute(Qt::WA_DeleteOnClose);
    panel->setObjectName("missingHelpers");
    QVBoxLayout* layout =
        PanelContent::addMessage(panel, "ic_warning", "Velmora Data Eraser is incomplete",
                                 "These helper programs were not found, so the jobs that need them will fail. "
                                 "Install the application again.");
    QLabel* paths = Style::label(shown.join('\n'), 12, true);
    paths->setTextFormat(Qt::PlainText);
    layout->addWidget(paths);
    auto* ok = ImageSetButton::primary("OK", panel);
    PanelContent::addButtons(layout, {ok});
    panel->setCancelButton(ok);
    QObject::connect(ok, &QPushButton::clicked, panel, &QDialog::accept);
    panel->open();
    return panel;
}

}  // namespace velmora
