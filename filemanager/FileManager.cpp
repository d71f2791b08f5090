#include "filemanager/FileManager.h"

#include "frame/Dialog.h"

uint32_t CONXFileManager::GetObjType() { return ONX_OBJTYPE_FILEMANAGER; }

// The window of this object arrives with the Windows front end; until then
// ShowDialogNonModal answers EONX_ERR_DIALOG.
CONXDialog* CONXFileManager::CreateNewDialog(HWND) { return nullptr; }

void CONXFileManager::DeleteDialog(CONXDialog* dialog) { delete dialog; }
