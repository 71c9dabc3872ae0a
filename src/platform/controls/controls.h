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
// button styles (low four bits) and messages
inline constexpr UINT BS_PUSHBUTTON = 0;
inline constexpr UINT BS_DEFPUSHBUTTON = 1;
inline constexpr UINT BS_CHECKBOX = 2;
inline constexpr UINT BS_AUTOCHECKBOX = 3;
inline constexpr UINT BS_RADIOBUTTON = 4;
inline constexpr UINT BS_3STATE = 5;
inline constexpr UINT BS_AUTO3STATE = 6;
inline constexpr UINT BS_GROUPBOX = 7;
inline constexpr UINT BS_OWNERDRAW_OLD = 8;
inline constexpr UINT BS_AUTORADIOBUTTON = 9;
inline constexpr UINT BS_OWNERDRAW = 0x0B;
inline constexpr UINT BS_SPLITBUTTON = 0x0C;
inline constexpr UINT BS_DEFSPLITBUTTON = 0x0D;
inline constexpr UINT BS_COMMANDLINK = 0x0E;
inline constexpr UINT BS_DEFCOMMANDLINK = 0x0F;
inline constexpr UINT BS_LEFTTEXT = 0x20;  // the mark at the right of its label
inline constexpr UINT BS_ICON = 0x40;
inline constexpr UINT BS_BITMAP = 0x80;
inline constexpr UINT BS_LEFT = 0x100;
inline constexpr UINT BS_RIGHT = 0x200;
inline constexpr UINT BS_CENTER = 0x300;
inline constexpr UINT BS_PUSHLIKE = 0x1000;
inline constexpr UINT BS_MULTILINE = 0x2000;
inline constexpr UINT BS_NOTIFY = 0x4000;
inline constexpr UINT BM_GETCHECK = 0xF0;
inline constexpr UINT BM_SETCHECK = 0xF1;
inline constexpr UINT BM_GETSTATE = 0xF2;
inline constexpr UINT BM_SETSTATE = 0xF3;
inline constexpr UINT BM_SETSTYLE = 0xF4;
inline constexpr UINT BM_CLICK = 0xF5;
inline constexpr UINT BM_GETIMAGE = 0xF6;
inline constexpr UINT BM_SETIMAGE = 0xF7;
inline constexpr UINT BCM_SETNOTE = 0x1609;
inline constexpr UINT BCM_GETNOTE = 0x160A;
inline constexpr UINT BCM_GETNOTELENGTH = 0x160B;
inline constexpr UINT BN_CLICKED = 0;
inline constexpr UINT BN_DOUBLECLICKED = 5;
inline constexpr UINT BN_SETFOCUS = 6;
inline constexpr UINT BN_KILLFOCUS = 7;
inline constexpr UINT BST_CHECKED = 1;
inline constexpr UINT BST_INDETERMINATE = 2;
inline constexpr UINT BST_PUSHED = 4;
inline constexpr UINT BST_FOCUS = 8;
inline constexpr UINT BST_HOT = 0x200;
inline constexpr UINT IMAGE_BITMAP = 0;
inline constexpr UINT IMAGE_ICON = 1;

// static
inline constexpr UINT SS_LEFT = 0;
inline constexpr UINT SS_CENTER = 1;
inline constexpr UINT SS_RIGHT = 2;
inline constexpr UINT SS_ICON = 3;
inline constexpr UINT SS_BLACKRECT = 4;
inline constexpr UINT SS_GRAYRECT = 5;
inline constexpr UINT SS_WHITERECT = 6;
inline constexpr UINT SS_BLACKFRAME = 7;
inline constexpr UINT SS_GRAYFRAME = 8;
inline constexpr UINT SS_WHITEFRAME = 9;
inline constexpr UINT SS_USERITEM = 10;
inline constexpr UINT SS_SIMPLE = 11;
inline constexpr UINT SS_LEFTNOWORDWRAP = 12;
inline constexpr UINT SS_OWNERDRAW = 13;
inline constexpr UINT SS_BITMAP = 14;
inline constexpr UINT SS_ETCHEDHORZ = 0x10;
inline constexpr UINT SS_ETCHEDVERT = 0x11;
inline constexpr UINT SS_ETCHEDFRAME = 0x12;
inline constexpr UINT SS_NOPREFIX = 0x80;
inline constexpr UINT SS_NOTIFY = 0x100;
inline constexpr UINT SS_CENTERIMAGE = 0x200;
inline constexpr UINT SS_ENDELLIPSIS = 0x4000;
inline constexpr UINT STM_SETICON = 0x170;
inline constexpr UINT STM_GETICON = 0x171;
inline constexpr UINT STM_SETIMAGE = 0x172;
inline constexpr UINT STM_GETIMAGE = 0x173;
inline constexpr UINT STN_CLICKED = 0;
inline constexpr UINT STN_DBLCLK = 1;
inline constexpr UINT ODT_STATIC = 5;

