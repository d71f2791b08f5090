// Without a window system the File Manager has no window: ShowDialogNonModal
// answers EONX_ERR_DIALOG.
#include "filemanager/FileManager.h"
#include "frame/Dialog.h"

CONXDialog* CONXFileManager::CreateNewDialog(HWND) { return nullptr; }

void CONXFileManager::DeleteDialog(CONXDialog* dialog) { delete dialog; }
