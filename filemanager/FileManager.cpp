#include "filemanager/FileManager.h"

#include "frame/Dialog.h"

uint32_t CONXFileManager::GetObjType() { return ONX_OBJTYPE_FILEMANAGER; }

CONXFileManager::~CONXFileManager() {
    if (m_pDialog) {
        DeleteDialog(m_pDialog);
        m_pDialog = nullptr;  // the base has nothing left to delete
    }
}
