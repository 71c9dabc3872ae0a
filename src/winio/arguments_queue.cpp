// Arguments for the next call, one by one: for languages that can't pass a variable list.
#include <cstring>

#include "winio/scanner.h"

namespace tarn::winio {

argument_queue& queued_arguments() {
    static auto* queue = new argument_queue;
    return *queue;
}

void argument_queue::clear() {
    words.clear();
    descriptor.clear();
    lengths.clear();
}

word* get_aux_arg_pointer(std::size_t size, const char* token) {
    argument_queue& queue = queued_arguments();
    const std::size_t words = (size + sizeof(word) - 1) / sizeof(word);
    queue.words.resize(queue.words.size() + words);
    queue.descriptor += token;
    return queue.words.data() + queue.words.size() - words;
}

void queue_character(const char* text, std::int32_t length) {
    // The length alone says how long the text of the argument before was.
    if (text) *get_aux_arg_pointer(sizeof text, "*C") = reinterpret_cast<word>(text);
    queued_arguments().lengths.push_back(length);
}

}  // namespace tarn::winio
