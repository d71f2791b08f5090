// Report-view list helpers shared by the File Manager's two lists.
#pragma once

#include <windows.h>

#include <cstddef>
#include <string>

struct TFMLISTCOLUMN {
    const char* header;
    int format;  // LVCFMT_LEFT or LVCFMT_RIGHT
    int width;   // pixels; 0: the client width less the other columns
};

// Adds grid lines and full-row select to the list's extended styles, brings
// it to exactly count columns (deleting from the end, inserting empty ones)
// and sets their headers, formats and widths. The column of width 0 gets the
// client width less the others, at least minStretch pixels.
void FMSetUpColumns(HWND list, const TFMLISTCOLUMN* columns, int count, int minStretch);

// The text of one cell, at most maxChars characters.
std::string FMItemText(HWND list, int row, int column, size_t maxChars);
