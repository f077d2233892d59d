#include "common/diagnostics.h"

#include <cstdlib>
#include <iostream>
#include <vector>

namespace vort {

namespace {

constexpr long kLinesOfAKind = 10;

struct KindCount {
    std::string_view kind;
    long count;
    std::string last;  // the line that came last
};

// Never destroyed: the console, flushed at exit, may still have something to say.
std::vector<KindCount>& counts() {
    static auto& all = *new std::vector<KindCount>;
    return all;
}

// How many lines of the kind there are with this one; a line that repeats the last is none.
long count_one(std::string_view kind, const std::string& line) {
    static const bool finish_at_exit = std::atexit(finish_diagnostics) == 0;
    static_cast<void>(finish_at_exit);
    for (KindCount& entry : counts()) {
        if (entry.kind != kind) continue;
        if (entry.last == line) return kLinesOfAKind + 1;
        entry.last = line;
        return ++entry.count;
    }
    counts().push_back({kind, 1, line});
    return 1;
}

}  // namespace

void diagnose(std::string_view kind, std::string_view file, long line, const std::string& text) {
    std::string whole = std::string(file) + ':';
    if (line > 0) whole += std::to_string(line) + ':';
    whole += ' ' + text + '\n';
    if (count_one(kind, whole) <= kLinesOfAKind) std::cerr << whole;
}

void finish_diagnostics() {
    for (const KindCount& entry : counts()) {
        if (entry.count > kLinesOfAKind) {
            std::cerr << "... and " << entry.count - kLinesOfAKind << " more " << entry.kind
                      << '\n';
        }
    }
    counts().clear();
}

}  // namespace vort
