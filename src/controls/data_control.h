// Data1: browses the records of a table and shows the current one in bound boxes, where it can be changed.
#pragma once

#include "controls/bound_record.h"

#include <QWidget>

#include <functional>

class QFontMetrics;
class QLabel;
class QLineEdit;
class QToolButton;

namespace controls {

class Dialogs;

/// How wide a box for a bound date with its time must be.
[[nodiscard]] int widthOfDateAndTime(const QFontMetrics& font);

/// Four buttons to the first, previous, next and last record, between them a caption and where one is.
/// Page Up and Page Down do what the inner buttons do, Ctrl+Home and Ctrl+End what the outer ones do, from anywhere in
/// the window. What the user has changed is stored when he leaves the record or closes the window. Where that fails a
/// box says why and neither happens; closing a second time gives up what cannot be stored. Escape takes the record's
/// edits back, and where there are none closes the window as ever.
class DataControl : public QWidget
{
    Q_OBJECT

public:
    struct Source {
        QString databasePath;
        QString recordSource; ///< the name of a table or query, or an SQL text
    };

    /// Shows the first record. Keeps a connection for as long as it lives, without a lock. Throws RunTimeError.
    DataControl(QWidget& window, Dialogs& dialogs, const QString& caption, const Source& source);

    /// The box shows that field of the current record, and can be changed where the records can. Errors call the field
    /// by the box's accessible name where it has one. A limit of the box's length holds for typing alone: a longer text
    /// from elsewhere is shown whole.
    void bind(QLineEdit& box, const QString& field);
    /// The label shows that field.
    void bind(QLabel& label, const QString& field);

    [[nodiscard]] bool isEmpty() const { return record_.isEmpty(); } ///< there is no record to show

signals:
    /// The boxes show another record, or the same one with what is stored now.
    void recordShown();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    using Move = BoundRecord::Move;
    struct Box {
        QLineEdit* edit = nullptr;
        int column = 0;
        int limit = 0; ///< for typing
    };
    struct Label {
        QLabel* label = nullptr;
        int column = 0;
    };

    void createButtons();
    [[nodiscard]] bool handleKey(int key, Qt::KeyboardModifiers modifiers);
    void go(Move move);
    [[nodiscard]] bool cancelEdits();
    [[nodiscard]] bool mayClose();
    [[nodiscard]] bool attempt(const std::function<std::optional<BoundRecord::Refusal>()>& action);
    void showRecord();
    void showIn(const Box& box);

    QWidget& window_;
    Dialogs& dialogs_;
    QString caption_;
    BoundRecord record_;
    std::vector<Box> boxes_;
    std::vector<Label> labels_;
    std::vector<std::pair<Move, QToolButton*>> buttons_;
    QLabel* position_ = nullptr;
    bool showing_ = false;      ///< boxes change because they are filled, not by the user
    bool closeRefused_ = false; ///< and nothing was changed since
};

} // namespace controls
