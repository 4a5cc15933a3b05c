// velmora-render-icon SVG SIZE PNG: renders the application's icon into a square PNG
// of SIZE pixels, for the icon theme's fixed sizes. Runs at build time only.
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>
#include <cstdio>

int main(int argc, char* argv[]) {
    if (argc != 4) {
        std::fputs("usage: velmora-render-icon SVG SIZE PNG\n", stderr);
        return 2;
    }
    const QString svg = QString::fromLocal8Bit(argv[1]);
    const int size = QByteArray(argv[2]).toInt();
    const QString png = QString::fromLocal8Bit(argv[3]);
    QSvgRenderer renderer(svg);
    if (!renderer.isValid() || size <= 0) {
        std::fprintf(stderr, "velmora-render-icon: cannot render %s at size %s\n", argv[1], argv[2]);
        return 1;
    }
    QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    renderer.render(&painter);
    painter.end();
    if (!image.save(png, "PNG")) {
        std::fprintf(stderr, "velmora-render-icon: cannot write %s\n", argv[3]);
        return 1;
    }
    return 0;
}
