// The main window's menus.
#pragma once

class QAction;
class QMenuBar;

namespace app {

/// Fills the menu bar. Menus and entries carry the names that the program's documents use, and a tip for the status
/// bar; what is not in this version is disabled, and its tip says so.
void createMainMenu(QMenuBar& bar);

/// The entry of that name; std::logic_error when there is none.
[[nodiscard]] QAction& menuEntry(const QMenuBar& bar, const char* name);

} // namespace app
