#include "dialogs/change_date.h"

#include "controls/modApplication.h"
#include "dialogs/frmCalender.h"
#include "runtime/conversions.h"
#include "runtime/format.h"

#include <QLineEdit>

namespace dialogs {

void ChangeDate(QLineEdit& box, QWidget& owner, const runtime::Clock& clock, controls::Dialogs& dialogs)
{
    frmCalender calendar(&owner, clock, dialogs);
    calendar.setWindowTitle(QStringLiteral("Double click to select date"));
    calendar.DoCalender(box.text());
    controls::ShowCentredModal(calendar, owner);
    if (!calendar.mgsPickDate().isEmpty()) {
        box.setText(runtime::format(runtime::toDate(calendar.mgsPickDate()), QStringLiteral("dd/mm/yyyy")));
    }
}

} // namespace dialogs
