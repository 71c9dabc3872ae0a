// The standard controls: "button", "static", "edit", "listbox", "combobox", "scrollbar". They are
// spoken to by the platform's messages; their texts are UTF-8 within the platform.
#pragma once

#include <cstdint>
#include <string>

#include "platform/base/constants.h"
#include "platform/base/types.h"

namespace tarn::platform {

// Registers the classes; harmless when done before.
void register_standard_controls();

// Not an enumeration: programs mix them with the styles of windows.
inline constexpr std::uint32_t
    // button styles (low four bits) and messages
    BS_PUSHBUTTON = 0,
    BS_DEFPUSHBUTTON = 1, BS_CHECKBOX = 2, BS_AUTOCHECKBOX = 3, BS_RADIOBUTTON = 4, BS_3STATE = 5,
    BS_AUTO3STATE = 6, BS_GROUPBOX = 7, BS_OWNERDRAW_OLD = 8, BS_AUTORADIOBUTTON = 9,
    BS_OWNERDRAW = 0x0B, BS_SPLITBUTTON = 0x0C, BS_DEFSPLITBUTTON = 0x0D, BS_COMMANDLINK = 0x0E,
    BS_DEFCOMMANDLINK = 0x0F,
    BS_LEFTTEXT = 0x20,  // the mark at the right of its label
    BS_ICON = 0x40, BS_BITMAP = 0x80, BS_LEFT = 0x100, BS_RIGHT = 0x200, BS_CENTER = 0x300,
    BS_PUSHLIKE = 0x1000, BS_MULTILINE = 0x2000, BS_NOTIFY = 0x4000, BM_GETCHECK = 0xF0,
    BM_SETCHECK = 0xF1, BM_GETSTATE = 0xF2, BM_SETSTATE = 0xF3, BM_SETSTYLE = 0xF4, BM_CLICK = 0xF5,
    BM_GETIMAGE = 0xF6, BM_SETIMAGE = 0xF7, BCM_SETNOTE = 0x1609, BCM_GETNOTE = 0x160A,
    BCM_GETNOTELENGTH = 0x160B, BN_CLICKED = 0, BN_DOUBLECLICKED = 5, BN_SETFOCUS = 6,
    BN_KILLFOCUS = 7, BST_CHECKED = 1, BST_INDETERMINATE = 2, BST_PUSHED = 4, BST_FOCUS = 8,
    BST_HOT = 0x200, IMAGE_BITMAP = 0, IMAGE_ICON = 1,

    // static
    SS_LEFT = 0, SS_CENTER = 1, SS_RIGHT = 2, SS_ICON = 3, SS_BLACKRECT = 4, SS_GRAYRECT = 5,
    SS_WHITERECT = 6, SS_BLACKFRAME = 7, SS_GRAYFRAME = 8, SS_WHITEFRAME = 9, SS_USERITEM = 10,
    SS_SIMPLE = 11, SS_LEFTNOWORDWRAP = 12, SS_OWNERDRAW = 13, SS_BITMAP = 14, SS_ETCHEDHORZ = 0x10,
    SS_ETCHEDVERT = 0x11, SS_ETCHEDFRAME = 0x12, SS_NOPREFIX = 0x80, SS_NOTIFY = 0x100,
    SS_CENTERIMAGE = 0x200, SS_ENDELLIPSIS = 0x4000, STM_SETICON = 0x170, STM_GETICON = 0x171,
    STM_SETIMAGE = 0x172, STM_GETIMAGE = 0x173, STN_CLICKED = 0, STN_DBLCLK = 1, ODT_STATIC = 5,

    // edit
    ES_LEFT = 0, ES_CENTER = 1, ES_RIGHT = 2, ES_MULTILINE = 4, ES_UPPERCASE = 8,
    ES_LOWERCASE = 0x10, ES_PASSWORD = 0x20, ES_AUTOVSCROLL = 0x40, ES_AUTOHSCROLL = 0x80,
    ES_NOHIDESEL = 0x100, ES_READONLY = 0x800, ES_WANTRETURN = 0x1000, ES_NUMBER = 0x2000,
    EM_GETSEL = 0xB0,  // results are byte offsets into the UTF-8 text
    EM_SETSEL = 0xB1, EM_GETRECT = 0xB2, EM_SCROLL = 0xB5, EM_LINESCROLL = 0xB6,
    EM_SCROLLCARET = 0xB7, EM_GETMODIFY = 0xB8, EM_SETMODIFY = 0xB9, EM_GETLINECOUNT = 0xBA,
    EM_LINEINDEX = 0xBB, EM_LINELENGTH = 0xC1, EM_REPLACESEL = 0xC2, EM_GETLINE = 0xC4,
    EM_LIMITTEXT = 0xC5,  // in bytes; a character is never split
    EM_CANUNDO = 0xC6, EM_UNDO = 0xC7, EM_LINEFROMCHAR = 0xC9, EM_SETPASSWORDCHAR = 0xCC,
    EM_EMPTYUNDOBUFFER = 0xCD, EM_GETFIRSTVISIBLELINE = 0xCE, EM_SETREADONLY = 0xCF,
    EM_GETPASSWORDCHAR = 0xD2, EM_GETLIMITTEXT = 0xD5,
    EM_POSFROMCHAR = 0xD6,  // w: offset; the point is the result, -1 for none
    EM_CHARFROMPOS = 0xD7,  // l: point; low word offset, high word line
    EM_REDO = 0x454, EM_CANREDO = 0x455, EM_SETCUEBANNER = 0x1501, EN_SETFOCUS = 0x100,
    EN_KILLFOCUS = 0x200, EN_CHANGE = 0x300, EN_UPDATE = 0x400, EN_ERRSPACE = 0x500,
    EN_MAXTEXT = 0x501, EN_HSCROLL = 0x601, EN_VSCROLL = 0x602,

