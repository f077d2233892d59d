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
};

std::vector<KindCount>& counts() {
    static std::vector<KindCount> all;
    return all;
}

long count_one(std::string_view kind) {
    static const bool finish_at_exit = [] {
        counts();  // constructed before the handler is registered, so destroyed after it ran
        return std::atexit(finish_diagnostics) == 0;
    }();
    static_cast<void>(finish_at_exit);
    for (KindCount& entry : counts()) {
        if (entry.kind == kind) return ++entry.count;
    }
    counts().push_back({kind, 1});
    return 1;
}

}  // namespace

void diagnose(std::string_view kind, std::string_view file, long line, const std::string& text) {
    if (count_one(kind) > kLinesOfAKind) return;
    std::cerr << file << ':';
    if (line > 0) std::cerr << line << ':';
    std::cerr << ' ' << text << '\n';
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
