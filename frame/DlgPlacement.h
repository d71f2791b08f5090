// Anchoring of a dialog's controls to the edges of its client area: the
// window layer measures and moves, these functions decide. Pixels throughout.
#pragma once

#include <cstdint>

// One control anchored by AutoDlgCtrlPlacement, in pixels at registration.
struct TONX_DLGCTRLPLACEMENT {
    uint32_t ctrlId;
    uint32_t flags;
    int32_t width;
    int32_t height;
    int32_t left;          // from the client area's left edge
    int32_t top;           // from the client area's top edge
    int32_t rightMargin;   // client right - control right
    int32_t bottomMargin;  // client bottom - control bottom
};
static_assert(sizeof(TONX_DLGCTRLPLACEMENT) == 32, "placement record layout");

// Placement flags. SIZEX with RIGHT stretches the width, RIGHT alone moves the
// control with the right edge, likewise SIZEY and BOTTOM; SIZEX or SIZEY alone
// change nothing.
enum : uint32_t {
    ONX_PLACE_SIZEX = 1,   // may change its width
    ONX_PLACE_SIZEY = 2,   // may change its height
    ONX_PLACE_RIGHT = 4,   // follows the right edge
    ONX_PLACE_BOTTOM = 8,  // follows the bottom edge
    // Marks the module's dialogs also pass; kept in the record, never acted on.
    ONX_PLACE_FIXEDWIDTH = 0x10,   // the width never changes
    ONX_PLACE_FIXEDHEIGHT = 0x20,  // moves with the bottom edge at its height
    ONX_PLACE_ANCHORED = 0x10000,
};

// The words the module's dialogs pass, by what they do to a control.
enum : uint32_t {
    // Along the top, as wide as the window: the channel status box.
    ONX_PLACE_TOPSTRIP = ONX_PLACE_ANCHORED | ONX_PLACE_SIZEX | ONX_PLACE_RIGHT | ONX_PLACE_SIZEY,
    // Grows both ways: logs and lists.
    ONX_PLACE_FILL = ONX_PLACE_ANCHORED | ONX_PLACE_SIZEX | ONX_PLACE_RIGHT | ONX_PLACE_SIZEY |
                     ONX_PLACE_BOTTOM,
    // Along the bottom, as wide as the window: input lines, path fields, status lines.
    ONX_PLACE_BOTTOMSTRIP = ONX_PLACE_ANCHORED | ONX_PLACE_FIXEDHEIGHT | ONX_PLACE_SIZEX |
                            ONX_PLACE_RIGHT | ONX_PLACE_BOTTOM,
    // Moves with the bottom edge, stays at the left: buttons and labels.
    ONX_PLACE_BOTTOMLEFT = ONX_PLACE_ANCHORED | ONX_PLACE_FIXEDHEIGHT | ONX_PLACE_FIXEDWIDTH |
                           ONX_PLACE_SIZEX | ONX_PLACE_BOTTOM,
    // Moves with the bottom right corner: buttons.
    ONX_PLACE_BOTTOMRIGHT = ONX_PLACE_ANCHORED | ONX_PLACE_FIXEDHEIGHT | ONX_PLACE_FIXEDWIDTH |
                            ONX_PLACE_RIGHT | ONX_PLACE_BOTTOM,
};

struct TONX_DLGRECT {
    int32_t left, top, right, bottom;
    bool operator==(const TONX_DLGRECT&) const = default;
};

// A control's record at registration (client area and control in the same coordinates).
TONX_DLGCTRLPLACEMENT DlgCtrlPlacement(uint32_t ctrlId, uint32_t flags, const TONX_DLGRECT& client,
                                       const TONX_DLGRECT& control);

// Where the control goes, in client coordinates, for a client area of cx by cy.
TONX_DLGRECT DlgCtrlPosition(const TONX_DLGCTRLPLACEMENT& record, int32_t cx, int32_t cy);

// Whether the control grows with the window (and so repaints whole).
bool DlgCtrlStretches(uint32_t flags);
