// Picking a text box's date from the calendar.
#pragma once

class QLineEdit;
class QWidget;

namespace controls {
class Dialogs;
}

namespace runtime {
class Clock;
}

namespace dialogs {

/// Opens the calendar over `owner`, on the date in the text box, and writes the day that the user picks back as
/// "dd/mm/yyyy". The text box stays as it was when the user picks none.
void ChangeDate(QLineEdit& box, QWidget& owner, const runtime::Clock& clock, controls::Dialogs& dialogs);

} // namespace dialogs
