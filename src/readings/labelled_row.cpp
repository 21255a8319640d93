#include "readings/labelled_row.h"

#include "controls/named.h"

#include <QGridLayout>
#include <QLabel>

namespace readings {

void addLabelledRow(QGridLayout& grid, const char* labelName, const QString& caption, QWidget& field)
{
    auto* label = controls::named(labelName, new QLabel(caption));
    label->setBuddy(&field);
    field.setAccessibleName(QString(caption).remove(u'.').trimmed());
    const int row = grid.rowCount();
    grid.addWidget(label, row, 0);
    grid.addWidget(&field, row, 1);
}

} // namespace readings
