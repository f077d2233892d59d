#include "legacy/tagged_file.h"

#include <iostream>
#include <string_view>

#include "common/text_input.h"

namespace vort {

Myfstream::Myfstream(const char* file) {
    TextInput input{file};
    open_ = input.is_open();
    if (!open_) {
        std::cout << "file open find error for file=" << file;
        return;
    }
    std::string_view line;
    while (input.line(line)) {
        contents_ += line;
        contents_ += '\n';
    }
    str(contents_);
}

long Myfstream::find(const char* text, int length) {
    const std::string_view wanted(text, static_cast<std::size_t>(length));
    const std::size_t at = contents_.find(wanted, searched_);
    if (at == std::string::npos) return 0;
    go_to(static_cast<long>(at + wanted.size()));
    return static_cast<long>(searched_);
}

void Myfstream::go_to(long position) {
    searched_ = static_cast<std::size_t>(position);
    clear();
    seekg(position);
}

}  // namespace vort
