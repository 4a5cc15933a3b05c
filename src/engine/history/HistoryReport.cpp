#include "engine/history/HistoryReport.h"

#include "engine/history/HistoryKey.h"
#include "engine/platform/NativePath.h"
#include "engine/platform/WriteAll.h"

#include <QStringList>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <unistd.h>

namespace velmora {
namespace {

QString header() {
    const QStringList parts{
        R"(<!DOCTYPE html PUBLIC "-//W3C//DTD XHTML 1.0 Transitional//EN" "http://www.w3.org/TR/xhtml1/DTD/xhtml1-transitional.dtd">)",
        R"(<html xmlns="http://www.w3.org/1999/xhtml">)",
        "<head>",
        R"(<meta content="initial-scale=1.0,user-scalable=no,maximum-scale=1,width=device-width" name="viewport" />)",
        R"(<meta content="telephone=no" name="format-detection" />)",
        R"(<meta content="black" name="apple-mobile-web-app-status-bar-style" />)",
        R"(<meta content="yes" name="apple-mobile-web-app-capable" />)",
        R"(<meta http-equiv="Content-Type" content="text/html; charset=utf-8" />)",
        "<title>Erasure History</title>",
        R"(<style type="text/css">)",
        R"(table, table tr th, table tr td { border: 1px solid #2A304E; font-family: Segoe,  "Segoe UI ",  "DejaVu Sans ",  "Trebuchet MS ", Verdana, sans-serif; })",
        "table { width: 800px; min-height: 25px; line-height: 25px; border-collapse: collapse; margin: 0 auto; "
        "font-size: 12px; color: #2A304E; }",
        "td { padding: 4px 12px; }",
        "th { padding: 4px 12px; background-color: #767C9A; color: #fff; }",
        ".title { background-color: #7FCFDC; text-align: center; color: #fff; }",
        "</style>",
        "</head>",
        "<body>",
        "<!--toplink-->",
        R"(<table width="200" border="1">)",
    };
    return parts.join(QString(5, ' '));
}

QString footer() { return "</table>" + QString(5, ' ') + "</body>" + QString(6, ' ') + "</html>"; }

// A value the row does not hold prints as "(null)". The writer asks for
// "Erasure algorithm" while the rows carry "Erasure Standard", so the middle
// cell always reads "(null)"; reports have always looked like that.
QString cell(const HistoryRow& row, const QString& name) {
    const QString text = row.contains(name) ? row.value(name).toHtmlEscaped() : QString("(null)");
    return "<td>" + text + "</td>" + QString(23, ' ');
}

QString entryRow(const QString& key) {
    return "<tr>" + QString(24, ' ') + R"(<th colspan="3">)" + key.toHtmlEscaped() + "</th>" + QString(25, ' ') + "</tr>";
}

QString itemRow(const HistoryRow& row) {
    // The header row of the entry is the one whose item reads "Items".
    const QString open = row.value("Items") == "Items" ? R"(<tr class="title">)" : "<tr>";
    return open + QString(22, ' ') + cell(row, "Items") + cell(row, "Erasure algorithm") + cell(row, "Result") +
           "</tr>";
}

// Writes a new file beside `path` (a fresh name, O_EXCL, owner-only) and renames it
// over `path`. The rename replaces whatever entry has the name, a link included, and
// never writes through it, so a link planted at the target cannot redirect the
// report onto another file. The report lists erased paths, so it stays private.
bool replaceFile(const QString& path, const QByteArray& bytes) {
    const QByteArray target = nativePath(path);
    QByteArray temporary = target + ".XXXXXX";
    const int fd = ::mkostemp(temporary.data(), O_CLOEXEC);
    if (fd < 0) return false;
    bool written = writeAll(fd, bytes) == 0 && ::fsync(fd) == 0;
    written = ::close(fd) == 0 && written;
    if (written && ::rename(temporary.constData(), target.constData()) == 0) return true;
    ::unlink(temporary.constData());
    return false;
}

}  // namespace

QString HistoryReport::proposedFileName(const QDateTime& when) {
    return QString("ErasureHistory(%1)").arg(HistoryKey::format(when, HistoryKey::userLocaleName()));
}

QString HistoryReport::exportPath(const QString& chosenPath) { return chosenPath + ".html"; }

QString HistoryReport::html(const QString& key, const HistoryRows& rows) {
    QString body = entryRow(key);
    for (const HistoryRow& row : rows) body += itemRow(row);
    return header() + body + footer();
}

bool HistoryReport::writeHTML(const QString& path, const QString& key, const HistoryRows& rows) {
    return replaceFile(path, html(key, rows).toUtf8());
}

}  // namespace velmora
