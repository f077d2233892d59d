#include "csm/twin_markers.h"

#include <string_view>
#include <unordered_map>

namespace vort {

std::vector<int> first_twins(const MarkerPlanes& markers) {
    std::unordered_map<std::string_view, int> first;
    std::vector<int> twins;
    twins.reserve(static_cast<std::size_t>(markers.markers()));
    for (int j = 0; j < markers.markers(); ++j) {
        twins.push_back(first.emplace(markers.bytes(j), j).first->second);
    }
    return twins;
}

}  // namespace vort
