#include "data/engine/error_translation.h"

namespace data {
namespace {

using runtime::ErrorNumber;
using runtime::RunTimeError;

RunTimeError unrecognised(const QString& path, const QString& hint)
{
    return {ErrorNumber::UnrecognisedFormat, QStringLiteral("Unrecognized database format '%1'.").arg(path), hint};
}

/// The engine's words with one full stop at the end, behind the page where there is one.
QString sentenceOf(const jet::Error& error)
{
    QString words = QString::fromUtf8(error.what());
    const QString place = error.page() ? QStringLiteral(" (page %1)").arg(*error.page()) : QString();
    words.chop(place.size());
    while (words.endsWith(u'.')) {
        words.chop(1);
    }
    return words + place + u'.';
}

} // namespace

RunTimeError translated(const jet::Error& error, const QString& path)
{
    const QString sentence = sentenceOf(error);
    switch (error.code()) {
    case jet::ErrorCode::FileNotFound:
        return {ErrorNumber::FileNotFound, QStringLiteral("Could not find file '%1'.").arg(path),
                QStringLiteral("Make sure that the diary is there; a new one is made by \"quillonctl create\".")};
    case jet::ErrorCode::FileExists:
        return {ErrorNumber::FileAlreadyExists, QStringLiteral("File already exists"), sentence};
    case jet::ErrorCode::ReadOnly:
    case jet::ErrorCode::IndexNotSupported:
        return RunTimeError(ErrorNumber::ReadOnly).withHint(sentence);
    case jet::ErrorCode::Locked:
        return {ErrorNumber::FileInUse, QStringLiteral("Could not use '%1'; file already in use.").arg(path),
                QStringLiteral("Another program is working with the diary. Close it there and try again.")};
    case jet::ErrorCode::DiskFull:
        return RunTimeError(ErrorNumber::DiskFull)
            .withHint(QStringLiteral("Nothing of this change was kept. Free some space and try again."));
    case jet::ErrorCode::Io:
    case jet::ErrorCode::Replaced:
        return RunTimeError(ErrorNumber::DiskError).withHint(sentence);
    case jet::ErrorCode::NotADatabase:
    case jet::ErrorCode::UnsupportedVersion:
    case jet::ErrorCode::Encoded:
    case jet::ErrorCode::Corrupt:
    case jet::ErrorCode::JournalDamaged:
        return unrecognised(path, sentence);
    case jet::ErrorCode::NoSuchObject:
        return RunTimeError(ErrorNumber::UnknownTableOrQuery).withHint(sentence);
    case jet::ErrorCode::ValueTooLong:
        return RunTimeError(ErrorNumber::FieldTooSmall).withHint(sentence);
    case jet::ErrorCode::NullNotAllowed:
        return RunTimeError(ErrorNumber::NullNotAllowed).withHint(sentence);
    case jet::ErrorCode::DuplicateKey:
        return RunTimeError(ErrorNumber::DuplicateKey).withHint(sentence);
    case jet::ErrorCode::MissingParent:
        return RunTimeError(ErrorNumber::RelatedRecordRequired).withHint(sentence);
    case jet::ErrorCode::HasChildren:
        return RunTimeError(ErrorNumber::HasRelatedRecords).withHint(sentence);
    case jet::ErrorCode::Overflow:
        return RunTimeError(ErrorNumber::Overflow).withHint(sentence);
    case jet::ErrorCode::ObjectExists:
    case jet::ErrorCode::InvalidArgument:
        break;
    }
    return RunTimeError(ErrorNumber::InvalidProcedureCall).withHint(sentence);
}

} // namespace data
