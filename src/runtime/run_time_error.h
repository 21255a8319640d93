// Run-time errors: numbers and words that a user of such a program knows.
#pragma once

#include <QByteArray>
#include <QString>

#include <exception>

namespace runtime {

/// In the order of the numbers.
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
    UpdateWithoutEdit = 3020,
    NoCurrentRecord = 3021,
    DuplicateKey = 3022,
    FileNotFound = 3024,
    DiskFull = 3026,
    ReadOnly = 3027,
    DiskError = 3043,
    FileInUse = 3045,
    CannotOpenFile = 3051,
    NullNotAllowed = 3058,
    TooFewParameters = 3061,
    DuplicateOutputName = 3063,
    CannotExecuteSelect = 3065,
    QuerySyntax = 3075,
    UnknownTableOrQuery = 3078,
    AmbiguousField = 3079,
    UndefinedFunction = 3085,
    CircularReference = 3102,
    NotPartOfAggregate = 3122,
    TableToDeleteMissing = 3128,
    FieldTooSmall = 3163,
    RecordDeleted = 3167,
    DataChanged = 3197,
    HasRelatedRecords = 3200,
    RelatedRecordRequired = 3201,
    InvalidOperation = 3219,
    ItemNotFound = 3265,
    SubqueryOfSeveralFields = 3306,
    UnionColumnsDiffer = 3307,
    UnrecognisedFormat = 3343,
    MoreThanOneRecord = 3354,
    QueryTooComplex = 3360,
    ObjectInvalid = 3420,
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
    /// The same error with this hint in the place of its own, for a caller that knows more.
    [[nodiscard]] RunTimeError withHint(const QString& hint) const;
    /// The same error, its hint followed by one more sentence.
    [[nodiscard]] RunTimeError withAddedHint(const QString& sentence) const;
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
