#include "cli/task_list.h"

namespace vort {

std::string list_text(const std::vector<int>& tasks) {
    std::string text;
    for (std::size_t k = 0; k < tasks.size();) {
        std::size_t last = k;
        while (last + 1 < tasks.size() && tasks[last + 1] == tasks[last] + 1) ++last;
        if (!text.empty()) text += ", ";
        text += std::to_string(tasks[k]);
        if (last > k) text.append("-").append(std::to_string(tasks[last]));
        k = last + 1;
    }
    return text;
}

}  // namespace vort
