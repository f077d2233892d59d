#include "support/sections.h"

#include <algorithm>

namespace vort::fuzz {

namespace {

constexpr std::string_view kMark = "%%";

// Where the next line that begins with the mark is; the end where there is none.
std::size_t next_mark(std::string_view text) {
    if (text.starts_with(kMark)) return 0;
    const std::size_t end = text.find("\n%%");
    return end == std::string_view::npos ? text.size() : end + 1;
}

}  // namespace

Sections::Sections(std::string_view input) {
    std::string_view name;
    for (;;) {
        const std::size_t end = next_mark(input);
        sections_.emplace_back(name, input.substr(0, end));
        input.remove_prefix(end);
        if (input.empty()) return;
        const std::size_t line = std::min(input.find('\n'), input.size());
        name = input.substr(kMark.size(), line - kMark.size());
        input.remove_prefix(std::min(line + 1, input.size()));
    }
}

bool Sections::has(std::string_view name) const {
    return std::ranges::any_of(sections_, [&](const auto& each) { return each.first == name; });
}

std::string_view Sections::operator[](std::string_view name) const {
    const auto found =
        std::ranges::find_if(sections_, [&](const auto& each) { return each.first == name; });
    return found == sections_.end() ? std::string_view() : found->second;
}

}  // namespace vort::fuzz
