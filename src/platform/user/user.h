// Windows, their messages and their input, under the platform's names. One top-level window has
// one surface; its children are clip regions in it. All on the thread that made the first window.
//
// The order of the queue: sent, posted, input, paint, timer. Paint, timer, pointer moves and
// configures coalesce. Output only marks; painting happens when the queue is otherwise empty.
// A class's procedure gets the texts of its messages as they were sent: UTF-8 for the platform's
// own classes (SendMessageA converts from the code page, SendMessageW from UTF-16, for the messages
// that carry text), as sent for classes of the rooms above.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/base/constants.h"
#include "platform/base/types.h"
#include "platform/gdi/gdi.h"

namespace tarn::platform {

// ---- Classes -----------------------------------------------------------------------------------
struct WNDCLASS {
    UINT style = 0;
    WNDPROC lpfnWndProc = nullptr;
    std::int32_t cbClsExtra = 0, cbWndExtra = 0;
    HICON hIcon{};
    HCURSOR hCursor{};
    HBRUSH hbrBackground{};  // 0: the window erases itself
    std::string_view lpszClassName;
    bool utf8 = false;  // the procedure speaks UTF-8 (the platform's own classes)
};
// Names are compared without case. False: already there, or too many.
bool RegisterClassA(const WNDCLASS& description);
bool UnregisterClassA(const char* name);
bool GetClassInfoA(const char* name, WNDCLASS& description);
std::int32_t GetClassNameA(HWND hwnd, char* buffer, std::int32_t size);

// ---- Windows -----------------------------------------------------------------------------------
struct CREATESTRUCT {
    void* lpCreateParams = nullptr;
    HMENU hMenu{};  // a child: its identifier
    HWND hwndParent{};
    std::int32_t cy = 0, cx = 0, y = 0, x = 0;
    DWORD style = 0;
    const char* lpszName = nullptr;
    const char* lpszClass = nullptr;
    DWORD dwExStyle = 0;
};
HWND CreateWindowExA(DWORD ex_style, const char* class_name, const char* title, DWORD style,
                     std::int32_t x, std::int32_t y, std::int32_t width, std::int32_t height,
                     HWND parent, HMENU menu_or_id, void* parameter = nullptr);
HWND CreateWindowExW(DWORD ex_style, const char16_t* class_name, const char16_t* title, DWORD style,
                     std::int32_t x, std::int32_t y, std::int32_t width, std::int32_t height,
                     HWND parent, HMENU menu_or_id, void* parameter = nullptr);
bool DestroyWindow(HWND hwnd);
bool IsWindow(HWND hwnd);
bool IsWindowVisible(HWND hwnd);
bool IsWindowEnabled(HWND hwnd);
bool IsIconic(HWND hwnd);
bool IsZoomed(HWND hwnd);
bool IsChild(HWND parent, HWND hwnd);
bool ShowWindow(HWND hwnd, std::int32_t how);
bool EnableWindow(HWND hwnd, bool enabled);
bool MoveWindow(HWND hwnd, std::int32_t x, std::int32_t y, std::int32_t width, std::int32_t height,
                bool repaint);
bool SetWindowPos(HWND hwnd, HWND after, std::int32_t x, std::int32_t y, std::int32_t width,
                  std::int32_t height, UINT flags);
bool BringWindowToTop(HWND hwnd);
bool GetWindowRect(HWND hwnd, RECT& rect);  // screen; the manager's frame is not in it
bool GetClientRect(HWND hwnd, RECT& rect);
bool ClientToScreen(HWND hwnd, POINT& point);
bool ScreenToClient(HWND hwnd, POINT& point);
std::int32_t MapWindowPoints(HWND from, HWND to, POINT* points, std::int32_t count);
HWND GetParent(HWND hwnd);  // parent of a child, owner of a top-level
HWND SetParent(HWND hwnd, HWND parent);
HWND GetWindow(HWND hwnd, UINT which);
HWND GetTopWindow(HWND parent);
HWND GetDesktopWindow();
HWND FindWindowA(const char* class_name, const char* title);  // this process's top-levels
HWND WindowFromPoint(POINT screen);
HWND ChildWindowFromPoint(HWND parent, POINT client);
HWND GetDlgItem(HWND parent, std::int32_t id);
std::int32_t GetDlgCtrlID(HWND hwnd);
LPARAM GetWindowLong(HWND hwnd, std::int32_t index);  // GWL_..., or an offset into the extra bytes
LPARAM SetWindowLong(HWND hwnd, std::int32_t index, LPARAM value);
bool SetWindowTextA(HWND hwnd, const char* text);
bool SetWindowTextW(HWND hwnd, const char16_t* text);
std::int32_t GetWindowTextA(HWND hwnd, char* buffer, std::int32_t size);
std::int32_t GetWindowTextW(HWND hwnd, char16_t* buffer, std::int32_t size);
std::int32_t GetWindowTextLengthA(HWND hwnd);
// The same in UTF-8, for the platform's own rooms.
std::string window_text(HWND hwnd);
bool set_window_text(HWND hwnd, std::string_view utf8);
std::int32_t GetSystemMetrics(std::int32_t which);
std::uint32_t GetDialogBaseUnits();  // 8 and 16, whatever the user's font
std::int32_t wheel_scroll_lines();   // SPI_GETWHEELSCROLLLINES
// Windows in creation order: the whole tree below `parent`, 0 for the top-levels.
HWND first_window();
HWND next_top_level(HWND hwnd);

// ---- Painting ----------------------------------------------------------------------------------
struct PAINTSTRUCT {
    HDC hdc{};
    bool fErase = false;
    RECT rcPaint;
};
HDC BeginPaint(HWND hwnd, PAINTSTRUCT& paint);
bool EndPaint(HWND hwnd, const PAINTSTRUCT& paint);
HDC GetDC(HWND hwnd);        // client; 0 window: a context for measuring
HDC GetWindowDC(HWND hwnd);  // with its frame
std::int32_t ReleaseDC(HWND hwnd, HDC dc);
bool InvalidateRect(HWND hwnd, const RECT* rect, bool erase);
bool ValidateRect(HWND hwnd, const RECT* rect);
bool UpdateWindow(HWND hwnd);  // paints now what is marked
bool GetUpdateRect(HWND hwnd, RECT& rect);
bool RedrawWindow(HWND hwnd);  // all of it and its children, now

// ---- For a program that may compute long before it looks at its messages again ------------------
// Whether what changes now is shown at once: yes, but for a flood, which is every two milliseconds.
bool may_show_now();
void present_now();  // what was drawn
void paint_now();    // what is marked, if it may be shown
// A top-level window that was just shown is on the screen, which takes a manager a while and drops
// what is shown before; half a second at most.
void await_first_sight(HWND hwnd);

// ---- Messages ----------------------------------------------------------------------------------
LRESULT SendMessageA(HWND hwnd, UINT message, WPARAM wparam, LPARAM lparam);
LRESULT SendMessageW(HWND hwnd, UINT message, WPARAM wparam, LPARAM lparam);
LRESULT send_message(HWND hwnd, UINT message, WPARAM wparam, LPARAM lparam);  // texts in UTF-8
// `message` is posted when the file can be read, and again only after WatchAgain.
void WatchFile(HWND hwnd, int file, UINT message);
void WatchAgain(int file);
void UnwatchFile(int file);
bool PostMessageA(HWND hwnd, UINT message, WPARAM wparam, LPARAM lparam);
void PostQuitMessage(std::int32_t code);
bool PeekMessageA(MSG& message, HWND hwnd, UINT first, UINT last, UINT remove);
bool WaitMessage();  // returns when a message or a timer is there
bool TranslateMessage(const MSG& message);
LRESULT DispatchMessageA(const MSG& message);
LRESULT DefWindowProcA(HWND hwnd, UINT message, WPARAM wparam, LPARAM lparam);
LRESULT DefWindowProcW(HWND hwnd, UINT message, WPARAM wparam, LPARAM lparam);
LRESULT CallWindowProcA(WNDPROC procedure, HWND hwnd, UINT message, WPARAM wparam, LPARAM lparam);
bool IsDialogMessageA(HWND dialog, MSG& message);
// Runs messages, timers and paints until `done(context)`, or until `owner`'s window (0: none) dies
// or the program is told to end (the answer is then false). Menus, drags and dialogs wait here.
// `take` (null: none) sees each message first; one that it takes goes no further.
bool modal_loop(HWND owner, bool (*take)(MSG&, void*), bool (*done)(void*), void* context);
// What a wait that can never end does on a headless display (no script, no timers): set by the
// room that knows how the process ends. It is told what was waited for.
extern void (*unanswered_wait)(const char* what);
// Nothing is queued; armed timers aside.
bool queue_is_idle();
// Plays a script. Asked when the queue is idle: by a wait (`waiting`), or by a program that polls.
// It puts events in and answers 0, or tells in how many milliseconds it wants to be asked again, or
// -1: it has nothing left.
extern std::int32_t (*script_step)(bool waiting);

std::uintptr_t SetTimer(HWND hwnd, std::uintptr_t id, UINT milliseconds, TIMERPROC procedure);
bool KillTimer(HWND hwnd, std::uintptr_t id);
DWORD GetTickCount();

// ---- Input -------------------------------------------------------------------------------------
HWND SetFocus(HWND hwnd);
HWND GetFocus();
HWND GetActiveWindow();
HWND SetActiveWindow(HWND hwnd);
HWND GetForegroundWindow();
HWND SetCapture(HWND hwnd);
bool ReleaseCapture();
HWND GetCapture();
std::int16_t GetKeyState(std::int32_t key);
std::int16_t GetAsyncKeyState(std::int32_t key);
bool GetCursorPos(POINT& screen);
bool SetCursorPos(std::int32_t x, std::int32_t y);
HCURSOR SetCursor(HCURSOR cursor);
HCURSOR LoadSystemCursor(std::int32_t which);  // IDC_...
HCURSOR CreateCursorFromPixels(std::int32_t width, std::int32_t height, const std::uint32_t* pixels,
                               POINT hot);
bool DestroyCursor(HCURSOR cursor);
std::int32_t ShowCursor(bool show);
bool CreateCaret(HWND hwnd, std::int32_t width, std::int32_t height);
void KeepInputMethodsOut();  // of this caret's place: passwords
bool DestroyCaret();
bool SetCaretPos(std::int32_t x, std::int32_t y);
bool ShowCaret(HWND hwnd);
bool HideCaret(HWND hwnd);
bool MessageBeep(UINT kind);
HWND GetNextDlgTabItem(HWND dialog, HWND from, bool previous);
HWND GetNextDlgGroupItem(HWND dialog, HWND from, bool previous);
// The focus came by the keyboard: controls show their ring.
bool keyboard_focus_visible();
enum : std::int32_t {
    IDC_ARROW = 32512,
    IDC_IBEAM = 32513,
    IDC_WAIT = 32514,
    IDC_CROSS = 32515,
    IDC_UPARROW = 32516,
    IDC_SIZENWSE = 32642,
    IDC_SIZENESW = 32643,
    IDC_SIZEWE = 32644,
    IDC_SIZENS = 32645,
    IDC_SIZEALL = 32646,
    IDC_NO = 32648,
    IDC_HAND = 32649,
    IDC_HELP = 32651,
};

// ---- Scroll bars of windows
// ----------------------------------------------------------------------
struct SCROLLINFO {
    UINT fMask = 0;
    std::int32_t nMin = 0, nMax = 0;
    UINT nPage = 0;
    std::int32_t nPos = 0, nTrackPos = 0;
};
std::int32_t SetScrollInfo(HWND hwnd, std::int32_t bar, const SCROLLINFO& info, bool redraw);
bool GetScrollInfo(HWND hwnd, std::int32_t bar, SCROLLINFO& info);
std::int32_t SetScrollPos(HWND hwnd, std::int32_t bar, std::int32_t position, bool redraw);
std::int32_t GetScrollPos(HWND hwnd, std::int32_t bar);
bool SetScrollRange(HWND hwnd, std::int32_t bar, std::int32_t low, std::int32_t high, bool redraw);
bool ShowScrollBar(HWND hwnd, std::int32_t bar, bool show);

// ---- Clipboard
// -----------------------------------------------------------------------------------
bool OpenClipboard(HWND hwnd);
bool CloseClipboard();
bool EmptyClipboard();
bool IsClipboardFormatAvailable(UINT format);
// Text, UTF-8 here with LF; line ends become CR LF in what a program reads through CF_TEXT.
bool set_clipboard_text(std::string_view utf8);
bool clipboard_text(std::string& utf8);
bool set_clipboard_bitmap(HBITMAP bitmap);
// The form in which a program reads text: line ends become CR LF.
std::string with_cr_lf(std::string_view text);
// PRIMARY: what was selected last, pasted by the middle button.
void set_primary_text(std::string_view utf8);
bool primary_text(std::string& utf8);

// ---- Dropped files
// -------------------------------------------------------------------------------
void DragAcceptFiles(HWND hwnd, bool accept);
using HDROP = std::intptr_t;
std::int32_t DragQueryFileA(HDROP drop, std::uint32_t which, char* buffer, std::int32_t size);
bool DragQueryPoint(HDROP drop, POINT& client);
void DragFinish(HDROP drop);

// ---- Drawing and measuring by the owner
// -----------------------------------------------------------
struct MEASUREITEMSTRUCT {
    UINT CtlType = 0, CtlID = 0, itemID = 0, itemWidth = 0, itemHeight = 0;
    std::uintptr_t itemData = 0;
};
struct DRAWITEMSTRUCT {
    UINT CtlType = 0, CtlID = 0, itemID = 0, itemAction = 0, itemState = 0;
    HWND hwndItem{};
    HDC hDC{};
    RECT rcItem;
    std::uintptr_t itemData = 0;
};
enum : UINT {
    ODT_MENU = 1,
    ODT_LISTBOX = 2,
    ODT_COMBOBOX = 3,
    ODT_BUTTON = 4,
    ODS_SELECTED = 1,
    ODS_GRAYED = 2,
    ODS_DISABLED = 4,
    ODS_CHECKED = 8,
    ODS_FOCUS = 0x10,
    ODS_DEFAULT = 0x20,
    ODA_DRAWENTIRE = 1,
};
struct HELPINFO {  // of WM_HELP: F1 was pressed
    std::int32_t iContextType = 0;
    std::int32_t iCtrlId = 0;
    HWND hItemHandle{};
    POINT MousePos;
};
struct NMHDR {
    HWND hwndFrom{};
    std::uintptr_t idFrom = 0;
    std::int32_t code = 0;
};
struct WINDOWPOS {
    HWND hwnd{}, hwndInsertAfter{};
    std::int32_t x = 0, y = 0, cx = 0, cy = 0;
    UINT flags = 0;
};
struct MINMAXINFO {
    POINT ptReserved, ptMaxSize, ptMaxPosition, ptMinTrackSize, ptMaxTrackSize;
};

// ---- For the accessibility tree, scripts and tests
// ------------------------------------------------- Called when a top-level is first idle after it
// was shown, and just before it goes.
extern void (*window_settled)(HWND top_level);
extern void (*window_going)(HWND top_level);
// The surface of a top-level, painted up to date; null pixels for none.
const Surface* window_surface(HWND top_level);
// Where that picture is on the screen, logical: what the display's points of it count from.
bool window_surface_rect(HWND top_level, RECT& screen);

}  // namespace tarn::platform
