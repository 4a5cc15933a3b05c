#pragma once

#include <QJsonDocument>
#include <QString>

namespace velmora::cli {

// A one-line progress bar on standard error, drawn only when it is a terminal,
// so scripted and --json runs stay clean.
class ProgressBar {
public:
    explicit ProgressBar(QString title);
    ~ProgressBar();
    void update(double percent, const QString& detail = {});
    void finish();

private:
    QString m_title;
    bool m_enabled;
    bool m_finished = false;
};

// Asks a yes/no question on the terminal; anything but "y"/"yes" is a no,
// and so is a closed or non-interactive standard input.
bool confirm(const QString& question);

bool isTerminal(int fd);

// Text from outside (a file or volume name, a message that carries one) made safe for a
// line of output: control characters are written as \n, \t, \r or \xNN (C0, DEL and the
// C1 range that terminals take as commands) and a backslash as \\, so no name can break
// the one-line-per-item output, forge a line of its own or drive the terminal.
QString printable(const QString& text);
// A message of the engine on one line: its line breaks become single spaces, any
// other control character is escaped as printable does.
QString printableMessage(const QString& text);

void printOut(const QString& text);   // a line on standard output
void printErr(const QString& text);   // a line on standard error
void printJson(const QJsonDocument& document);

// Takes a flag out of the argument list; true when it was there.
bool takeFlag(QStringList& args, const QString& flag);
// Takes "--name VALUE" out of the argument list; empty when absent.
QString takeOption(QStringList& args, const QString& name);

}  // namespace velmora::cli
