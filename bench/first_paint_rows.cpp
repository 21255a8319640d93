// From the start of a process to its first painted window and its end.

#include "comparison_rows.h"
#include "shell.h"

namespace bench {

void compareFirstPaint(ComparisonTable& table)
{
    table.add({.what = "start to first paint",
               .ours = [] { return processorTimeOf([] { runInShell(FIRST_PAINT " 2> /dev/null"); }); },
               .theirs = [] { return processorTimeOf([] { runInShell(FIRST_PAINT_EMPTY " 2> /dev/null"); }); },
               .mostRatio = {},
               .note = "the main window with all its menus; theirs: an empty Qt widget of the same size",
               .rounds = 15});
}

} // namespace bench
