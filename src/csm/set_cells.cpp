#include "csm/set_cells.h"

#include <array>

namespace vort {

SetCells form_cells(const MarkerPlanes& planes, int individuals, const MarkerSet& set) {
    SetCells cells;
    cells.code.assign(1, 0);
    cells.size.assign(1, 0);
    cells.cell.resize(static_cast<std::size_t>(individuals));
    std::array<unsigned char, kMostCells> cell_of_code{};
    for (int i = 0; i < individuals; ++i) {
        const int first = planes.code(i, set.marker[0]);
        const int second = set.size == 1 ? 0 : planes.code(i, set.marker[1]);
        if (first < 0 || second < 0) continue;
        const int code = joint_code(set.size, first, second);
        unsigned char& cell = cell_of_code[static_cast<std::size_t>(code)];
        if (cell == 0) {
            cell = static_cast<unsigned char>(++cells.ncell);
            cells.code.push_back(code);
            cells.size.push_back(0);
        }
        cells.cell[i] = cell;
        ++cells.size[cell];
    }
    return cells;
}

}  // namespace vort