    // list box
    LBS_NOTIFY = 1, LBS_SORT = 2, LBS_MULTIPLESEL = 8, LBS_OWNERDRAWFIXED = 0x10,
    LBS_HASSTRINGS = 0x40, LBS_NOINTEGRALHEIGHT = 0x100, LBS_DISABLENOSCROLL = 0x1000,
    LBS_NOSEL = 0x4000, LBS_MULTICOLUMN = 0x200, LBS_EXTENDEDSEL = 0x800, LB_ADDSTRING = 0x180,
    LB_INSERTSTRING = 0x181, LB_DELETESTRING = 0x182, LB_SELITEMRANGEEX = 0x183,
    LB_RESETCONTENT = 0x184, LB_SETSEL = 0x185, LB_SETCURSEL = 0x186, LB_GETSEL = 0x187,
    LB_GETCURSEL = 0x188, LB_GETTEXT = 0x189, LB_GETTEXTLEN = 0x18A, LB_GETCOUNT = 0x18B,
    LB_SELECTSTRING = 0x18C, LB_GETTOPINDEX = 0x18E, LB_FINDSTRING = 0x18F, LB_GETSELCOUNT = 0x190,
    LB_GETSELITEMS = 0x191, LB_GETHORIZONTALEXTENT = 0x193, LB_SETHORIZONTALEXTENT = 0x194,
    LB_SETCOLUMNWIDTH = 0x195, LB_SETTOPINDEX = 0x197, LB_GETITEMRECT = 0x198,
    LB_GETITEMDATA = 0x199, LB_SETITEMDATA = 0x19A, LB_SETCARETINDEX = 0x19E,
    LB_GETCARETINDEX = 0x19F, LB_SETITEMHEIGHT = 0x1A0, LB_GETITEMHEIGHT = 0x1A1,
    LB_FINDSTRINGEXACT = 0x1A2, LB_ITEMFROMPOINT = 0x1A9, LBN_SELCHANGE = 1, LBN_DBLCLK = 2,
    LBN_SELCANCEL = 3, LBN_SETFOCUS = 4, LBN_KILLFOCUS = 5,

    // combo box
    CBS_SIMPLE = 1, CBS_DROPDOWN = 2, CBS_DROPDOWNLIST = 3, CBS_OWNERDRAWFIXED = 0x10,
    CBS_AUTOHSCROLL = 0x40, CBS_SORT = 0x100, CBS_HASSTRINGS = 0x200, CB_GETEDITSEL = 0x140,
    CB_LIMITTEXT = 0x141, CB_SETEDITSEL = 0x142, CB_ADDSTRING = 0x143, CB_DELETESTRING = 0x144,
    CB_GETCOUNT = 0x146, CB_GETCURSEL = 0x147, CB_GETLBTEXT = 0x148, CB_GETLBTEXTLEN = 0x149,
    CB_INSERTSTRING = 0x14A, CB_RESETCONTENT = 0x14B, CB_FINDSTRING = 0x14C,
    CB_SELECTSTRING = 0x14D, CB_SETCURSEL = 0x14E, CB_SHOWDROPDOWN = 0x14F, CB_GETITEMDATA = 0x150,
    CB_SETITEMDATA = 0x151, CB_GETDROPPEDCONTROLRECT = 0x152,
    CB_SETITEMHEIGHT = 0x153,  // item -1: the field
    CB_GETITEMHEIGHT = 0x154, CB_GETDROPPEDSTATE = 0x157, CB_FINDSTRINGEXACT = 0x158,
    CB_GETDROPPEDWIDTH = 0x15F, CB_SETDROPPEDWIDTH = 0x160, ODS_COMBOBOXEDIT = 0x1000,
    CBN_SELCHANGE = 1, CBN_DBLCLK = 2, CBN_SETFOCUS = 3, CBN_KILLFOCUS = 4, CBN_EDITCHANGE = 5,
    CBN_EDITUPDATE = 6, CBN_DROPDOWN = 7, CBN_CLOSEUP = 8, CBN_SELENDOK = 9, CBN_SELENDCANCEL = 10,

    // scroll bar
    SBS_HORZ = 0, SBS_VERT = 1, SBM_SETPOS = 0xE0, SBM_GETPOS = 0xE1, SBM_SETRANGE = 0xE2,
    SBM_GETRANGE = 0xE3, SBM_SETRANGEREDRAW = 0xE6;

// The results of lists when there is no such item.
inline constexpr LRESULT LB_ERR = -1, CB_ERR = -1;

// A split button's arrow was pressed: WM_NOTIFY to the parent, with this record.
inline constexpr std::int32_t BCN_DROPDOWN = -1248;
struct NMBCDROPDOWN;  // an NMHDR, then the button's rectangle

// What a control is to somebody who can't see it, for the accessibility tree and for scripts.
struct ControlFacts {
    const char* role = "pane";  // "button", "check box", "text field", "label", "list", ...
    std::string name;           // its label, without mnemonic marks
    std::string value;          // what it holds
    bool checked = false, enabled = true, focused = false, visible = true;
};
ControlFacts control_facts(HWND hwnd);

}  // namespace tarn::platform
