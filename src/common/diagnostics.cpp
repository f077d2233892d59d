#include "common/diagnostics.h"

#include <ostream>

#include "common/characters.h"

namespace vort {

namespace {

constexpr long kLinesOfAKind = 10;

}  // namespace

// How many lines of the kind there are with this one; a line that repeats the last is none.
long Diagnostics::count_one(std::string_view kind, const std::string& line) {
    for (KindCount& entry : counts_) {
        if (entry.kind != kind) continue;
        if (entry.last == line) return kLinesOfAKind + 1;
        entry.last = line;
        return ++entry.count;
    }
    counts_.push_back({kind, 1, line});
    return 1;
}

void Diagnostics::say(std::string_view kind, std::string_view file, long line,
                      const std::string& text) {
    std::string whole = std::string(file) + ':';
    if (line > 0) whole += std::to_string(line) + ':';
    whole += ' ' + text;
    make_visible(whole);
    whole += '\n';
    if (count_one(kind, whole) <= kLinesOfAKind) out_ << whole << std::flush;
}

void Diagnostics::finish() {
    for (const KindCount& entry : counts_) {
        if (entry.count > kLinesOfAKind) {
            out_ << "... and " << entry.count - kLinesOfAKind << " more " << entry.kind << '\n'
                 << std::flush;
        }
    }
    counts_.clear();
}

}  // namespace vort
