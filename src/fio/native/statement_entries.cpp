// The entries of statements: packed and per-item openings, items, and ends.
//
// The families are spelled by the lists below; each entry is one call of a typed routine.
#include <cstdarg>
#include <mutex>

#include "fio/native/statement.h"
#include "frame/link_name.h"

namespace tarn::fio::native {
namespace {

using Code = std::uint32_t;
using Count = std::int32_t;

// ---- Items ----

template <int size, auto body>
bool move_item(void* item, const Count* count) {
    current().item_size = size;
    return body(item, *count);
}

template <int size, auto body>
void packed_item(void* item, const Count* count) {
    if (!items_are_ignored()) conclude(move_item<size, body>(item, count));
}

template <auto body, typename Text>
void packed_text(Text* item, const Count* count, std::ptrdiff_t length) {
    if (!items_are_ignored()) conclude(body(item, *count, length));
}

// The per-item form holds the critical section while it works, and never when it leaves.
template <typename Work>
void in_critical_section(Work work) {
    bool go_on = true;
    {
        const std::lock_guard<std::recursive_mutex> guard(state().critical_section);
        if (!items_are_ignored()) go_on = work();
    }
    conclude(go_on);
}

template <int size, auto body>
void single_item(void* item, const Count* count) {
    in_critical_section([=] { return move_item<size, body>(item, count); });
}

template <auto body, typename Text>
void single_text(Text* item, const Count* count, std::ptrdiff_t length) {
    in_critical_section([=] { return body(item, *count, length); });
}

// A size of 1 tells a CHARACTER item; one-byte numbers give theirs with a sign.
template <int size>
void single_unformatted(void* item, const Count* count) {
    const std::lock_guard<std::recursive_mutex> guard(state().critical_section);
    transfer_unformatted(item, *count, size == 1 ? -1 : size, 0);
}

void single_unformatted_text(void* item, const Count* count, std::ptrdiff_t length) {
    const std::lock_guard<std::recursive_mutex> guard(state().critical_section);
    transfer_unformatted(item, *count, 1, length);
}

}  // namespace
}  // namespace tarn::fio::native

using namespace tarn::fio::native;

// X(name, engine, size of the item or of one part of it, size in storage)
#define NUMERIC_ITEMS(X) \
    X(I1, I, 1, 1)       \
    X(I2, I, 2, 2)       \
    X(I4, I, 4, 4)       \
    X(I8, I, 8, 8)       \
    X(L1, L, 1, 1)       \
    X(L2, L, 2, 2)       \
    X(L4, L, 4, 4)       \
    X(R4, R, 4, 4)       \
    X(D8, R, 8, 8)       \
    X(RX, R, 10, 16)     \
    X(C8, C, 4, 8)       \
    X(CD, C, 8, 16)      \
    X(CX, C, 10, 32)

#define FORMATTED_ITEM(entry, link, way, engine, size, form)                           \
    extern "C" TARN_EXPORT void entry(void* item, const Count* count) LINK_NAME(link); \
    extern "C" void entry(void* item, const Count* count) {                            \
        form##_item<size, engine##_##way##_main>(item, count);                         \
    }
#define UNFORMATTED_ITEM(entry, link, storage)                                         \
    extern "C" TARN_EXPORT void entry(void* item, const Count* count) LINK_NAME(link); \
    extern "C" void entry(void* item, const Count* count) {                            \
        single_unformatted<storage>(item, count);                                      \
    }

