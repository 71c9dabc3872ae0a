#include "platform/gdi/fontconfig.h"

#include <dlfcn.h>
#include <strings.h>

namespace tarn::platform {

namespace {

// The library's interface as far as it is used, so that its headers aren't needed.
struct FcPattern;
struct FcCharSet;
struct FcConfig;
struct FcObjectSet;
struct FcFontSet {
    int count, room;
    FcPattern** fonts;
};

struct Fontconfig {
    bool tried = false, sound = false;
    FcPattern* (*create)() = nullptr;
    void (*destroy)(FcPattern*) = nullptr;
    int (*add_string)(FcPattern*, const char*, const unsigned char*) = nullptr;
    int (*add_integer)(FcPattern*, const char*, int) = nullptr;
    int (*add_bool)(FcPattern*, const char*, int) = nullptr;
    int (*add_charset)(FcPattern*, const char*, const FcCharSet*) = nullptr;
    int (*get_string)(const FcPattern*, const char*, int, unsigned char**) = nullptr;
    int (*get_integer)(const FcPattern*, const char*, int, int*) = nullptr;
    FcCharSet* (*create_charset)() = nullptr;
    void (*destroy_charset)(FcCharSet*) = nullptr;
    int (*charset_add)(FcCharSet*, std::uint32_t) = nullptr;
    int (*substitute)(FcConfig*, FcPattern*, int) = nullptr;
    void (*default_substitute)(FcPattern*) = nullptr;
    FcPattern* (*match)(FcConfig*, FcPattern*, int*) = nullptr;
    FcFontSet* (*list)(FcConfig*, FcPattern*, FcObjectSet*) = nullptr;
    void (*destroy_fonts)(FcFontSet*) = nullptr;
    FcObjectSet* (*create_objects)() = nullptr;
    int (*add_object)(FcObjectSet*, const char*) = nullptr;
    void (*destroy_objects)(FcObjectSet*) = nullptr;
};

template <typename Function>
bool find(void* module, const char* name, Function& function) {
    function = reinterpret_cast<Function>(dlsym(module, name));
    return function != nullptr;
}

bool load(Fontconfig& fc) {
    void* module = dlopen("libfontconfig.so.1", RTLD_NOW | RTLD_LOCAL);
    if (module == nullptr) return false;
    int (*init)() = nullptr;
    return find(module, "FcInit", init) && find(module, "FcPatternCreate", fc.create) &&
           find(module, "FcPatternDestroy", fc.destroy) &&
           find(module, "FcPatternAddString", fc.add_string) &&
           find(module, "FcPatternAddInteger", fc.add_integer) &&
           find(module, "FcPatternAddBool", fc.add_bool) &&
           find(module, "FcPatternAddCharSet", fc.add_charset) &&
           find(module, "FcPatternGetString", fc.get_string) &&
           find(module, "FcPatternGetInteger", fc.get_integer) &&
           find(module, "FcCharSetCreate", fc.create_charset) &&
           find(module, "FcCharSetDestroy", fc.destroy_charset) &&
           find(module, "FcCharSetAddChar", fc.charset_add) &&
           find(module, "FcConfigSubstitute", fc.substitute) &&
           find(module, "FcDefaultSubstitute", fc.default_substitute) &&
           find(module, "FcFontMatch", fc.match) && find(module, "FcFontList", fc.list) &&
           find(module, "FcFontSetDestroy", fc.destroy_fonts) &&
           find(module, "FcObjectSetCreate", fc.create_objects) &&
           find(module, "FcObjectSetAdd", fc.add_object) &&
           find(module, "FcObjectSetDestroy", fc.destroy_objects) && init() != 0;
}

const Fontconfig* fontconfig() {
    static Fontconfig fc;
    if (!fc.tried) {
        fc.tried = true;
        fc.sound = load(fc);
    }
    return fc.sound ? &fc : nullptr;
}

const char* string_of(const Fontconfig& fc, const FcPattern* font, const char* what, int which) {
    unsigned char* value = nullptr;
    if (fc.get_string(font, what, which, &value) != 0) return nullptr;
    return reinterpret_cast<const char*>(value);
}

// The spelling of the font's own name that the wish asks for; null when it has another.
const char* matching_name(const Fontconfig& fc, const FcPattern* font, const std::string& wanted) {
    for (int i = 0; const char* name = string_of(fc, font, "family", i); ++i) {
        if (strcasecmp(name, wanted.c_str()) == 0) return name;
    }
    return nullptr;
}

FcPattern* pattern_of(const Fontconfig& fc, const FontWish& wish, const std::string& family) {
    constexpr int medium = 80, bold = 200, roman = 0, italic = 100;
    FcPattern* pattern = fc.create();
    if (pattern == nullptr) return nullptr;
    fc.add_string(pattern, "family", reinterpret_cast<const unsigned char*>(family.c_str()));
    fc.add_integer(pattern, "weight", wish.bold ? bold : medium);
    fc.add_integer(pattern, "slant", wish.italic ? italic : roman);
    fc.add_bool(pattern, "scalable", 1);
    fc.add_bool(pattern, "color", 0);  // pictures of characters aren't coverage
    if (wish.code != 0) {
        if (FcCharSet* set = fc.create_charset()) {
            fc.charset_add(set, wish.code);
            fc.add_charset(pattern, "charset", set);
            fc.destroy_charset(set);
        }
    }
    fc.substitute(nullptr, pattern, 0);
    fc.default_substitute(pattern);
    return pattern;
}

}  // namespace

bool fontconfig_match(const FontWish& wish, FontFile& file) {
    const Fontconfig* fc = fontconfig();
    if (fc == nullptr) return false;
    const std::string family(wish.family);
    FcPattern* pattern = pattern_of(*fc, wish, family);
    if (pattern == nullptr) return false;
    int result = 0;
    FcPattern* font = fc->match(nullptr, pattern, &result);
    fc->destroy(pattern);
    if (font == nullptr) return false;
    const char* path = string_of(*fc, font, "file", 0);
    const char* name =
        wish.exact_name ? matching_name(*fc, font, family) : string_of(*fc, font, "family", 0);
    const bool found = path != nullptr && name != nullptr;
    if (found) {
        file.path = path;
        file.family = name;
        if (fc->get_integer(font, "index", 0, &file.index) != 0) file.index = 0;
    }
    fc->destroy(font);
    return found;
}

std::vector<std::string> fontconfig_families() {
    std::vector<std::string> names;
    const Fontconfig* fc = fontconfig();
    if (fc == nullptr) return names;
    FcPattern* all = fc->create();
    FcObjectSet* objects = fc->create_objects();
    fc->add_object(objects, "family");
    if (FcFontSet* fonts = fc->list(nullptr, all, objects)) {
        for (int i = 0; i < fonts->count; ++i) {
            const char* name = string_of(*fc, fonts->fonts[i], "family", 0);
            if (name != nullptr) names.emplace_back(name);
        }
        fc->destroy_fonts(fonts);
    }
    fc->destroy_objects(objects);
    fc->destroy(all);
    return names;
}

}  // namespace tarn::platform
