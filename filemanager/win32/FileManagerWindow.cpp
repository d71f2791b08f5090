// The File Manager's window on Windows.
#include <new>

#include "filemanager/FileManager.h"
#include "filemanager/win32/FileManagerDialog.h"

CONXDialog* CONXFileManager::CreateNewDialog(HWND parent) {
    return new (std::nothrow) CFileManagerDialog(parent);
}

// Only CreateNewDialog makes this object's dialogs.
void CONXFileManager::DeleteDialog(CONXDialog* dialog) {
    if (dialog) static_cast<CFileManagerDialog*>(dialog)->Release();
}
