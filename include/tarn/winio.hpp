// Format windows from C++: `tarn::winio` is `__winio` with its argument types checked by the
// compiler. It makes the type descriptor of the call out of them, so that the library also checks
// each against the code that reads it, and names the argument when they don't go together.
//
//     #include "tarn/winio.hpp"
//
//     int n = 3;
//     double x = 1.5;
//     int last = tarn::winio("%ca[Numbers]%rd\n%rf\n%^bt[Add]%bt[OK]", &n, &x, [] {
//         n_changed();
//         return 1;
//     });
//
// What goes where (see tarn/winio.h for the codes):
//   - a variable that a control shows: its address, of an int, a long long or long, a double, or
//     char[] for text; the variable must live as long as the window;
//   - a value: an int, a double, a text;
//   - a call-back: a function of no arguments with an int result, or a lambda without captures;
//   - the text of a standard action: a text ("EXIT").
// A float, a short, a bool or an unsigned variable can't be bound; the compiler says so.
#ifndef TARN_WINIO_HPP
#define TARN_WINIO_HPP

#include <cstdint>
#include <string>
#include <type_traits>

#include "tarn/winio.h"

namespace tarn {

using call_back = int (*)();

namespace detail {

template <class T>
inline constexpr bool never = false;

// One token of the descriptor, and the argument as the library takes it.
struct token {
    char text[4];
};

template <class T>
constexpr token token_of() {
    using plain = std::remove_cv_t<T>;
    if constexpr (std::is_same_v<plain, call_back>) {
        return {"*E"};
    } else if constexpr (std::is_null_pointer_v<plain>) {
        return {"V"};
    } else if constexpr (std::is_pointer_v<plain>) {
        using target = std::remove_cv_t<std::remove_pointer_t<plain>>;
        if constexpr (std::is_same_v<target, char>) {
            return {"*C"};
        } else if constexpr (std::is_same_v<target, double>) {
            return {"*F"};
        } else if constexpr (std::is_same_v<target, int>) {
            return {"*I"};
        } else if constexpr (std::is_integral_v<target> && std::is_signed_v<target> &&
                             sizeof(target) == 8) {
            return {"*J"};
        } else if constexpr (std::is_pointer_v<target>) {
            using inner = std::remove_cv_t<std::remove_pointer_t<target>>;
            return std::is_same_v<inner, char> ? token{"**C"} : token{"**S"};
        } else if constexpr (std::is_class_v<target> || std::is_void_v<target>) {
            return {"*S"};
        } else {
            static_assert(never<T>, "winio binds int, long long, double and char variables only");
        }
    } else if constexpr (std::is_floating_point_v<plain>) {
        return {"F"};
    } else if constexpr (std::is_same_v<plain, char>) {
        return {"C"};
    } else if constexpr (std::is_integral_v<plain> || std::is_enum_v<plain>) {
        return sizeof(plain) == 8 ? token{"J"} : token{"I"};
    } else {
        static_assert(never<T>, "winio takes addresses of variables, numbers, texts and call-backs");
    }
}

// Functions and lambdas without captures become function pointers, arrays addresses, and numbers
// the types that an open argument list carries.
template <class T>
constexpr auto as_passed(T&& value) {
    using plain = std::decay_t<T>;
    if constexpr (std::is_null_pointer_v<plain>) {
        return static_cast<void*>(nullptr);
    } else if constexpr (std::is_convertible_v<plain, call_back> && !std::is_integral_v<plain>) {
        return static_cast<call_back>(value);
    } else if constexpr (std::is_class_v<plain> && requires { value.c_str(); }) {
        return value.c_str();
    } else if constexpr (std::is_floating_point_v<plain>) {
        return static_cast<double>(value);
    } else if constexpr ((std::is_integral_v<plain> || std::is_enum_v<plain>)&&sizeof(plain) < 8) {
        if constexpr (std::is_same_v<plain, char>)
            return value;
        else
            return static_cast<int>(value);
    } else {
        return static_cast<plain>(value);
    }
}

template <class T>
using passed = decltype(as_passed(std::declval<T>()));

// The whole descriptor, made by the compiler; its first token is the format's.
template <class... Arguments>
struct descriptor {
    char text[3 + 3 * sizeof...(Arguments)] = {'*', 'C'};
    constexpr descriptor() {
        std::size_t length = 2;
        const auto add = [&](token next) {
            for (const char* at = next.text; *at != 0; ++at) text[length++] = *at;
        };
        (add(token_of<Arguments>()), ...);
        text[length] = 0;
    }
};

}  // namespace detail

/// Adds to the window that is being built, or begins one; without a trailing `&` the window opens,
/// and the result is the value with which it closed.
template <class... Arguments>
int winio(const char* format, Arguments&&... arguments) {
    static constexpr detail::descriptor<detail::passed<Arguments>...> types;
    return __winio__(types.text, format, detail::as_passed(static_cast<Arguments&&>(arguments))...);
}

/// Tells the library that the program has changed a variable: what shows it follows.
template <class Variable>
void window_update(Variable& variable) {
    __window_update(const_cast<std::remove_cv_t<Variable>*>(&variable));
}

}  // namespace tarn

#endif
