#pragma once

#include <QTemporaryDir>
#include <QtGlobal>

// Points VELMORA_DATA_DIR at a fresh temporary folder for the lifetime of the
// object, so a test never reads or writes the real user's data.
class TempDataDir {
public:
    TempDataDir() { qputenv("VELMORA_DATA_DIR", m_dir.path().toUtf8()); }
    ~TempDataDir() { qunsetenv("VELMORA_DATA_DIR"); }
    QString path() const { return m_dir.path(); }

private:
    QTemporaryDir m_dir;
};