#define ITEM_ENTRIES(name, engine, size, storage)                                 \
    FORMATTED_ITEM(name##_h_RSF, #name "#RSF", RSF, engine, size, packed)         \
    FORMATTED_ITEM(name##_h_WSF, #name "#WSF", WSF, engine, size, packed)         \
    FORMATTED_ITEM(WrSeqFrm_##name, "_WrSeqFrm" #name, WSF, engine, size, single) \
    FORMATTED_ITEM(WrDirFrm_##name, "_WrDirFrm" #name, WSF, engine, size, single) \
    FORMATTED_ITEM(RdSeqFrm_##name, "_RdSeqFrm" #name, RSF, engine, size, single) \
    FORMATTED_ITEM(RdDirFrm_##name, "_RdDirFrm" #name, RSF, engine, size, single) \
    UNFORMATTED_ITEM(WrSeqUnf_##name, "_WrSeqUnf" #name, storage)                 \
    UNFORMATTED_ITEM(WrDirUnf_##name, "_WrDirUnf" #name, storage)                 \
    UNFORMATTED_ITEM(RdSeqUnf_##name, "_RdSeqUnf" #name, storage)                 \
    UNFORMATTED_ITEM(RdDirUnf_##name, "_RdDirUnf" #name, storage)
NUMERIC_ITEMS(ITEM_ENTRIES)

#define TEXT_ITEM(entry, link, type, call)                                                   \
    extern "C" TARN_EXPORT void entry(type* item, const Count* count, std::ptrdiff_t length) \
        LINK_NAME(link);                                                                     \
    extern "C" void entry(type* item, const Count* count, std::ptrdiff_t length) {           \
        call(item, count, length);                                                           \
    }
TEXT_ITEM(CH_h_RSF, "CH#RSF", char, packed_text<CH__RSF>)
TEXT_ITEM(CH_h_WSF, "CH#WSF", const char, packed_text<CH__WSF>)
TEXT_ITEM(WrSeqFrm_CH, "_WrSeqFrmCH", const char, single_text<CH__WSF>)
TEXT_ITEM(WrDirFrm_CH, "_WrDirFrmCH", const char, single_text<CH__WSF>)
TEXT_ITEM(RdSeqFrm_CH, "_RdSeqFrmCH", char, single_text<CH__RSF>)
TEXT_ITEM(RdDirFrm_CH, "_RdDirFrmCH", char, single_text<CH__RSF>)
TEXT_ITEM(WrSeqUnf_CH, "_WrSeqUnfCH", void, single_unformatted_text)
TEXT_ITEM(WrDirUnf_CH, "_WrDirUnfCH", void, single_unformatted_text)
TEXT_ITEM(RdSeqUnf_CH, "_RdSeqUnfCH", void, single_unformatted_text)
TEXT_ITEM(RdDirUnf_CH, "_RdDirUnfCH", void, single_unformatted_text)

extern "C" TARN_EXPORT void XSUX_h(void* item, const Count* count, const std::int16_t* size,
                                   std::ptrdiff_t length) LINK_NAME("XSUX#");
extern "C" void XSUX_h(void* item, const Count* count, const std::int16_t* size,
                       std::ptrdiff_t length) {
    transfer_unformatted(item, *count, *size, length);
}

// ---- Packed openings ----

#define PACKED_OPENING(entry, link, action)                                            \
    extern "C" TARN_EXPORT void entry(const std::int16_t* count, ...) LINK_NAME(link); \
    extern "C" void entry(const std::int16_t* count, ...) {                            \
        va_list words;                                                                 \
        va_start(words, count);                                                        \
        IOSTART__(ActionCode::action, count, words, __builtin_return_address(0));      \
        va_end(words);                                                                 \
    }
PACKED_OPENING(RSF1_hh, "RSF1##", read_formatted)
PACKED_OPENING(WSF1_hh, "WSF1##", write_formatted)
PACKED_OPENING(RDF1_hh, "RDF1##", read_direct_formatted)
PACKED_OPENING(WDF1_hh, "WDF1##", write_direct_formatted)
PACKED_OPENING(RSU1_hh, "RSU1##", read_unformatted)
PACKED_OPENING(WSU1_hh, "WSU1##", write_unformatted)
PACKED_OPENING(RDU1_hh, "RDU1##", read_direct_unformatted)
PACKED_OPENING(WDU1_hh, "WDU1##", write_direct_unformatted)
PACKED_OPENING(RNML_hh, "RNML##", read_namelist)
PACKED_OPENING(WNML_hh, "WNML##", write_namelist)
PACKED_OPENING(OPEN_hh, "OPEN##", open)
PACKED_OPENING(CLOS_hh, "CLOS##", close)
PACKED_OPENING(FLUSH_hh, "FLUSH##", flush)
PACKED_OPENING(INQR_hh, "INQR##", inquire)
PACKED_OPENING(ENDF_hh, "ENDF##", endfile)
PACKED_OPENING(RWIN_hh, "RWIN##", rewind)
PACKED_OPENING(BACK_hh, "BACK##", backspace)

// ---- Specifier calls of the per-item form ----

#define SPECIFIER_CALL(name, action)                                                      \
    extern "C" TARN_EXPORT void spec_##name(Code code, void* value) LINK_NAME("_" #name); \
    extern "C" void spec_##name(Code code, void* value) {                                 \
        parseEntryCode(code, value, -1, ActionCode::action);                              \
    }
#define TEXT_SPECIFIER_CALL(name, action)                                                     \
    extern "C" TARN_EXPORT void spec_##name##C(Code code, void* value, std::ptrdiff_t length) \
        LINK_NAME("_" #name "C");                                                             \
    extern "C" void spec_##name##C(Code code, void* value, std::ptrdiff_t length) {           \
        parseEntryCode(code, value, length, ActionCode::action);                              \
    }
#define SPECIFIER_CALLS(name, action) SPECIFIER_CALL(name, action) TEXT_SPECIFIER_CALL(name, action)
SPECIFIER_CALLS(Open, open)
SPECIFIER_CALLS(Close, close)
SPECIFIER_CALLS(Inquire, inquire)
SPECIFIER_CALL(BackSpace, backspace)
SPECIFIER_CALL(Rewind, rewind)
SPECIFIER_CALL(EndFile, endfile)
SPECIFIER_CALLS(IniWrSeqFrm, write_formatted)
SPECIFIER_CALLS(IniWrDirFrm, write_direct_formatted)
SPECIFIER_CALLS(IniWrSeqUnf, write_unformatted)
SPECIFIER_CALLS(IniWrDirUnf, write_direct_unformatted)
SPECIFIER_CALLS(IniRdSeqFrm, read_formatted)
SPECIFIER_CALLS(IniRdDirFrm, read_direct_formatted)
SPECIFIER_CALLS(IniRdSeqUnf, read_unformatted)
SPECIFIER_CALLS(IniRdDirUnf, read_direct_unformatted)
SPECIFIER_CALL(IniWrNml, write_namelist)
SPECIFIER_CALL(IniRdNml, read_namelist)

// ---- Ends ----

#define END_CALL(entry, link, call)                      \
    extern "C" TARN_EXPORT void entry() LINK_NAME(link); \
    extern "C" void entry() {                            \
        call;                                            \
    }
END_CALL(WSF2_h, "WSF2#", end_formatted_statement())
END_CALL(EndWrSeqFrm, "_EndWrSeqFrm", end_formatted_statement())
END_CALL(EndWrDirFrm, "_EndWrDirFrm", end_formatted_statement())
END_CALL(EndRdSeqFrm, "_EndRdSeqFrm", end_formatted_statement())
END_CALL(EndRdDirFrm, "_EndRdDirFrm", end_formatted_statement())
END_CALL(END_RU_h, "END_RU#", end_unformatted_read())
END_CALL(EndRdSeqUnf, "_EndRdSeqUnf", end_unformatted_read())
END_CALL(EndRdDirUnf, "_EndRdDirUnf", end_unformatted_read())
END_CALL(WSU2_h, "WSU2#", end_unformatted_write(false))
END_CALL(EndWrSeqUnf, "_EndWrSeqUnf", end_unformatted_write(false))
END_CALL(WDU2_h, "WDU2#", end_unformatted_write(true))
END_CALL(EndWrDirUnf, "_EndWrDirUnf", end_unformatted_write(true))
// A namelist statement is over when its opening returns.
END_CALL(EndWrNml, "_EndWrNml", )
END_CALL(EndRdNml, "_EndRdNml", )

// ---- Single steps of a formatted statement ----

END_CALL(RSF3_h, "RSF3#", if (!items_are_ignored()) conclude(RSF3__()))
END_CALL(WSF3_h, "WSF3#", if (!items_are_ignored()) conclude(WSF3__()))
END_CALL(RTF_h, "RTF#", )  // run-time formats are parsed where they are used

extern "C" TARN_EXPORT void RSF1_h(const char* advance, std::int32_t given, std::ptrdiff_t length)
    LINK_NAME("RSF1#");
extern "C" void RSF1_h(const char* advance, std::int32_t given, std::ptrdiff_t length) {
    if (!items_are_ignored()) conclude(RSF1__(advance, given != 0, length));
}

#define BUSINESS_EDIT(entry, link, type, call)                            \
    extern "C" TARN_EXPORT void entry(const type* value) LINK_NAME(link); \
    extern "C" void entry(const type* value) {                            \
        if (!items_are_ignored()) conclude(call(value));                  \
    }
BUSINESS_EDIT(BED_h_I, "BED#I", std::int32_t, BED__I)
BUSINESS_EDIT(BED_h_DP, "BED#DP", double, BED__DP)
BUSINESS_EDIT(BED_h_RX, "BED#RX", long double, BED__RX)
