// Small helpers over controls that every window of the module needs.
#pragma once

#include <windows.h>
#include <commdlg.h>

#include <string>

// The control's text; "" for none.
std::string ControlText(HWND control);

// Sets a control's text only when it differs: status timers refresh every
// half second and should not make the controls flicker.
void SetTextIfChanged(HWND control, const char* text);

// Fits a list box's horizontal scroll range to its widest item, measured with
// the list's own font (tab-aware when the list uses tab stops).
void ListBoxFitHorizontalExtent(HWND listBox);

// A common file dialog's request as every window of the module fills it:
// the owner, the filter's first entry, the name buffer (its initial text is
// the proposed name) and the rest as given; defExt may be null.
OPENFILENAMEA FileDialogRequest(HWND owner, const char* filter, const char* title, char* buffer,
                                DWORD bufferChars, const char* defExt, DWORD flags);
