#pragma once

#include <QString>
#include <QStringList>

namespace velmora {

// The browsers' own databases, opened, worked and closed per call with plain SQL
// (no busy timeout: a database the running browser holds fails and is logged).
// Each delete answers whether every statement ran to its end; the reason of the
// first that did not is kept in lastError().
class ToGetDB {
public:
    static ToGetDB& returnToGetDB();

    bool toDeleteHistoryWith(const QString& path);
    bool toDeleteDownloadWith(const QString& path);
    bool toDeletePasswordWith(const QString& path);
    bool toDeleteGoogleCookiesWith(const QString& path);
    bool operaDeleteHistoryWith(const QString& path);
    bool operaDeleteDownloadWith(const QString& path);
    bool operaDeletePasswordWith(const QString& path);
    bool firefoxDeleteHistoryWith(const QString& path);
    bool firefoxDeleteDownloadWith(const QString& path);
    bool firefoxDeletePasswordWith(const QString& path);
    bool safariDeleteHistoryWith(const QString& path);

    // Counts: 0 on any failure.
    int getGoogleHistoryItems(const QString& path);
    int getGoogleDownloadItems(const QString& path);
    int getGooglePasswordItems(const QString& path);
    int getGoogleCookiesItems(const QString& path);
    int getOperaHistoryItems(const QString& path);
    int getOperaDownloadItems(const QString& path);
    int getOperaPasswordItems(const QString& path);
    int getSafariBrowsingHistoryItems(const QString& path);
    int getFirefoxHistoryItems(const QString& path);
    int getFirefoxDownloadItmes(const QString& path);
    int getFirefoxPasswordItems(const QString& path);

    // Thorough cleaning: moves the write-ahead log into the database and empties it,
    // then rewrites the file with secure_delete on, so no deleted row's bytes remain
    // in the database or its companions. False with lastError() when any step failed.
    bool compactDatabase(const QString& path);

    QString lastError() const { return m_lastError; }

private:
    ToGetDB() = default;
    bool runDeletes(const QString& path, const QStringList& statements);
    int count(const QString& path, const char* statement, bool logOpenFailure = true);

    QString m_lastError;
};

}  // namespace velmora
