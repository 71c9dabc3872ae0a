// The lists of %ls, %ms and %el: the program's strings, in step with what the box shows.
#include <algorithm>
#include <cstring>
#include <string>

#include "platform/controls/controls.h"
#include "platform/user/user.h"
#include "winio/procedures.h"
#include "winio/report.h"
#include "winio/text_layer.h"
#include "winio/update.h"

namespace tarn::winio {
namespace {

using namespace platform;

constexpr std::size_t longest_item = 512;

// A list as the program keeps it: a table of texts that ends with null, or in Fortran elements of
// one length, of which blank ones at the end don't count.
class string_list {
  public:
    explicit string_list(const window_control* control)
        : first_(reinterpret_cast<const char*>(control->data)),
          fortran_(control->flags.fortran_string),
          length_(static_cast<std::size_t>(std::max(control->string_length, 0))) {
        if (!first_) return;
        if (fortran_)
            count_ = shown_elements(control->data2);
        else
            while (table()[count_]) ++count_;
    }
    std::int32_t size() const { return count_; }
    std::string item(std::int32_t index) const {
        if (!fortran_) return table()[index];
        std::size_t used = length_;
        const char* element = first_ + static_cast<std::size_t>(index) * length_;
        while (used > 0 && element[used - 1] == ' ') --used;
        return {element, used};
    }

  private:
    const char* const* table() const { return reinterpret_cast<const char* const*>(first_); }
    std::int32_t shown_elements(word count) const {
        if (length_ == 0) return 0;
        std::size_t bytes = static_cast<std::size_t>(std::max<word>(count, 0)) * length_;
        while (bytes > 0 && first_[bytes - 1] == ' ') --bytes;
        return static_cast<std::int32_t>((bytes + length_ - 1) / length_);
    }

    const char* first_;
    bool fortran_;
    std::size_t length_;
    std::int32_t count_ = 0;
};

// The item's text, or nothing where there is none at that place.
bool item_text(HWND box, std::int32_t place, std::string& text) {
    const LRESULT length = SendMessageA(box, LB_GETTEXTLEN, static_cast<WPARAM>(place), 0);
    if (length < 0) return false;
    text.resize(static_cast<std::size_t>(length) * 4 + 1);
    SendGetTextMessageAW(box, LB_GETTEXT, static_cast<WPARAM>(place), text.data());
    text.resize(std::strlen(text.c_str()));
    return true;
}

// Touches as little as it can: what stands already stays, so that the box neither flickers nor
// scrolls. One element taken out of the program's list costs one deletion.
void set_item(HWND box, const std::string& wanted, std::int32_t place) {
    if (wanted.size() > longest_item) quillpan_error("%%LS item has more than 512 characters");
    std::string there;
    if (item_text(box, place, there)) {
        if (there == wanted) return;
        SendMessageA(box, LB_DELETESTRING, static_cast<WPARAM>(place), 0);
        if (item_text(box, place, there) && there == wanted) return;
    }
    SendSetTextMessageAW(box, LB_INSERTSTRING, static_cast<WPARAM>(place), wanted.c_str());
}

void delete_from(HWND box, std::int32_t place) {
    while (SendMessageA(box, LB_DELETESTRING, static_cast<WPARAM>(place), 0) >= 0) {
    }
}

void fill_list_box(const window_control* control) {
    const string_list list(control);
    for (std::int32_t i = 0; i < list.size(); ++i) set_item(control->hwnd, list.item(i), i);
    delete_from(control->hwnd, list.size());
}

void fill_combo_box(const window_control* control) {
    const string_list list(control);
    SendMessageA(control->hwnd, CB_RESETCONTENT, 0, 0);
    for (std::int32_t i = 0; i < list.size(); ++i)
        SendSetTextMessageAW(control->hwnd, CB_ADDSTRING, 0, list.item(i).c_str());
}

bool program_fills(const window_control* control, bool first) {
    return control->font_request == 0 && (first || !control->flags.constant_data);
}

void select_items(const window_control* control) {
    const auto* selected = static_cast<const std::int32_t*>(control->variable);
    const auto count = static_cast<std::int32_t>(SendMessageA(control->hwnd, LB_GETCOUNT, 0, 0));
    for (std::int32_t i = 0; i < count; ++i)
        SendMessageA(control->hwnd, LB_SETSEL, selected[i] != 0, i);
}

}  // namespace

void show_list(window_control* control, bool first) {
    const bool combo = control->type == control_type::combo_box;
    if (program_fills(control, first)) {
        if (combo)
            fill_combo_box(control);
        else
            fill_list_box(control);
    }
    auto* variable = static_cast<std::int32_t*>(control->variable);
    if (!variable) return;
    if (control->type == control_type::multi_select) return select_items(control);
    if (combo && *variable == 0) return;
    SendMessageA(control->hwnd, combo ? CB_SETCURSEL : LB_SETCURSEL,
                 static_cast<WPARAM>(static_cast<std::intptr_t>(*variable) - 1), 0);
}

// An update that came from the field itself leaves the list, in which the user may be looking.
void show_edit_list(window_control* control, bool first) {
    if (!control->flags.update_source && program_fills(control, first)) fill_combo_box(control);
    const auto* variable = static_cast<const char*>(control->variable);
    if (!variable) return;
    std::string shown;
    if (control->window->flags.fortran) {
        shown.assign(variable, static_cast<std::size_t>(std::max(control->high, 0.0)));
        while (!shown.empty() && shown.back() == ' ') shown.pop_back();
    } else {
        shown = variable;
    }
    SetWindowTextAW(control->hwnd, shown.c_str());
}

}  // namespace tarn::winio
