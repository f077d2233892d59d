#include "cli/nearest_name.h"

#include <algorithm>
#include <numeric>
#include <vector>

namespace vort {

namespace {

std::size_t distance(std::string_view a, std::string_view b) {
    std::vector<std::size_t> row(b.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 0; i < a.size(); ++i) {
        std::size_t diagonal = row[0];
        row[0] = i + 1;
        for (std::size_t j = 0; j < b.size(); ++j) {
            const std::size_t changed = diagonal + (a[i] == b[j] ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({changed, row[j] + 1, diagonal + 1});
        }
    }
    return row.back();
}

}  // namespace

std::string nearest_name(std::string_view word, std::span<const std::string> names) {
    std::string nearest;
    std::size_t least = word.size();
    for (const std::string& name : names) {
        const std::size_t steps = distance(word, name);
        if (steps < least && 3 * steps <= name.size()) {
            least = steps;
            nearest = name;
        }
    }
    return nearest;
}

}  // namespace vort
