#pragma once

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <random>

namespace velmora::test {

inline QByteArray randomBytes(qsizetype size, unsigned seed) {
    std::mt19937 generator(seed);
    QByteArray bytes(size, Qt::Uninitialized);
    for (char& byte : bytes) byte = char(generator());
    return bytes;
}

// A throw-away folder to build file trees in.
class TestTree {
public:
    TestTree() { EXPECT_TRUE(m_dir.isValid()); }

    QString path(const QString& relative = {}) const {
        return relative.isEmpty() ? m_dir.path() : m_dir.path() + '/' + relative;
    }

    QString write(const QString& relative, const QByteArray& content) const {
        const QString full = path(relative);
        QDir().mkpath(QFileInfo(full).path());
        QFile file(full);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly)) << full.toStdString();
        file.write(content);
        return full;
    }

    QString mkdir(const QString& relative) const {
        QDir().mkpath(path(relative));
        return path(relative);
    }

private:
    QTemporaryDir m_dir;
};

}  // namespace velmora::test
