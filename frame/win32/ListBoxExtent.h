// Fits a list box's horizontal scroll range to its widest item, measured with
// the list's own font (tab-aware when the list uses tab stops).
#pragma once

#include <windows.h>

void ListBoxFitHorizontalExtent(HWND listBox);
