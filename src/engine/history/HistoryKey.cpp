#include "engine/history/HistoryKey.h"

#include "engine/platform/LogCategories.h"

#include <QLocale>
#include <QTimeZone>
#include <unicode/smpdtfmt.h>
#include <unicode/timezone.h>

namespace velmora::HistoryKey {

QString format(const QDateTime& when, const QString& localeName) {
    // Week rules (first weekday, minimal days of week 1) come from the locale's
    // region. The calendar is pinned to Gregorian and the digits to Latin, since
    // keys are compared as strings and typed on the command line.
    icu::Locale locale(localeName.toUtf8().constData());
    UErrorCode status = U_ZERO_ERROR;
    locale.setKeywordValue("calendar", "gregorian", status);
    locale.setKeywordValue("numbers", "latn", status);
    icu::SimpleDateFormat formatter(icu::UnicodeString(kPattern), locale, status);
    if (U_FAILURE(status)) {
        qCWarning(lcHistory,
                  "history key: no date format for locale %s (%s)", qUtf8Printable(localeName), u_errorName(status));
        return when.toString("yyyy-MM-dd HH-mm-ss");
    }
    // The wall-clock fields are handed over as UTC on both sides, so the result
    // is what `when` shows, whatever time zone ICU would assume.
    formatter.adoptTimeZone(icu::TimeZone::createTimeZone("UTC"));
    const QDateTime wallClock(when.date(), when.time(), QTimeZone::utc());
    icu::UnicodeString text;
    formatter.format(static_cast<UDate>(wallClock.toMSecsSinceEpoch()), text);
    return QString(reinterpret_cast<const QChar*>(text.getBuffer()), text.length());
}

QString userLocaleName() {
    const QString name = QLocale::system().name();
    // The POSIX "C" locale is ICU's en_US_POSIX.
    return name == "C" ? QString("en_US_POSIX") : name;
}

QString now() { return format(QDateTime::currentDateTime(), userLocaleName()); }

}  // namespace velmora::HistoryKey
