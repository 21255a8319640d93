// The bar along the top of the main window, with the date filter.
#pragma once

class QComboBox;
class QFrame;
class QLineEdit;
class QPushButton;
class QWidget;

namespace app {

/// The controls that the main window works with; each carries its name as its object's name.
struct FilterBar {
    QFrame* fraToolBar = nullptr;
    QLineEdit* txtFrom = nullptr;
    QPushButton* cmdFrom = nullptr;
    QLineEdit* txtTo = nullptr;
    QPushButton* cmdTo = nullptr;
    QComboBox* cboType = nullptr;
    QPushButton* cmdClear = nullptr;
    QPushButton* cmdApply = nullptr;
};

/// All of them are owned by `parent`. Nothing is connected yet.
[[nodiscard]] FilterBar createFilterBar(QWidget& parent);

} // namespace app
