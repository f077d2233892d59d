#include "cli/nearest_name.h"

#include <algorithm>
#include <vector>

namespace vort {

namespace {

std::size_t distance(std::string_view a, std::string_view b) {
    // steps[i][j]: from the first i characters of a to the first j of b.
    std::vector steps(a.size() + 1, std::vector<std::size_t>(b.size() + 1));
    for (std::size_t i = 0; i <= a.size(); ++i) {
        for (std::size_t j = 0; j <= b.size(); ++j) {
            if (i == 0 || j == 0) {
                steps[i][j] = i + j;
                continue;
            }
            const std::size_t changed = steps[i - 1][j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1);
            steps[i][j] = std::min({changed, steps[i - 1][j] + 1, steps[i][j - 1] + 1});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1]) {
                steps[i][j] = std::min(steps[i][j], steps[i - 2][j - 2] + 1);
            }
        }
    }
    return steps[a.size()][b.size()];
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