// edit
inline constexpr UINT ES_LEFT = 0;
inline constexpr UINT ES_CENTER = 1;
inline constexpr UINT ES_RIGHT = 2;
inline constexpr UINT ES_MULTILINE = 4;
inline constexpr UINT ES_UPPERCASE = 8;
inline constexpr UINT ES_LOWERCASE = 0x10;
inline constexpr UINT ES_PASSWORD = 0x20;
inline constexpr UINT ES_AUTOVSCROLL = 0x40;
inline constexpr UINT ES_AUTOHSCROLL = 0x80;
inline constexpr UINT ES_NOHIDESEL = 0x100;
inline constexpr UINT ES_READONLY = 0x800;
inline constexpr UINT ES_WANTRETURN = 0x1000;
inline constexpr UINT ES_NUMBER = 0x2000;
inline constexpr UINT EM_GETSEL = 0xB0;  // results are byte offsets into the UTF-8 text
inline constexpr UINT EM_SETSEL = 0xB1;
inline constexpr UINT EM_GETRECT = 0xB2;
inline constexpr UINT EM_SCROLL = 0xB5;
inline constexpr UINT EM_LINESCROLL = 0xB6;
inline constexpr UINT EM_SCROLLCARET = 0xB7;
inline constexpr UINT EM_GETMODIFY = 0xB8;
inline constexpr UINT EM_SETMODIFY = 0xB9;
inline constexpr UINT EM_GETLINECOUNT = 0xBA;
inline constexpr UINT EM_LINEINDEX = 0xBB;
inline constexpr UINT EM_LINELENGTH = 0xC1;
inline constexpr UINT EM_REPLACESEL = 0xC2;
inline constexpr UINT EM_GETLINE = 0xC4;
inline constexpr UINT EM_LIMITTEXT = 0xC5;  // in bytes; a character is never split
inline constexpr UINT EM_CANUNDO = 0xC6;
inline constexpr UINT EM_UNDO = 0xC7;
inline constexpr UINT EM_LINEFROMCHAR = 0xC9;
inline constexpr UINT EM_SETPASSWORDCHAR = 0xCC;
inline constexpr UINT EM_EMPTYUNDOBUFFER = 0xCD;
inline constexpr UINT EM_GETFIRSTVISIBLELINE = 0xCE;
inline constexpr UINT EM_SETREADONLY = 0xCF;
inline constexpr UINT EM_GETPASSWORDCHAR = 0xD2;
inline constexpr UINT EM_GETLIMITTEXT = 0xD5;
inline constexpr UINT EM_POSFROMCHAR = 0xD6;  // w: offset; the point is the result, -1 for none
inline constexpr UINT EM_CHARFROMPOS = 0xD7;  // l: point; low word offset, high word line
inline constexpr UINT EM_REDO = 0x454;
inline constexpr UINT EM_CANREDO = 0x455;
inline constexpr UINT EM_SETCUEBANNER = 0x1501;
inline constexpr UINT EN_SETFOCUS = 0x100;
inline constexpr UINT EN_KILLFOCUS = 0x200;
inline constexpr UINT EN_CHANGE = 0x300;
inline constexpr UINT EN_UPDATE = 0x400;
inline constexpr UINT EN_ERRSPACE = 0x500;
inline constexpr UINT EN_MAXTEXT = 0x501;
inline constexpr UINT EN_HSCROLL = 0x601;
inline constexpr UINT EN_VSCROLL = 0x602;

// list box
inline constexpr UINT LBS_NOTIFY = 1;
inline constexpr UINT LBS_SORT = 2;
inline constexpr UINT LBS_MULTIPLESEL = 8;
inline constexpr UINT LBS_OWNERDRAWFIXED = 0x10;
inline constexpr UINT LBS_HASSTRINGS = 0x40;
inline constexpr UINT LBS_NOINTEGRALHEIGHT = 0x100;
inline constexpr UINT LBS_DISABLENOSCROLL = 0x1000;
inline constexpr UINT LBS_NOSEL = 0x4000;
inline constexpr UINT LBS_MULTICOLUMN = 0x200;
inline constexpr UINT LBS_EXTENDEDSEL = 0x800;
inline constexpr UINT LB_ADDSTRING = 0x180;
inline constexpr UINT LB_INSERTSTRING = 0x181;
inline constexpr UINT LB_DELETESTRING = 0x182;
inline constexpr UINT LB_SELITEMRANGEEX = 0x183;
inline constexpr UINT LB_RESETCONTENT = 0x184;
inline constexpr UINT LB_SETSEL = 0x185;
inline constexpr UINT LB_SETCURSEL = 0x186;
inline constexpr UINT LB_GETSEL = 0x187;
inline constexpr UINT LB_GETCURSEL = 0x188;
inline constexpr UINT LB_GETTEXT = 0x189;
inline constexpr UINT LB_GETTEXTLEN = 0x18A;
inline constexpr UINT LB_GETCOUNT = 0x18B;
inline constexpr UINT LB_SELECTSTRING = 0x18C;
inline constexpr UINT LB_GETTOPINDEX = 0x18E;
inline constexpr UINT LB_FINDSTRING = 0x18F;
inline constexpr UINT LB_GETSELCOUNT = 0x190;
inline constexpr UINT LB_GETSELITEMS = 0x191;
inline constexpr UINT LB_GETHORIZONTALEXTENT = 0x193;
inline constexpr UINT LB_SETHORIZONTALEXTENT = 0x194;
inline constexpr UINT LB_SETCOLUMNWIDTH = 0x195;
inline constexpr UINT LB_SETTOPINDEX = 0x197;
inline constexpr UINT LB_GETITEMRECT = 0x198;
inline constexpr UINT LB_GETITEMDATA = 0x199;
inline constexpr UINT LB_SETITEMDATA = 0x19A;
inline constexpr UINT LB_SETCARETINDEX = 0x19E;
inline constexpr UINT LB_GETCARETINDEX = 0x19F;
inline constexpr UINT LB_SETITEMHEIGHT = 0x1A0;
inline constexpr UINT LB_GETITEMHEIGHT = 0x1A1;
inline constexpr UINT LB_FINDSTRINGEXACT = 0x1A2;
inline constexpr UINT LB_ITEMFROMPOINT = 0x1A9;
inline constexpr UINT LBN_SELCHANGE = 1;
inline constexpr UINT LBN_DBLCLK = 2;
inline constexpr UINT LBN_SELCANCEL = 3;
inline constexpr UINT LBN_SETFOCUS = 4;
inline constexpr UINT LBN_KILLFOCUS = 5;

