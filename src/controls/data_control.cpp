#include "controls/data_control.h"

#include "controls/dialogs.h"
#include "controls/event_handlers.h"
#include "controls/named.h"

#include <QFontMetrics>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QScopedValueRollback>
#include <QToolButton>

#include <algorithm>

namespace controls {

namespace {

using Move = BoundRecord::Move;

struct Step {
    Move move;
    const char* name;
    const char* meaning;
    Qt::Key key;
    Qt::KeyboardModifiers modifiers;
};

const std::vector<Step>& steps()
{
    static const std::vector<Step> steps = {
        {Move::First, "cmdFirst", "First record (Ctrl+Home)", Qt::Key_Home, Qt::ControlModifier},
        {Move::Previous, "cmdPrevious", "Previous record (Page Up)", Qt::Key_PageUp, Qt::NoModifier},
        {Move::Next, "cmdNext", "Next record (Page Down)", Qt::Key_PageDown, Qt::NoModifier},
        {Move::Last, "cmdLast", "Last record (Ctrl+End)", Qt::Key_End, Qt::ControlModifier},
    };
    return steps;
}

/// A triangle that points the way; at the ends it touches a bar.
QIcon arrow(Move move, const QWidget& widget)
{
    constexpr int kSide = 16;
    const qreal scale = widget.devicePixelRatioF();
    QPixmap picture(QSize(kSide, kSide) * scale);
    picture.setDevicePixelRatio(scale);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(widget.palette().buttonText());
    if (move == Move::First || move == Move::Previous) { // drawn for the other direction
        painter.translate(kSide, 0);
        painter.scale(-1, 1);
    }
    painter.drawPolygon(QPolygonF({{4, 3}, {11, 8}, {4, 13}}));
    if (move == Move::First || move == Move::Last) {
        painter.drawRect(QRectF(11, 3, 2, 10));
    }
    return picture;
}

} // namespace

int widthOfDateAndTime(const QFontMetrics& font)
{
    return font.horizontalAdvance(QStringLiteral("00/00/0000 00:00:00") + QString(3, u'0')); // and the box's frame
}

DataControl::DataControl(QWidget& window, Dialogs& dialogs, const QString& caption, const Source& source)
    : QWidget(&window), window_(window), dialogs_(dialogs), caption_(caption),
      record_(source.databasePath, source.recordSource)
{
    createButtons();
    window.installEventFilter(this);
    showRecord();
}

void DataControl::createButtons()
{
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(2);
    for (const Step& step : steps()) {
        auto* button = named(step.name, new QToolButton);
        row->addWidget(button);
        button->setIcon(arrow(step.move, *button));
        button->setToolTip(QLatin1String(step.meaning));
        button->setAccessibleName(button->toolTip());
        button->setFocusPolicy(Qt::TabFocus); // a click leaves the focus in the box
        connect(button, &QToolButton::clicked, this, [this, move = step.move] { go(move); });
        buttons_.emplace_back(step.move, button);
    }
    position_ = named("lblPosition", new QLabel);
    position_->setAlignment(Qt::AlignCenter);
    position_->setFrameShape(QFrame::StyledPanel);
    row->insertWidget(2, position_, 1);
}

void DataControl::bind(QLineEdit& box, const QString& field)
{
    const QString name = box.accessibleName().isEmpty() ? field : box.accessibleName();
    const Box bound{&box, record_.bind(field, name), box.maxLength()};
    boxes_.push_back(bound);
    box.setReadOnly(!record_.isUpdatable());
    box.installEventFilter(this);
    connect(&box, &QLineEdit::textChanged, this, [this, column = bound.column](const QString& text) {
        if (showing_) {
            return;
        }
        record_.edit(column, text);
        closeRefused_ = false;
    });
    showRecord();
}

void DataControl::bind(QLabel& label, const QString& field)
{
    labels_.push_back({&label, record_.bind(field, field)});
    showRecord();
}

bool DataControl::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::KeyPress) {
        const auto& key = static_cast<const QKeyEvent&>(*event);
        if (handleKey(key.key(), key.modifiers() & ~Qt::KeyboardModifiers(Qt::KeypadModifier))) {
            return true;
        }
    }
    if (watched == &window_ && event->type() == QEvent::Close && !mayClose()) {
        event->ignore();
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

/// Whether the key is one of the control's.
bool DataControl::handleKey(int key, Qt::KeyboardModifiers modifiers)
{
    if (key == Qt::Key_Escape) {
        return cancelEdits();
    }
    for (const Step& step : steps()) {
        if (step.key == key && step.modifiers == modifiers) {
            go(step.move);
            return true;
        }
    }
    return false;
}

void DataControl::go(Move move)
{
    if (!record_.canMove(move) || !attempt([&] { return record_.move(move); })) {
        return;
    }
    for (const Box& box : boxes_) {
        if (box.edit->hasFocus()) {
            box.edit->selectAll();
        }
    }
}

/// False when there are none.
bool DataControl::cancelEdits()
{
    if (!record_.isEdited()) {
        return false;
    }
    record_.cancel();
    showRecord();
    return true;
}

bool DataControl::mayClose()
{
    const bool insisted = closeRefused_;
    closeRefused_ = !attempt([this] { return record_.store(); });
    return !closeRefused_ || insisted;
}

/// Runs what stores or moves; shows what comes of it, an error too. Whether it was done.
bool DataControl::attempt(const std::function<std::optional<BoundRecord::Refusal>()>& action)
{
    std::optional<BoundRecord::Refusal> refusal;
    const bool completed = guarded(dialogs_, &window_, [&] { refusal = action(); });
    if (refusal) {
        dialogs_.showError(&window_, refusal->error.text());
    }
    showRecord();
    if (refusal) {
        const auto refused =
            std::find_if(boxes_.begin(), boxes_.end(), [&](const Box& box) { return box.column == refusal->column; });
        refused->edit->setFocus();
        refused->edit->selectAll();
    }
    return completed && !refusal;
}

void DataControl::showRecord()
{
    closeRefused_ = false;
    {
        const QScopedValueRollback showing(showing_, true);
        for (const Box& box : boxes_) {
            showIn(box);
        }
    }
    for (const Label& label : labels_) {
        label.label->setText(record_.text(label.column));
    }
    for (const auto& [move, button] : buttons_) {
        button->setEnabled(record_.canMove(move));
    }
    QString place = QStringLiteral("no records");
    if (!record_.isEmpty()) {
        place = QStringLiteral("%1 of %2").arg(record_.position() + 1).arg(record_.count());
    }
    if (!record_.isUpdatable()) {
        place += QStringLiteral(" (read only)");
    }
    position_->setText(caption_ + QStringLiteral("  ") + place);
    emit recordShown();
}

void DataControl::showIn(const Box& box)
{
    box.edit->setEnabled(!record_.isEmpty());
    const QString& text = record_.text(box.column);
    if (box.edit->text() == text) {
        return;
    }
    box.edit->setMaxLength(std::max(box.limit, static_cast<int>(text.size())));
    box.edit->setText(text);
    box.edit->setCursorPosition(0); // the beginning of a long text
}

} // namespace controls
