#include "data/safekeeping/dated_copies.h"

#include "data/engine/diary_file.h"
#include "data/engine/error_translation.h"
#include "data/safekeeping/diary_names.h"

#include <QDate>
#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <QStorageInfo>

#include <algorithm>

namespace data {
namespace {

using runtime::ErrorNumber;
using runtime::RunTimeError;

/// A copy that took the last room would keep the change from being stored that it is made for: as much again has to
/// stay free.
void requireRoomFor(const QString& diary, const QString& folder)
{
    const QStorageInfo disk(folder);
    if (disk.isValid() && disk.bytesAvailable() < 2 * QFileInfo(diary).size()) {
        throw RunTimeError(ErrorNumber::DiskFull);
    }
}

/// Why there is no copy, in words for a box.
QString failureWords(const QString& diary, const RunTimeError& error)
{
    // The usual hint on a full disk speaks of the change itself.
    const bool hasHint = !error.hint().isEmpty() && error.code() != ErrorNumber::DiskFull;
    const QString reason = hasHint ? error.words() + u' ' + error.hint() : error.words();
    return QStringLiteral("No copy of the diary '%1' could be made before today's first change. This keeps no entry "
                          "from being stored.\n\n%2")
        .arg(diary, reason);
}

QString damageWords(const QString& diary, const QStringList& damage)
{
    return QStringLiteral(
               "The diary '%1' is damaged. A copy was made before today's first change, and the older copies "
               "were all kept.\n\n%2")
        .arg(diary, damage.constFirst());
}

/// The damage of what was copied; nothing where another program has made the copy meanwhile. It is made in a
/// transaction that changes nothing: programs that are about to make the same day's first change do so one by one.
std::optional<QStringList> copyUnlessThere(const QString& diary, const QString& path)
{
    const auto file = jet::Database::open(jet::posixFileSystem(), diary.toStdString(), jet::OpenMode::ReadWrite);
    file->begin();
    if (QFileInfo::exists(path)) {
        return std::nullopt;
    }
    file->copyTo(path.toStdString());
    return damageIn(*file);
}

} // namespace

// --- The folder ---

CopyFolder::CopyFolder(const QString& diary)
{
    const QFileInfo given(diary);
    const QFileInfo file(given.exists() ? given.canonicalFilePath() : given.absoluteFilePath());
    folder_ = file.dir().filePath(QStringLiteral("backups"));
    baseName_ = file.completeBaseName();
    suffix_ = file.suffix().isEmpty() ? QString() : u'.' + file.suffix();
}

void CopyFolder::make() const
{
    // Tried before looking: another program may be making it at this moment.
    const bool isNew = QDir().mkdir(folder_);
    if (!isNew && !QFileInfo(folder_).isDir()) {
        throw RunTimeError(ErrorNumber::CannotOpenFile, QStringLiteral("Cannot make the folder '%1'.").arg(folder_),
                           QStringLiteral("Make sure that files can be written beside the diary."));
    }
    if (isNew) {
        translating(folder_, [&] { jet::posixFileSystem().syncFolderOf(folder_.toStdString()); });
    }
}

QString CopyFolder::nameFor(runtime::Date day) const
{
    return QDir(folder_).filePath(baseName_ + u' ' + isoDate(day) + suffix_);
}

QString CopyFolder::freeNameFor(runtime::Date day, const QString& remark) const
{
    return freePath(folder_, baseName_ + u' ' + isoDate(day) + remark, suffix_);
}

QStringList CopyFolder::datesOfFiles(const QString& suffix) const
{
    const QRegularExpression pattern(
        QStringLiteral("\\A%1 ([0-9]{4}-[0-9]{2}-[0-9]{2})%2\\z")
            .arg(QRegularExpression::escape(baseName_), QRegularExpression::escape(suffix)));
    QStringList dates;
    for (const QFileInfo& file : QDir(folder_).entryInfoList(QDir::Files | QDir::NoSymLinks | QDir::Hidden)) {
        const QRegularExpressionMatch match = pattern.match(file.fileName());
        if (match.hasMatch() && QDate::fromString(match.captured(1), Qt::ISODate).isValid()) {
            dates.append(match.captured(1));
        }
    }
    std::sort(dates.begin(), dates.end());
    return dates;
}

void CopyFolder::removeFiles(const QStringList& dates, const QString& suffix, runtime::Date day) const
{
    for (const QString& date : dates) {
        if (date != isoDate(day)) {
            QFile::remove(QDir(folder_).filePath(baseName_ + u' ' + date + suffix));
        }
    }
}

void CopyFolder::thinOut(int kept, runtime::Date day) const
{
    const QStringList dates = datesOfFiles(suffix_);
    removeFiles(dates.mid(0, std::max<qsizetype>(dates.size() - kept, 0)), suffix_, day);
    const QString remains = suffix_ + QStringLiteral("-unfinished");
    removeFiles(datesOfFiles(remains), remains, day);
}

// --- The copies ---

void DatedCopies::beforeChange(const QString& diary)
{
    const runtime::Date day = clock_->today();
    const auto seen = seenOn_.constFind(diary);
    if (seen != seenOn_.constEnd() && *seen == day.days) {
        return;
    }
    seenOn_.insert(diary, day.days);
    try {
        makeCopy(diary, day);
    } catch (const RunTimeError& error) {
        if (!QFileInfo::exists(CopyFolder(diary).nameFor(day))) { // else another program made it while this one waited
            tell_(failureWords(diary, error));
        }
    }
}

void DatedCopies::makeCopy(const QString& diary, runtime::Date day)
{
    const CopyFolder copies(diary);
    const QString path = copies.nameFor(day);
    if (QFileInfo::exists(path)) {
        return;
    }
    copies.make();
    requireRoomFor(diary, QFileInfo(path).absolutePath());
    const std::optional<QStringList> damage = translating(diary, [&] { return copyUnlessThere(diary, path); });
    if (!damage) {
        return;
    }
    if (damage->isEmpty()) {
        copies.thinOut(kKept, day);
    } else {
        tell_(damageWords(diary, *damage));
    }
}

} // namespace data
