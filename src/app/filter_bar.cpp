#include "app/filter_bar.h"

#include "controls/named.h"

#include <QComboBox>
#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

namespace app {

namespace {

constexpr double kSmallFont = 0.9;  ///< of the usual size
constexpr int kDateCharacters = 16; ///< room for dd/mm/yyyy hh:mm
constexpr int kGap = 12;            ///< between groups of controls

/// Puts controls into a row, from left to right, which is also the order of the Tab key.
class Row
{
public:
    explicit Row(QHBoxLayout& layout) : layout_(layout) {}

    template <typename Control>
    Control* add(Control* control, const char* name)
    {
        layout_.addWidget(controls::named(name, control));
        return control;
    }

    void addLabel(const char* name, const QString& caption, QWidget* field = nullptr)
    {
        add(new QLabel(caption), name)->setBuddy(field);
    }

    QLineEdit* addField(const char* labelName, const QString& caption, const char* name, const QString& meaning)
    {
        auto* field = new QLineEdit;
        addLabel(labelName, caption, field);
        add(field, name);
        field->setFixedWidth(field->fontMetrics().horizontalAdvance(QString(kDateCharacters, u'0')));
        field->setAccessibleName(meaning);
        field->setStatusTip(QStringLiteral("Day first: dd/mm/yyyy. Readings exactly at this moment are left out."));
        return field;
    }

    QPushButton* addButton(const char* name, const QString& caption, const QString& tip)
    {
        auto* button = add(new QPushButton(caption), name);
        // A click leaves the focus where it is. Apply and Clear ask the field that has it whether it lets the focus go
        // (see FieldFocus::moveTo); the calendar opens also from a field that holds no date yet.
        button->setFocusPolicy(Qt::TabFocus);
        button->setStatusTip(tip);
        return button;
    }

    QPushButton* addPicker(const char* name, const QString& meaning)
    {
        QPushButton* button = addButton(name, QStringLiteral("..."), QStringLiteral("Picks the date from a calendar."));
        button->setAccessibleName(meaning);
        button->setToolTip(meaning);
        button->setFixedWidth(button->sizeHint().height());
        return button;
    }

private:
    QHBoxLayout& layout_;
};

} // namespace

FilterBar createFilterBar(QWidget& parent)
{
    FilterBar bar;
    bar.fraToolBar = controls::named("fraToolBar", new QFrame(&parent));
    bar.fraToolBar->setToolTip(
        QStringLiteral("SQL Filter Bar - Allows data to be sorted using SQL like Query Language"));
    bar.fraToolBar->setFrameShape(QFrame::StyledPanel);
    QFont small = parent.font();
    small.setPointSizeF(small.pointSizeF() * kSmallFont);
    bar.fraToolBar->setFont(small);

    auto* layout = new QHBoxLayout(bar.fraToolBar);
    layout->setContentsMargins(6, 3, 6, 3);
    Row row(*layout);
    row.addLabel("lblFilter", QStringLiteral("Filter:"));
    layout->addSpacing(kGap);
    bar.txtFrom = row.addField("lblFrom", QStringLiteral("From ."), "txtFrom", QStringLiteral("From date"));
    bar.cmdFrom = row.addPicker("cmdFrom", QStringLiteral("Pick the From date"));
    layout->addSpacing(kGap);
    bar.txtTo = row.addField("lblTo", QStringLiteral("To ..."), "txtTo", QStringLiteral("To date"));
    bar.cmdTo = row.addPicker("cmdTo", QStringLiteral("Pick the To date"));
    layout->addSpacing(kGap);
    bar.cboType = row.add(new QComboBox, "cboType");
    bar.cboType->addItem(QStringLiteral("Type"));
    layout->addStretch();
    bar.cmdClear = row.addButton("cmdClear", QStringLiteral("Clear"),
                                 QStringLiteral("Removes the filter: reports then cover everything."));
    bar.cmdApply = row.addButton("cmdApply", QStringLiteral("Apply"),
                                 QStringLiteral("Puts the filter in force; then choose a report."));
    bar.fraToolBar->adjustSize();
    return bar;
}

} // namespace app
