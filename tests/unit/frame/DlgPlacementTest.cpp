// The anchoring arithmetic of the dialog base.
#include <gtest/gtest.h>

#include "frame/DlgPlacement.h"

void PrintTo(const TONX_DLGRECT& r, std::ostream* os) {
    *os << "{" << r.left << ", " << r.top << ", " << r.right << ", " << r.bottom << "}";
}

namespace {

// A control at 10,20 .. 60,40 in a client area at 100,200 of 200 by 100 (in
// screen coordinates), after the client area became 300 by 150.
TEST(FrameDlgPlacement, EachFlagWordMovesOrStretchesAsItSays) {
    const TONX_DLGRECT client = {100, 200, 300, 300}, control = {110, 220, 160, 240};
    const struct {
        uint32_t flags;
        TONX_DLGRECT to;
        bool stretches;
    } cases[] = {
        {0, {10, 20, 60, 40}, false},
        {ONX_PLACE_SIZEX, {10, 20, 60, 40}, false},  // alone: nothing
        {ONX_PLACE_SIZEY, {10, 20, 60, 40}, false},
        {ONX_PLACE_RIGHT, {110, 20, 160, 40}, false},
        {ONX_PLACE_BOTTOM, {10, 70, 60, 90}, false},
        {ONX_PLACE_TOPSTRIP, {10, 20, 160, 40}, true},
        {ONX_PLACE_FILL, {10, 20, 160, 90}, true},
        {ONX_PLACE_BOTTOMSTRIP, {10, 70, 160, 90}, true},
        {ONX_PLACE_BOTTOMLEFT, {10, 70, 60, 90}, false},
        {ONX_PLACE_BOTTOMRIGHT, {110, 70, 160, 90}, false},
    };
    for (const auto& c : cases) {
        TONX_DLGCTRLPLACEMENT record = DlgCtrlPlacement(7, c.flags, client, control);
        EXPECT_EQ(record.flags, c.flags);  // kept whole, upper bits too
        EXPECT_EQ(DlgCtrlPosition(record, 200, 100), (TONX_DLGRECT{10, 20, 60, 40})) << c.flags;
        EXPECT_EQ(DlgCtrlPosition(record, 300, 150), c.to) << std::hex << c.flags;
        EXPECT_EQ(DlgCtrlStretches(c.flags), c.stretches) << std::hex << c.flags;
    }
}

}  // namespace
