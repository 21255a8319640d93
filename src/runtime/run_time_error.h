// Run-time errors: numbers and words that a user of such a program knows.
#pragma once

#include <QByteArray>
#include <QString>

#include <exception>

namespace runtime {

enum class ErrorNumber {
    InvalidProcedureCall = 5,
    Overflow = 6,
    SubscriptOutOfRange = 9,
    DivisionByZero = 11,
    TypeMismatch = 13,
    FileNotFoundOnDisk = 53,
    FileAlreadyExists = 58,
    InvalidPattern = 93,
    InvalidUseOfNull = 94,
    InvalidFileFormat = 321,
    PrinterError = 482,
    NoCurrentRecord = 3021,
    DuplicateKey = 3022,
    FileNotFound = 3024,
    CannotOpenFile = 3051,
    ReadOnly = 3027,
    FileInUse = 3045,
    NullNotAllowed = 3058,
    QuerySyntax = 3075,
    UnknownTableOrQuery = 3078,
    FieldTooSmall = 3163,
    HasRelatedRecords = 3200,
    RelatedRecordRequired = 3201,
    ItemNotFound = 3265,
    DiskError = 3043,
    DiskFull = 3026,
    UnrecognisedFormat = 3343,
    ObjectInvalid = 3420,
    UpdateWithoutEdit = 3020,
    TooFewParameters = 3061,
    DuplicateOutputName = 3063,
    CannotExecuteSelect = 3065,
    AmbiguousField = 3079,
    UndefinedFunction = 3085,
    CircularReference = 3102,
    NotPartOfAggregate = 3122,
    TableToDeleteMissing = 3128,
    RecordDeleted = 3167,
    DataChanged = 3197,
    InvalidOperation = 3219,
    UnionColumnsDiffer = 3307,
    MoreThanOneRecord = 3354,
    QueryTooComplex = 3360,
    CriteriaTypeMismatch = 3464,
};

/// An error that ends the action in progress. The window shows it and the program goes on.
class RunTimeError : public std::exception
{
public:
    /// `words` is the error's own text ("No current record."); `hint`, where not empty, one plain sentence of what
    /// happened and what the user can do.
    RunTimeError(ErrorNumber number, QString words, QString hint = {});
    /// With the number's usual words.
    explicit RunTimeError(ErrorNumber number);

    [[nodiscard]] int number() const { return static_cast<int>(number_); }
    [[nodiscard]] ErrorNumber code() const { return number_; }
    [[nodiscard]] const QString& words() const { return words_; }
    [[nodiscard]] const QString& hint() const { return hint_; }
    /// The same error with a hint, for a caller that knows more.
    [[nodiscard]] RunTimeError withHint(const QString& hint) const;
    /// What the box shows: "Run-time error '3021':", an empty line, the words, and where there is one an empty line and
    /// the hint.
    [[nodiscard]] QString text() const;
    [[nodiscard]] const char* what() const noexcept override;

private:
    ErrorNumber number_;
    QString words_;
    QString hint_;
    QByteArray what_;
};

} // namespace runtime
