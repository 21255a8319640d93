// A copy of the diary for each day on which it is changed, as it was before the day's first change.
//
// They are in the folder "backups" beside the diary, called "Nutrition 2026-11-21.mdb". The newest fourteen are kept.
// Only files of exactly such a name, finished or not, are ever removed, and none after the copying of a diary that was
// found damaged: the older copies are then the better ones.
#pragma once

#include "runtime/clock.h"

#include <QHash>
#include <QString>
#include <QStringList>

#include <functional>

namespace data {

/// The folder of a diary's copies and the names in it.
class CopyFolder
{
public:
    /// Of the file itself where the path is a link.
    explicit CopyFolder(const QString& diary);

    [[nodiscard]] const QString& path() const { return folder_; }
    void make() const; ///< throws runtime::RunTimeError
    [[nodiscard]] QString nameFor(runtime::Date day) const;
    /// The day's name when it is free, else one with a number behind it, which is never removed.
    [[nodiscard]] QString freeNameFor(runtime::Date day, const QString& remark = {}) const;
    /// Removes all dated copies but the newest so many and the one of the day, and what was left of copies that were
    /// broken off on other days.
    void thinOut(int kept, runtime::Date day) const;

private:
    /// In order, of the files called "Nutrition 2026-11-21" and the suffix.
    [[nodiscard]] QStringList datesOfFiles(const QString& suffix) const;
    /// Removes such files, but not the day's.
    void removeFiles(const QStringList& dates, const QString& suffix, runtime::Date day) const;

    QString folder_;
    QString baseName_; ///< of the diary
    QString suffix_;   ///< with its point
};

class DatedCopies
{
public:
    static constexpr int kKept = 14;
    /// Takes what went wrong, in plain words, at most once a day for a diary.
    using Tell = std::function<void(const QString& words)>;

    /// The clock must outlive this.
    DatedCopies(const runtime::Clock& clock, Tell tell) : clock_(&clock), tell_(std::move(tell)) {}

    /// To be called before each change (BeforeChange). Makes the day's copy when this is the first one, and costs
    /// nothing to speak of after that. Throws nothing: a change goes on without a copy.
    void beforeChange(const QString& diary);

private:
    void makeCopy(const QString& diary, runtime::Date day);

    const runtime::Clock* clock_;
    Tell tell_;
    QHash<QString, double> seenOn_; ///< the day of the last change, by the diary's path
};

} // namespace data
