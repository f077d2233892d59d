#include "cli/summary_line.h"

#include <algorithm>

#include "report/wording.h"

namespace vort {

std::string summary_line(std::string_view title, const std::string& text) {
    constexpr std::size_t kTitle = 14;
    std::string out(title);
    out.resize(std::max(kTitle, out.size() + 1), ' ');
    return out + text + '\n';
}

std::string seconds_text(double seconds) {
    if (seconds < 100) return decimal(seconds, 1) + " s";
    const long whole = static_cast<long>(seconds);
    if (whole < 7200) {
        return std::to_string(whole / 60) + " min " + std::to_string(whole % 60) + " s";
    }
    return std::to_string(whole / 3600) + " h " + std::to_string(whole / 60 % 60) + " min";
}

}  // namespace vort
