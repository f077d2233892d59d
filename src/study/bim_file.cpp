#include "study/bim_file.h"

#include "study/chromosome_names.h"
#include "study/word_lines.h"

namespace vort {

std::vector<MarkerInfo> read_bim(const std::string& path) {
    std::vector<MarkerInfo> markers;
    WordLines lines(path, "CHR ID CM BP A1 A2", 6);
    while (lines.next()) {
        lines.require(6);
        MarkerInfo marker{chromosome_of(lines[0]), std::string(lines[1]), 0, std::string(lines[4]),
                          std::string(lines[5])};
        if (!read_whole(lines[3], marker.position)) {
            lines.fail("position " + std::string(lines[3]) + "; a whole number expected");
        }
        markers.push_back(std::move(marker));
    }
    if (markers.empty()) lines.fail("no marker; at least one expected");
    return markers;
}

}  // namespace vort
