#include "runtime/run_time_error.h"

#include <utility>

namespace runtime {
namespace {

QString usualWords(ErrorNumber number)
{
    switch (number) {
    case ErrorNumber::InvalidProcedureCall:
        return QStringLiteral("Invalid procedure call or argument");
    case ErrorNumber::Overflow:
        return QStringLiteral("Overflow");
    case ErrorNumber::SubscriptOutOfRange:
        return QStringLiteral("Subscript out of range");
    case ErrorNumber::DivisionByZero:
        return QStringLiteral("Division by zero");
    case ErrorNumber::TypeMismatch:
        return QStringLiteral("Type mismatch");
    case ErrorNumber::FileNotFoundOnDisk:
        return QStringLiteral("File not found");
    case ErrorNumber::FileAlreadyExists:
        return QStringLiteral("File already exists");
    case ErrorNumber::InvalidPattern:
        return QStringLiteral("Invalid pattern string");
    case ErrorNumber::InvalidUseOfNull:
        return QStringLiteral("Invalid use of Null");
    case ErrorNumber::InvalidFileFormat:
        return QStringLiteral("Invalid file format");
    case ErrorNumber::PrinterError:
        return QStringLiteral("Printer error");
    case ErrorNumber::UpdateWithoutEdit:
        return QStringLiteral("Update or CancelUpdate without AddNew or Edit.");
    case ErrorNumber::NoCurrentRecord:
        return QStringLiteral("No current record.");
    case ErrorNumber::DuplicateKey:
        return QStringLiteral("The record would repeat a value that must be unique.");
    case ErrorNumber::FileNotFound:
        return QStringLiteral("Could not find file.");
    case ErrorNumber::DiskFull:
        return QStringLiteral("Not enough space on disk.");
    case ErrorNumber::ReadOnly:
        return QStringLiteral("Cannot update. Database or object is read-only.");
    case ErrorNumber::DiskError:
        return QStringLiteral("Disk or network error.");
    case ErrorNumber::FileInUse:
        return QStringLiteral("Could not use the file; it is already in use.");
    case ErrorNumber::CannotOpenFile:
        return QStringLiteral("Cannot open the file.");
    case ErrorNumber::NullNotAllowed:
        return QStringLiteral("An index or primary key cannot contain a Null value.");
    case ErrorNumber::TooFewParameters:
        return QStringLiteral("Too few parameters. Expected 1.");
    case ErrorNumber::DuplicateOutputName:
        return QStringLiteral("Duplicate output alias.");
    case ErrorNumber::CannotExecuteSelect:
        return QStringLiteral("Cannot execute a select query.");
    case ErrorNumber::QuerySyntax:
        return QStringLiteral("Syntax error in query expression.");
    case ErrorNumber::UnknownTableOrQuery:
        return QStringLiteral("Cannot find the input table or query.");
    case ErrorNumber::AmbiguousField:
        return QStringLiteral("The specified field could refer to more than one table listed in the FROM clause.");
    case ErrorNumber::UndefinedFunction:
        return QStringLiteral("Undefined function in expression.");
    case ErrorNumber::CircularReference:
        return QStringLiteral("Circular reference.");
    case ErrorNumber::NotPartOfAggregate:
        return QStringLiteral("The expression is neither grouped nor part of an aggregate function.");
    case ErrorNumber::TableToDeleteMissing:
        return QStringLiteral("Specify the table containing the records you want to delete.");
    case ErrorNumber::FieldTooSmall:
        return QStringLiteral("The field is too small for the data.");
    case ErrorNumber::RecordDeleted:
        return QStringLiteral("Record is deleted.");
    case ErrorNumber::DataChanged:
        return QStringLiteral("Data has changed; operation stopped.");
    case ErrorNumber::HasRelatedRecords:
        return QStringLiteral("The record cannot be deleted or changed: related records depend on it.");
    case ErrorNumber::RelatedRecordRequired:
        return QStringLiteral("The record cannot be added or changed: a related record is required.");
    case ErrorNumber::InvalidOperation:
        return QStringLiteral("Invalid operation.");
    case ErrorNumber::ItemNotFound:
        return QStringLiteral("Item not found in this collection.");
    case ErrorNumber::SubqueryOfSeveralFields:
        return QStringLiteral("Only one field can be selected by a subquery that stands for a value.");
    case ErrorNumber::UnionColumnsDiffer:
        return QStringLiteral("The number of columns in the two selected tables or queries of a union query do not "
                              "match.");
    case ErrorNumber::UnrecognisedFormat:
        return QStringLiteral("Unrecognized database format.");
    case ErrorNumber::MoreThanOneRecord:
        return QStringLiteral("At most one record can be returned by this subquery.");
    case ErrorNumber::QueryTooComplex:
        return QStringLiteral("Query is too complex.");
    case ErrorNumber::ObjectInvalid:
        return QStringLiteral("Object invalid or no longer set.");
    case ErrorNumber::CriteriaTypeMismatch:
        return QStringLiteral("Data type mismatch in criteria expression.");
    }
    return QStringLiteral("Application-defined or object-defined error");
}

} // namespace

RunTimeError::RunTimeError(ErrorNumber number, QString words, QString hint)
    : number_(number), words_(std::move(words)), hint_(std::move(hint)),
      what_(QStringLiteral("%1: %2").arg(this->number()).arg(words_).toUtf8())
{
}

RunTimeError::RunTimeError(ErrorNumber number) : RunTimeError(number, usualWords(number)) {}

RunTimeError RunTimeError::withHint(const QString& hint) const
{
    return {number_, words_, hint};
}

RunTimeError RunTimeError::withAddedHint(const QString& sentence) const
{
    return withHint((hint_ + u' ' + sentence).trimmed());
}

QString RunTimeError::text() const
{
    QString text = QStringLiteral("Run-time error '%1':\n\n").arg(number()) + words_;
    if (!hint_.isEmpty()) {
        text += QStringLiteral("\n\n") + hint_;
    }
    return text;
}

const char* RunTimeError::what() const noexcept
{
    return what_.constData();
}

} // namespace runtime
