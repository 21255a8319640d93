// The main window's menus.
#pragma once

class QMenuBar;

namespace app {

/// Fills the menu bar. Menus and entries carry the names that the program's documents use; every entry is disabled and
/// its tip says so, until its handler is connected (see enableEntry).
void createMainMenu(QMenuBar& bar);

} // namespace app
