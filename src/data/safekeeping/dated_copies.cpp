#include "data/safekeeping/dated_copies.h"

#include "data/engine/error_translation.h"
#include "data/engine/session.h"
#include "data/safekeeping/diary_file.h"

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
    if (QFileInfo(folder_).isDir()) {
        return;
    }
    if (!QDir().mkdir(folder_)) {
        throw RunTimeError(ErrorNumber::CannotOpenFile, QStringLiteral("Cannot make the folder '%1'.").arg(folder_),
                           QStringLiteral("Make sure that files can be written beside the diary."));
    }
    translating(folder_, [&] { jet::posixFileSystem().syncFolderOf(folder_.toStdString()); });
}

QString CopyFolder::nameFor(runtime::Date day) const
{
    return QDir(folder_).filePath(baseName_ + u' ' + isoDate(day) + suffix_);
}

QString CopyFolder::freeNameFor(runtime::Date day, const QString& remark) const
{
    return freePath(folder_, baseName_ + u' ' + isoDate(day) + remark, suffix_);
}

void CopyFolder::thinOut(int kept, runtime::Date day) const
{
    const QRegularExpression pattern(
        QStringLiteral("\\A%1 ([0-9]{4}-[0-9]{2}-[0-9]{2})%2\\z")
            .arg(QRegularExpression::escape(baseName_), QRegularExpression::escape(suffix_)));
    QStringList dates;
    for (const QFileInfo& file : QDir(folder_).entryInfoList(QDir::Files | QDir::NoSymLinks | QDir::Hidden)) {
        const QRegularExpressionMatch match = pattern.match(file.fileName());
        if (match.hasMatch() && QDate::fromString(match.captured(1), Qt::ISODate).isValid()) {
            dates.append(match.captured(1));
        }
    }
    std::sort(dates.begin(), dates.end());
    for (qsizetype i = 0; i < dates.size() - kept; ++i) {
        if (dates.at(i) != isoDate(day)) {
            QFile::remove(QDir(folder_).filePath(baseName_ + u' ' + dates.at(i) + suffix_));
        }
    }
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
        tell_(failureWords(diary, error));
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
    const QStringList damage = translating(diary, [&] {
        const std::unique_ptr<jet::Database> file = openDiary(diary);
        const ReadScope reading(*file);
        try {
            file->copyTo(path.toStdString());
        } catch (const jet::Error&) {
            if (!QFileInfo::exists(path)) {
                throw; // else another program has just made it
            }
        }
        return damageIn(*file);
    });
    if (damage.isEmpty()) {
        copies.thinOut(kKept, day);
    } else {
        tell_(damageWords(diary, damage));
    }
}

} // namespace data
