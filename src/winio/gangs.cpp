// Gangs of %ga: variables of which at most one, or always one, is on.
#include <algorithm>

#include "platform/user/user.h"
#include "winio/callbacks.h"
#include "winio/codes.h"
#include "winio/report.h"

namespace tarn::winio {
namespace {

constexpr std::int32_t most_members = 0x10000;

switch_gang* make_gang(std::int32_t count, bool one_always_on) {
    auto* gang = new_record<switch_gang>();
    discard_with_window(gang, nullptr);
    gang->members = static_cast<std::int32_t**>(
        allocate_zeroed(static_cast<std::size_t>(count) * sizeof(std::int32_t*)));
    discard_with_window(gang->members, nullptr);
    gang->count = count;
    gang->one_always_on = one_always_on;
    return gang;
}

bool has_member(const switch_gang& gang, const std::int32_t* variable) {
    return std::find(gang.members, gang.members + gang.count, variable) !=
           gang.members + gang.count;
}

// The first member of `fresh` that `other` has too; null for none.
std::int32_t* shared_member(const switch_gang& fresh, const switch_gang& other) {
    for (std::int32_t i = 0; i < fresh.count; ++i)
        if (has_member(other, fresh.members[i])) return fresh.members[i];
    return nullptr;
}

// The members of both, the shared one once. Records that are done with go with the window.
switch_gang* merge_gang(const switch_gang& fresh, const switch_gang& other,
                        const std::int32_t* shared) {
    if (fresh.one_always_on != other.one_always_on)
        quillpan_error("Attempt to fuse incompatible gang sets");
    switch_gang* merged = make_gang(fresh.count + other.count, other.one_always_on);
    std::int32_t** end = std::copy(fresh.members, fresh.members + fresh.count, merged->members);
    bool left_out = false;
    for (std::int32_t i = 0; i < other.count; ++i) {
        if (other.members[i] == shared && !left_out)
            left_out = true;
        else
            *end++ = other.members[i];
    }
    merged->count = static_cast<std::int32_t>(end - merged->members);
    return merged;
}

void add_gang(fancy_window* window, switch_gang* fresh) {
    for (switch_gang** link = &window->gangs; *link; link = &(*link)->next) {
        const std::int32_t* shared = shared_member(*fresh, **link);
        if (!shared) continue;
        fresh = merge_gang(*fresh, **link, shared);
        *link = (*link)->next;
        break;
    }
    fresh->next = window->gangs;
    window->gangs = fresh;
}

// The cells of a bitmap toolbar that show the variable.
void gang_check1(const fancy_window* window, const std::int32_t* variable) {
    for (const window_control* c = window->first_control; c; c = c->next)
        if (c->type == control_type::bitmap_switch && c->variable == variable && c->hwnd)
            platform::InvalidateRect(c->hwnd, nullptr, false);
}

void switch_others_off(const fancy_window* window, const switch_gang& gang,
                       const std::int32_t* variable) {
    for (std::int32_t i = 0; i < gang.count; ++i) {
        if (gang.members[i] != variable) *gang.members[i] = 0;
        gang_check1(window, gang.members[i]);
    }
}

}  // namespace

switch_gang* find_gang(const fancy_window* window, const std::int32_t* variable) {
    for (switch_gang* gang = window->gangs; gang; gang = gang->next)
        if (has_member(*gang, variable)) return gang;
    return nullptr;
}

void gang_check(HWND handle, const std::int32_t* variable) {
    const fancy_window* window = fancy_window_from_handle(handle);
    if (!window) return;
    if (const switch_gang* gang = find_gang(window, variable)) {
        if (*variable != 0) {
            switch_others_off(window, *gang, variable);
        } else if (gang->one_always_on) {
            *const_cast<std::int32_t*>(variable) = 1;
            gang_check1(window, variable);
        }
    }
    initialise_controls(handle, false);
}

void handle_ga(code_call& call) {
    const bool one_always_on = call.grave;
    const bool from_array = call.tilde;
    call.grave = call.tilde = false;
    if (call.n < 2 || call.n > most_members) {
        quillpan_error("Missing or invalid gang specification");
        return;
    }
    std::int32_t* array = from_array ? user_int_pointer(call.arguments) : nullptr;
    if (from_array && !array) return;
    switch_gang* gang = records().passive ? nullptr : make_gang(call.n, one_always_on);
    std::int32_t count = 0;
    for (std::int32_t i = 0; i < call.n; ++i) {
        if (!from_array && call.arguments.exhausted()) {
            check_arg_present();
            break;
        }
        std::int32_t* member = from_array ? array + i : user_int_pointer(call.arguments);
        if (gang && member) gang->members[count++] = member;
    }
    if (!gang || records().check_mode) return;
    gang->count = count;
    add_gang(current_window(), gang);
}

}  // namespace tarn::winio
