// A blood sugar reading as the user types it, and how it is stored.
#pragma once

#include "runtime/value.h"

#include <QList>
#include <QString>

namespace readings {

struct ReadingType {
    int code = 0;
    QString name;
};

/// The types that the user can choose, in the order of their codes.
[[nodiscard]] const QList<ReadingType>& readingTypes();

/// The code of the type that is most likely at this time of day: getting up before nine, pre bed from ten in the
/// evening.
[[nodiscard]] int likelyReadingType(runtime::Date now);

/// A comment holds no more characters than this.
inline constexpr int kCommentLength = 50;

/// The texts as typed.
struct ReadingEntry {
    QString level; ///< mmol/l
    QString date;
    QString time;
    int type = 0;
    QString comment;
};

/// Adds the reading to the diary file; it is stored durably on return. Throws RunTimeError, 13 for a text that is no
/// number or date, and has stored nothing then.
void saveReading(const QString& diaryPath, const ReadingEntry& entry);

} // namespace readings
