#include "meals/frmAddIngredient.h"

#include "controls/event_handlers.h"
#include "controls/field_focus.h"
#include "controls/modApplication.h"
#include "controls/named.h"
#include "meals/new_food.h"
#include "runtime/conversions.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>

#include <algorithm>

namespace meals {

using controls::named;

namespace {

constexpr int kRowsInFirstColumn = 15;
constexpr int kValueCharacters = 12;
constexpr int kGapCharacters = 4;
constexpr int kDescriptionCharacters = 50;

/// A control of an array of them, "txtNutrientValue(0)" and so on.
template <typename Control>
Control* element(const char* array, std::size_t index, Control* control)
{
    control->setObjectName(QStringLiteral("%1(%2)").arg(QLatin1String(array)).arg(index));
    return control;
}

/// Rows follow each other at one and a half times the height of a label, which reaches from the top of its text box to
/// the foot of the text in there.
struct RowMeasures {
    explicit RowMeasures(const QLineEdit& box)
        : boxHeight(box.sizeHint().height()), textTop((boxHeight - box.fontMetrics().height() + 1) / 2),
          labelHeight((textTop + box.fontMetrics().height() + 1) / 2 * 2)
    {
    }

    int boxHeight;
    int textTop;     ///< below the top of the box
    int labelHeight; ///< even
    [[nodiscard]] int distance() const { return labelHeight * 3 / 2; }
};

/// Would show the first column whole, and all of the width.
class RowsInSight : public QScrollArea
{
public:
    [[nodiscard]] QSize sizeHint() const override
    {
        const int firstColumn =
            kRowsInFirstColumn * RowMeasures(QLineEdit()).distance() + widget()->layout()->contentsMargins().top();
        const QSize content = widget()->sizeHint();
        return QSize(content.width() + verticalScrollBar()->sizeHint().width(),
                     std::min(content.height(), firstColumn)) +
               QSize(2 * frameWidth(), 2 * frameWidth());
    }
};

} // namespace

frmAddIngredient::frmAddIngredient(QWidget* owner, controls::Dialogs& dialogs, QString diaryPath)
    : QDialog(owner), dialogs_(dialogs), diaryPath_(std::move(diaryPath))
{
    setObjectName(QStringLiteral("frmAddIngredient"));
    setWindowTitle(QStringLiteral(" Add Ingredient / Food"));
    createControls();
    connectHandlers();
    Form_Load();
    resize(sizeHint().boundedTo(screen()->availableSize() * 9 / 10));
}

void frmAddIngredient::Form_Load()
{
    if (const int length = descriptionLength(diaryPath_); length > 0) {
        txtDesc->setMaxLength(length);
    }
    for (const QString& column : nutrientColumns(diaryPath_)) {
        addRow(column);
    }
    rows_->setRowStretch(rows_->rowCount(), 1);
}

void frmAddIngredient::cmdOK_Click()
{
    SaveIngredient();
    cmdOK->setEnabled(false); // a second click of a double click adds nothing
    accept();
}

void frmAddIngredient::cmdSave_Click()
{
    SaveIngredient();
}

void frmAddIngredient::cmdCancel_Click()
{
    reject();
}

void frmAddIngredient::txtNutrientValue_LostFocus(std::size_t index)
{
    if (!runtime::isNumeric(txtNutrientValue[index]->text())) {
        focus_->giveBack(*txtNutrientValue[index]);
    }
}

void frmAddIngredient::SaveIngredient()
{
    NewFood food{txtDesc->text(), chkRecipe->isChecked(), chkIngredient->isChecked(), {}};
    for (std::size_t index = 0; index < lblNutrient.size(); ++index) {
        QLineEdit& value = *txtNutrientValue[index];
        if (value.text().isEmpty()) {
            value.setText(QStringLiteral("0"));
        }
        food.values.append(NewFood::Value{lblNutrient[index]->text(), value.text()});
    }
    meals::SaveIngredient(diaryPath_, food);
}

void frmAddIngredient::keyPressEvent(QKeyEvent* event)
{
    auto* button = qobject_cast<QPushButton*>(focusWidget());
    if (button != nullptr && (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)) {
        button->click();
    } else {
        QDialog::keyPressEvent(event);
    }
}

void frmAddIngredient::createControls()
{
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(createHead());

    auto* content = new QWidget;
    rows_ = new QGridLayout(content);
    const RowMeasures measures{QLineEdit()};
    rows_->setVerticalSpacing(measures.distance() - measures.boxHeight);
    scrolled_ = new RowsInSight;
    scrolled_->setWidgetResizable(true);
    scrolled_->setFocusPolicy(Qt::NoFocus);
    scrolled_->setWidget(content);
    layout->addWidget(scrolled_);

    layout->addLayout(createButtons());
}

QBoxLayout* frmAddIngredient::createHead()
{
    auto* lblDesc = named("lblDesc", new QLabel(QStringLiteral("Ingredient Description")));
    txtDesc = named("txtDesc", new QLineEdit);
    txtDesc->setMinimumWidth(fontMetrics().averageCharWidth() * kDescriptionCharacters);
    lblDesc->setBuddy(txtDesc);
    chkRecipe = named("chkRecipe", new QCheckBox(QStringLiteral("Recipe")));
    chkIngredient = named("chkIngredient", new QCheckBox(QStringLiteral("Ingredient")));

    auto* description = new QHBoxLayout;
    description->addWidget(lblDesc);
    description->addWidget(txtDesc);
    auto* flags = new QHBoxLayout;
    flags->addWidget(chkRecipe);
    flags->addWidget(chkIngredient);
    flags->addStretch();
    auto* head = new QVBoxLayout;
    head->addLayout(description);
    head->addLayout(flags);
    return head;
}

QBoxLayout* frmAddIngredient::createButtons()
{
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    const auto addButton = [&](const char* name, const QString& caption) {
        auto* button = named(name, new QPushButton(caption));
        button->setAutoDefault(false);
        // A click leaves the focus in the field: it reaches its handler even when the field would not let the focus go.
        button->setFocusPolicy(Qt::TabFocus);
        buttons->addWidget(button);
        return button;
    };
    cmdOK = addButton("cmdOK", QStringLiteral("OK"));
    cmdSave = addButton("cmdSave", QStringLiteral("Save to DB"));
    cmdCancel = addButton("cmdCancel", QStringLiteral("Cancel"));
    return buttons;
}

void frmAddIngredient::addRow(const QString& column)
{
    const std::size_t index = txtNutrientValue.size();
    auto* box = element("txtNutrientValue", index, new QLineEdit(QStringLiteral("0")));
    box->setAccessibleName(column);
    box->setAlignment(Qt::AlignRight);
    box->setMinimumWidth(fontMetrics().averageCharWidth() * kValueCharacters);
    auto* label = element("lblNutrient", index, new QLabel(column));
    label->setTextFormat(Qt::PlainText);
    label->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    const RowMeasures measures(*box);
    label->setContentsMargins(0, measures.textTop, 0, 0);
    label->setFixedHeight(measures.labelHeight);

    placeRow(static_cast<int>(index), label, box);
    setTabOrder(index == 0 ? static_cast<QWidget*>(chkIngredient) : txtNutrientValue.back(), box);
    setTabOrder(box, cmdOK);
    focus_->watch(
        *box, [this, index] { controls::guarded(dialogs_, this, [=, this] { txtNutrientValue_LostFocus(index); }); });
    lblNutrient.push_back(label);
    txtNutrientValue.push_back(box);
}

void frmAddIngredient::placeRow(int index, QLabel* label, QLineEdit* box)
{
    constexpr int kGap = 2; // the grid's columns are label, box, a gap, label, box
    const bool beside = index >= kRowsInFirstColumn;
    const int row = beside ? index - kRowsInFirstColumn : index;
    const int column = beside ? kGap + 1 : 0;
    rows_->addWidget(label, row, column, Qt::AlignTop);
    rows_->addWidget(box, row, column + 1, Qt::AlignTop);
    rows_->setColumnStretch(column + 1, 1);
    if (beside) {
        rows_->setColumnMinimumWidth(kGap, fontMetrics().averageCharWidth() * kGapCharacters);
    }
}

void frmAddIngredient::connectHandlers()
{
    using controls::FieldFocus;
    focus_ = new FieldFocus(*this);
    focus_->watch(*txtDesc);
    connect(focus_, &FieldFocus::entered, this, &frmAddIngredient::enter);
    const controls::EventHandlers handlers(*this, dialogs_);
    handlers.connect(cmdOK, &QPushButton::clicked, &frmAddIngredient::cmdOK_Click);
    handlers.connect(cmdSave, &QPushButton::clicked, &frmAddIngredient::cmdSave_Click);
    handlers.connect(cmdCancel, &QPushButton::clicked, &frmAddIngredient::cmdCancel_Click);
}

void frmAddIngredient::enter(QLineEdit* field)
{
    if (field != txtDesc) {
        scrolled_->ensureWidgetVisible(field);
    }
    controls::SelectAll(field); // what is typed takes the place of the 0
}

} // namespace meals
