// A row of a form: a text and the field behind it.
#pragma once

class QGridLayout;
class QString;
class QWidget;

namespace readings {

/// Adds the row below those of the grid. The caption, less the dots that lead to the field, is what the field is called
/// where it cannot be seen: by screen readers and in error messages.
void addLabelledRow(QGridLayout& grid, const char* labelName, const QString& caption, QWidget& field);

} // namespace readings
