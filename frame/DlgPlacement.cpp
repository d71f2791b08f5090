#include "frame/DlgPlacement.h"

TONX_DLGCTRLPLACEMENT DlgCtrlPlacement(uint32_t ctrlId, uint32_t flags, const TONX_DLGRECT& client,
                                       const TONX_DLGRECT& control) {
    TONX_DLGCTRLPLACEMENT record;
    record.ctrlId = ctrlId;
    record.flags = flags;
    record.width = control.right - control.left;
    record.height = control.bottom - control.top;
    record.left = control.left - client.left;
    record.top = control.top - client.top;
    record.rightMargin = client.right - control.right;
    record.bottomMargin = client.bottom - control.bottom;
    return record;
}

TONX_DLGRECT DlgCtrlPosition(const TONX_DLGCTRLPLACEMENT& record, int32_t cx, int32_t cy) {
    int32_t left = record.left, top = record.top, width = record.width, height = record.height;
    if (record.flags & ONX_PLACE_RIGHT) {
        if (record.flags & ONX_PLACE_SIZEX) width = cx - record.rightMargin - left;
        else left = cx - record.rightMargin - width;
    }
    if (record.flags & ONX_PLACE_BOTTOM) {
        if (record.flags & ONX_PLACE_SIZEY) height = cy - record.bottomMargin - top;
        else top = cy - record.bottomMargin - height;
    }
    return {left, top, left + width, top + height};
}

bool DlgCtrlStretches(uint32_t flags) {
    const uint32_t x = ONX_PLACE_SIZEX | ONX_PLACE_RIGHT, y = ONX_PLACE_SIZEY | ONX_PLACE_BOTTOM;
    return (flags & x) == x || (flags & y) == y;
}
