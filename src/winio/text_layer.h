// The layer through which all text passes on its way to the platform. Each function decides the
// encoding by the same rule: an open current window's UTF-8 bit, otherwise the process-wide
// default. Without UTF-8 the `A` form is called, with it the text goes through `ustrdup` to the `W`
// form, and texts that come back the other way.
#pragma once

#include <cstdint>

#include "platform/gdi/gdi.h"
#include "platform/user/menus.h"
#include "platform/user/user.h"

namespace tarn::winio {

bool utf8_now();
std::int32_t uchrlen(unsigned char first_byte);
std::int32_t ustrnlen(const char* text, std::int32_t characters);
platform::LRESULT SendGetTextMessageAW(platform::HWND hwnd, platform::UINT message,
                                       platform::WPARAM size, char* buffer);
platform::LRESULT SendSetTextMessageAW(platform::HWND hwnd, platform::UINT message,
                                       platform::WPARAM wparam, const char* text);
bool SetWindowTextAW(platform::HWND hwnd, const char* text);
std::int32_t GetWindowTextAW(platform::HWND hwnd, char* buffer, std::int32_t size);
std::int32_t DrawTextAW(platform::HDC dc, const char* text, std::int32_t length,
                        platform::RECT& rect, std::uint32_t format);
bool TextOutAW(platform::HDC dc, std::int32_t x, std::int32_t y, const char* text,
               std::int32_t length);
platform::HWND CreateWindowExAW(platform::DWORD ex_style, const char* class_name, const char* title,
                                platform::DWORD style, std::int32_t x, std::int32_t y,
                                std::int32_t width, std::int32_t height, platform::HWND parent,
                                platform::HMENU menu_or_id, void* parameter = nullptr);
bool AppendMenuAW(platform::HMENU menu, platform::UINT flags, std::uintptr_t id, const char* text);
bool InsertMenuAW(platform::HMENU menu, platform::UINT position, platform::UINT flags,
                  std::uintptr_t id, const char* text);
bool GetTextExtentPoint32AW(platform::HDC dc, const char* text, std::int32_t length,
                            platform::SIZE& size);
bool GetTextExtentPointAW(platform::HDC dc, const char* text, std::int32_t length,
                          platform::SIZE& size);
bool copy_text_to_clipboardAW(const char* text);

}  // namespace tarn::winio