// combo box
inline constexpr UINT CBS_SIMPLE = 1;
inline constexpr UINT CBS_DROPDOWN = 2;
inline constexpr UINT CBS_DROPDOWNLIST = 3;
inline constexpr UINT CBS_OWNERDRAWFIXED = 0x10;
inline constexpr UINT CBS_AUTOHSCROLL = 0x40;
inline constexpr UINT CBS_SORT = 0x100;
inline constexpr UINT CBS_HASSTRINGS = 0x200;
inline constexpr UINT CB_GETEDITSEL = 0x140;
inline constexpr UINT CB_LIMITTEXT = 0x141;
inline constexpr UINT CB_SETEDITSEL = 0x142;
inline constexpr UINT CB_ADDSTRING = 0x143;
inline constexpr UINT CB_DELETESTRING = 0x144;
inline constexpr UINT CB_GETCOUNT = 0x146;
inline constexpr UINT CB_GETCURSEL = 0x147;
inline constexpr UINT CB_GETLBTEXT = 0x148;
inline constexpr UINT CB_GETLBTEXTLEN = 0x149;
inline constexpr UINT CB_INSERTSTRING = 0x14A;
inline constexpr UINT CB_RESETCONTENT = 0x14B;
inline constexpr UINT CB_FINDSTRING = 0x14C;
inline constexpr UINT CB_SELECTSTRING = 0x14D;
inline constexpr UINT CB_SETCURSEL = 0x14E;
inline constexpr UINT CB_SHOWDROPDOWN = 0x14F;
inline constexpr UINT CB_GETITEMDATA = 0x150;
inline constexpr UINT CB_SETITEMDATA = 0x151;
inline constexpr UINT CB_GETDROPPEDCONTROLRECT = 0x152;
inline constexpr UINT CB_SETITEMHEIGHT = 0x153;  // item -1: the field
inline constexpr UINT CB_GETITEMHEIGHT = 0x154;
inline constexpr UINT CB_GETDROPPEDSTATE = 0x157;
inline constexpr UINT CB_FINDSTRINGEXACT = 0x158;
inline constexpr UINT CB_GETDROPPEDWIDTH = 0x15F;
inline constexpr UINT CB_SETDROPPEDWIDTH = 0x160;
inline constexpr UINT ODS_COMBOBOXEDIT = 0x1000;
inline constexpr UINT CBN_SELCHANGE = 1;
inline constexpr UINT CBN_DBLCLK = 2;
inline constexpr UINT CBN_SETFOCUS = 3;
inline constexpr UINT CBN_KILLFOCUS = 4;
inline constexpr UINT CBN_EDITCHANGE = 5;
inline constexpr UINT CBN_EDITUPDATE = 6;
inline constexpr UINT CBN_DROPDOWN = 7;
inline constexpr UINT CBN_CLOSEUP = 8;
inline constexpr UINT CBN_SELENDOK = 9;
inline constexpr UINT CBN_SELENDCANCEL = 10;

// scroll bar
inline constexpr UINT SBS_HORZ = 0;
inline constexpr UINT SBS_VERT = 1;
inline constexpr UINT SBM_SETPOS = 0xE0;
inline constexpr UINT SBM_GETPOS = 0xE1;
inline constexpr UINT SBM_SETRANGE = 0xE2;
inline constexpr UINT SBM_GETRANGE = 0xE3;
inline constexpr UINT SBM_SETRANGEREDRAW = 0xE6;

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
