#include "gui/app/UpdateViewController.h"

#include "engine/erase/PublicUtilities.h"
#include "engine/update/KxLinkUrl.h"
#include "engine/update/UpdateCheck.h"
#include "gui/widgets/ImageSetButton.h"
#include "gui/widgets/MAAttachedWindow.h"
#include "gui/widgets/MLCircularIndicator.h"
#include "gui/widgets/PanelContent.h"
#include "gui/widgets/RFOverlayScroller.h"
#include "gui/widgets/Style.h"

#include <QDesktopServices>
#include <QFontDatabase>
#include <QFutureWatcher>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLayout>
#include <QScrollArea>
#include <QScrollBar>
#include <QTextDocument>
#include <QUrl>
#include <QVBoxLayout>
#include <QtConcurrent>

namespace velmora {
namespace {

constexpr int kMessagePanelHeight = 190;
constexpr int kUpdatePanelHeight = 370;
constexpr int kMeasureWidth = 200;
constexpr int kHeadlineWidth = 322;  // the panel less its margins and the image column

// The height a note's text needs in the system font of size 10 at a width of 200.
int drawingHeight(const QString& text) {
    QFont font = QFontDatabase::systemFont(QFontDatabase::GeneralFont);
    font.setPointSize(10);
    return QFontMetrics(font).boundingRect(QRect(0, 0, kMeasureWidth, 100000), Qt::TextWordWrap, text).height();
}

}  // namespace

UpdateViewController::UpdateViewController(MAAttachedWindow* superDelegate)
    : QWidget(superDelegate),
      m_superDelegate(superDelegate),
      m_proClose(ImageSetButton::secondary("Close")),
      m_noNetClose(ImageSetButton::secondary("Close")),
      m_noUpdateClose(ImageSetButton::secondary("OK")),
      m_haveClose(new ImageSetButton("Skip This Version", "btn_secl_normal", 12, nullptr, "btn_secl")),
      m_updateButton(ImageSetButton::primary("Install Now")) {
    m_haveClose->setMinimumWidth(150);
    for (QPushButton* close : {m_proClose, m_noNetClose, m_noUpdateClose, m_haveClose})
        connect(close, &QPushButton::clicked, this, &UpdateViewController::closeWindow);
    connect(m_updateButton, &QPushButton::clicked, this, &UpdateViewController::updateClickHereAction);

    createCheckProgressView();
    createResultView(m_noNetworkView, "ic_nonetwork", "No Internet Connection",
                     "The update server could not be reached. Check the connection and try again later.",
                     m_noNetClose);
    createResultView(m_noUpdateView, "ic_success", "Velmora Data Eraser is up to date.",
                     "You are running the newest release.", m_noUpdateClose);
    createHaveUpdateView();
    showOnly(m_checkProgressView);
    if (m_superDelegate) m_superDelegate->installEventFilter(this);

    auto* watcher = new QFutureWatcher<VersionChange>(this);
    connect(watcher, &QFutureWatcher<VersionChange>::finished, this,
            [this, watcher] { versionChangeArrived(watcher->result()); });
    watcher->setFuture(QtConcurrent::run(&UpdateViewController::getVersionChange));
    m_changeValueScrollView->verticalScrollBar()->setValue(0);
}

UpdateViewController* UpdateViewController::showOn(QWidget* mainWindow) {
    auto* window = new MAAttachedWindow(mainWindow, {kPanelWidth, kMessagePanelHeight});
    window->setAttribute(Qt::WA_DeleteOnClose);
    auto* controller = new UpdateViewController(window);
    window->centreOnParent();
    window->open();
    return controller;
}

void UpdateViewController::createCheckProgressView() {
    m_checkProgressView = new QWidget(this);
    auto* layout = new QVBoxLayout(m_checkProgressView);
    layout->setContentsMargins(28, 26, 28, 22);
    auto* top = new QHBoxLayout;
    top->setSpacing(18);
    auto* indicator = new MLCircularIndicator(m_checkProgressView, 44);
    indicator->setIndeterminate(true);
    top->addWidget(indicator, 0, Qt::AlignTop);
    auto* texts = new QVBoxLayout;
    texts->setSpacing(6);
    texts->addWidget(Style::label("Checking for Updates…", 15, false, true));
    QLabel* message = Style::label("Asking the update server for the newest release.", 12, true);
    message->setWordWrap(true);
    texts->addWidget(message);
    top->addLayout(texts, 1);
    layout->addLayout(top);
    PanelContent::addButtons(layout, {m_proClose});
}

void UpdateViewController::createResultView(QWidget*& view, const QString& image, const QString& title,
                                             const QString& message, QPushButton* button) {
    view = new QWidget(this);
    QVBoxLayout* layout = PanelContent::addMessage(view, image, title, message);
    PanelContent::addButtons(layout, {button});
}

void UpdateViewController::createHaveUpdateView() {
    m_haveUpdateView = new QWidget(this);
    QVBoxLayout* layout = PanelContent::addMessage(m_haveUpdateView, "ic_update", QString(), QString());
    m_headline = m_haveUpdateView->findChild<QLabel*>("panelTitle");
    m_whatsNew = PanelContent::messageLabel(m_haveUpdateView);
    // The version comes from the remote list: it is shown as text, never as markup.
    m_headline->setTextFormat(Qt::PlainText);

    m_changeValueScrollView = new QScrollArea(m_haveUpdateView);
    m_changeValueScrollView->setFixedSize(kNotesWidth, kNotesMinHeight);
    m_changeValueScrollView->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_changeValueScrollView->setFrameShape(QFrame::NoFrame);
    m_changeValueScrollView->setStyleSheet("QScrollArea, QScrollArea > QWidget > QWidget { background: transparent; }");
    RFOverlayScroller::apply(m_changeValueScrollView);
    auto* document = new QWidget;
    document->setFixedSize(kNotesWidth, kNotesMinHeight);
    m_changeValueScrollView->setWidget(document);
    layout->addWidget(m_changeValueScrollView, 0, Qt::AlignHCenter);
    PanelContent::addButtons(layout, {m_haveClose, m_updateButton});
}

void UpdateViewController::showOnly(QWidget* view) {
    const int height = view == m_haveUpdateView ? kUpdatePanelHeight : kMessagePanelHeight;
    if (m_superDelegate) {
        m_superDelegate->setFixedSize(kPanelWidth, height);
        m_superDelegate->centreOnParent();
    }
    setGeometry(0, 0, kPanelWidth, height);
    for (QWidget* each : {m_checkProgressView, m_noNetworkView, m_noUpdateView, m_haveUpdateView}) {
        each->setGeometry(rect());
        each->setVisible(each == view);
    }
}

UpdateViewController::VersionChange UpdateViewController::getVersionChange() {
    VersionChange change;
    change.network = PublicUtilities::isCanBeUseNetWork();
    if (change.network) change.remote = UpdateCheck::fetchUpdateList().dictionary;
    return change;
}

void UpdateViewController::versionChangeArrived(const VersionChange& change) {
    if (!change.network) {
        showOnly(m_noNetworkView);
        return;
    }
    whatIsNewVersionDiff(change.remote);
}

void UpdateViewController::whatIsNewVersionDiff(const QVariantMap& remote) {
    if (!UpdateCheck::isNewer(remote)) {
        showOnly(m_noUpdateView);
        return;
    }
    showOnly(m_haveUpdateView);
    m_whatsNew->setText("What's new:");
    m_headline->setText(QString("Velmora Data Eraser %1 has been released.").arg(remote.value("Version").toString()));
    // The headline wraps: it keeps the room its lines need beside the image.
    m_headline->setMinimumHeight(m_headline->heightForWidth(kHeadlineWidth));
    m_haveUpdateView->layout()->activate();
    fillNotes(UpdateCheck::notesOf(remote));
    m_changeValueScrollView->verticalScrollBar()->setValue(0);
    update();
}

void UpdateViewController::fillNotes(const QVariantMap& notes) {
    int documentHeight = 0;
    for (const QVariant& note : notes) documentHeight += std::max(drawingHeight(note.toString()), kNoteMinHeight);
    documentHeight = std::max(documentHeight, kNotesMinHeight);
    QWidget* document = m_changeValueScrollView->widget();
    document->setFixedSize(kNotesWidth, documentHeight);

    qDeleteAll(m_noteLabels);
    m_noteLabels.clear();
    const QStringList lines = UpdateCheck::numberedNotes(notes);
    int y = 0;
    for (int number = 1; number <= lines.size(); ++number) {
        const QString note = UpdateCheck::noteText(notes, number);
        auto* label = new QLabel(lines.at(number - 1), document);
        // Notes come from the remote list: shown as text, never as markup.
        label->setTextFormat(Qt::PlainText);
        label->setFont(Style::lightFont(12));
        label->setWordWrap(true);
        label->setAlignment(Qt::AlignLeft | Qt::AlignTop);
        label->setStyleSheet(QString("color: %1;").arg(Style::rgba(Style::kText)));
        if (notes.contains(QString::number(number))) label->setToolTip(Qt::convertFromPlainText(note));
        const int height = std::max(drawingHeight(note), kLabelMinHeight);
        label->setGeometry(0, y, kNotesWidth, height);
        label->show();
        m_noteLabels.append(label);
        y += height;
    }
}

void UpdateViewController::updateClickHereAction() {
    closeWindow();
    const QUrl download(KxLinkUrl::GetUrl("UpdateURL"));
    // Only a web page is opened, never a local file or another program's scheme.
    if (download.scheme() == "https" || download.scheme() == "http") QDesktopServices::openUrl(download);
}

void UpdateViewController::closeWindow() {
    if (m_superDelegate) m_superDelegate->close();
}

bool UpdateViewController::eventFilter(QObject* watched, QEvent* event) {
    // The type first: the panel's own destruction sends events here while its
    // MAAttachedWindow part is already gone, and reading the guarded pointer then
    // would cast a QDialog to it.
    if (event->type() == QEvent::KeyPress && watched == m_superDelegate &&
        static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape) {
        closeWindow();
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

}  // namespace velmora
