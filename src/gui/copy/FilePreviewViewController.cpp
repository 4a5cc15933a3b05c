#include "gui/copy/FilePreviewViewController.h"

#include "engine/platform/NativePath.h"
#include "gui/widgets/ImageSetButton.h"
#include "gui/widgets/SizeText.h"
#include "gui/widgets/Style.h"

#include <QHBoxLayout>
#include <QImage>
#include <QKeyEvent>
#include <QLabel>
#include <QPlainTextEdit>
#include <QStringDecoder>
#include <QVBoxLayout>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace velmora {
namespace {

constexpr qint64 kPictureLimit = 32 << 20;  // read no more than this for a preview
constexpr qint64 kTextLimit = 64 << 10;

struct FileStart {
    QByteArray bytes;
    qint64 size = -1;  // -1: not a regular file or not readable
    QString problem;
};

FileStart readStart(const QString& path) {
    FileStart start;
    const int fd = openLongPath(nativePath(path), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0) {
        start.problem = QString::fromLocal8Bit(strerror(errno));
        return start;
    }
    struct stat status {};
    if (fstat(fd, &status) == 0 && S_ISREG(status.st_mode)) {
        start.size = status.st_size;
        start.bytes.resize(qMin<qint64>(status.st_size, kPictureLimit));
        qint64 done = 0;
        while (done < start.bytes.size()) {
            const ssize_t got = read(fd, start.bytes.data() + done, size_t(start.bytes.size() - done));
            if (got <= 0) break;
            done += got;
        }
        start.bytes.truncate(done);
    } else {
        start.problem = "not a regular file";
    }
    close(fd);
    return start;
}

// Text when the start decodes as UTF-8 without NUL bytes.
bool looksLikeText(const QByteArray& bytes, QString& text) {
    const QByteArray head = bytes.left(kTextLimit);
    if (head.contains('\0')) return false;
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    text = decoder.decode(head);
    // A character cut at the end of the head is no reason to call the file binary.
    return !decoder.hasError() || head.size() == kTextLimit;
}

}  // namespace

FilePreviewViewController::FilePreviewViewController(const QString& path, QWidget* parent)
    : MAAttachedWindow(parent, {560, 440}), m_closeButton(ImageSetButton::primary("Close", this)) {
    setAttribute(Qt::WA_DeleteOnClose);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(24, 20, 24, 18);
    layout->setSpacing(10);
    const qsizetype slash = path.lastIndexOf('/');
    QLabel* title = Style::label(displayPath(path.mid(slash + 1)), 15, false, true);
    title->setTextFormat(Qt::PlainText);
    layout->addWidget(title);

    const FileStart start = readStart(path);
    QString text;
    const QImage picture = start.size >= 0 ? QImage::fromData(start.bytes) : QImage();
    if (!picture.isNull()) {
        m_kind = Kind::Picture;
        auto* view = new QLabel(this);
        view->setAlignment(Qt::AlignCenter);
        view->setPixmap(QPixmap::fromImage(picture.scaled(510, 320, Qt::KeepAspectRatio, Qt::SmoothTransformation)));
        layout->addWidget(view, 1);
    } else if (start.size >= 0 && looksLikeText(start.bytes, text)) {
        m_kind = Kind::Text;
        auto* view = new QPlainTextEdit(text, this);
        view->setReadOnly(true);
        view->setFont(QFont("monospace", 10));
        view->setStyleSheet("QPlainTextEdit { background: rgba(0,0,0,60); border: none; border-radius: 6px; }");
        layout->addWidget(view, 1);
    } else {
        QLabel* note = Style::label(start.size >= 0 ? "There is no preview for this kind of file."
                                                    : QString("This item cannot be previewed: %1.").arg(start.problem),
                                    12, true);
        note->setAlignment(Qt::AlignCenter);
        layout->addWidget(note, 1);
    }
    QLabel* details = Style::label(start.size >= 0 ? byteToSizeWithByte(quint64(start.size)) : QString(), 11, true);
    auto* bottom = new QHBoxLayout;
    bottom->addWidget(details);
    bottom->addStretch(1);
    bottom->addWidget(m_closeButton);
    layout->addLayout(bottom);
    connect(m_closeButton, &QPushButton::clicked, this, &QDialog::accept);
}

void FilePreviewViewController::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape) {
        reject();
        return;
    }
    MAAttachedWindow::keyPressEvent(event);
}

}  // namespace velmora
