#include "cli/Terminal.h"

#include <QStringList>
#include <cstdio>
#include <iostream>
#include <string>
#include <unistd.h>

namespace velmora::cli {

bool isTerminal(int fd) { return isatty(fd) == 1; }

QString printable(const QString& text) {
    QString line;
    line.reserve(text.size());
    for (const QChar c : text) {
        const char16_t code = c.unicode();
        if (code == '\\') line += QLatin1String("\\\\");
        else if (code == '\n') line += QLatin1String("\\n");
        else if (code == '\t') line += QLatin1String("\\t");
        else if (code == '\r') line += QLatin1String("\\r");
        else if (code < 0x20 || (code >= 0x7f && code <= 0x9f)) line += QString("\\x%1").arg(int(code), 2, 16, QChar('0'));
        else line += c;
    }
    return line;
}

QString printableMessage(const QString& text) {
    QStringList lines = text.split('\n');
    for (QString& line : lines) line = printable(line.trimmed());
    lines.removeAll(QString());
    return lines.join(' ');
}

ProgressBar::ProgressBar(QString title) : m_title(std::move(title)), m_enabled(isTerminal(STDERR_FILENO)) {}

ProgressBar::~ProgressBar() { finish(); }

void ProgressBar::update(double percent, const QString& detail) {
    if (!m_enabled) return;
    constexpr int kWidth = 30;
    const double clampedPercent = qBound(0.0, percent, 100.0);
    const int filled = int(clampedPercent * kWidth / 100.0);
    QString bar = QString(filled, '#') + QString(kWidth - filled, '-');
    QString line = QString("\r%1 [%2] %3% %4").arg(m_title, bar).arg(clampedPercent, 5, 'f', 1).arg(printable(detail));
    // Keep the line within a normal terminal width and clear what the last one left.
    line = line.left(110).leftJustified(110);
    std::fputs(line.toLocal8Bit().constData(), stderr);
    std::fflush(stderr);
}

void ProgressBar::finish() {
    if (!m_enabled || m_finished) return;
    m_finished = true;
    std::fputs("\n", stderr);
}

bool confirm(const QString& question) {
    std::fputs(QString("%1 [y/N] ").arg(question).toLocal8Bit().constData(), stderr);
    std::fflush(stderr);
    std::string answer;
    if (!std::getline(std::cin, answer)) return false;
    const QString reply = QString::fromStdString(answer).trimmed().toLower();
    return reply == "y" || reply == "yes";
}

void printOut(const QString& text) {
    std::fputs((text + "\n").toLocal8Bit().constData(), stdout);
    std::fflush(stdout);
}

void printErr(const QString& text) {
    std::fputs((text + "\n").toLocal8Bit().constData(), stderr);
    std::fflush(stderr);
}

void printJson(const QJsonDocument& document) { std::fputs(document.toJson(QJsonDocument::Indented).constData(), stdout); }

bool takeFlag(QStringList& args, const QString& flag) { return args.removeAll(flag) > 0; }

QString takeOption(QStringList& args, const QString& name) {
    const qsizetype index = args.indexOf(name);
    if (index < 0 || index + 1 >= args.size()) return {};
    const QString value = args.at(index + 1);
    args.remove(index, 2);
    return value;
}

}  // namespace velmora::cli
