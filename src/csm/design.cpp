#include "csm/design.h"

#include <array>

#include "common/number_text.h"
#include "csm/marker_set.h"
#include "csm/set_cells.h"

namespace vort {

Design::Design(const BuilderData& data, const Imputation& imputation,
               std::vector<ClusterRecord> records) {
    response_.reserve(static_cast<std::size_t>(data.individuals()));
    // Most phenotypes repeat one of two.
    std::array<double, 2> known{0, 0};
    std::array<double, 2> rounded{0, 0};
    for (const double y : data.phenotype()) {
        const std::size_t k = y > 0 ? 1 : 0;
        if (y != known[k]) {
            known[k] = y;
            rounded[k] = as_read_back(fixed(y));
        }
        response_.push_back(rounded[k]);
    }
    for (const ClusterRecord& record : records) {
        add_columns(record, imputation);
        records_.push_back(record.as_read_back());
    }
}

// Which groups are columns is told by the shares before they are rounded.
void Design::add_columns(const ClusterRecord& record, const Imputation& imputation) {
    const MarkerSet set =
        marker_set(record.marker_count, record.combination_index, record.marker_total);
    const std::vector<signed char> first = imputation.codes(set.marker[0]);
    const std::vector<signed char> second = set.size == 1 ? first : imputation.codes(set.marker[1]);
    for (int q = 0; q < record.candidate_columns(); ++q) {
        if (!record.is_column(q)) continue;
        std::array<unsigned char, kMostCells> in_group{};
        for (int code = 0; code < (set.size == 1 ? 3 : 9); ++code) {
            in_group[static_cast<std::size_t>(code)] = record.includes(code, q) ? 1 : 0;
        }
        std::vector<unsigned char>& column = columns_.emplace_back(first.size());
        for (std::size_t i = 0; i < column.size(); ++i) {
            column[i] =
                in_group[static_cast<std::size_t>(joint_code(set.size, first[i], second[i]))];
        }
    }
}

std::string Design::text() const {
    Transcript out(true);
    for (int i = 0; i < individuals(); ++i) {
        out << fixed(response_[i]) << ' ';
        for (const auto& column : columns_) out << (column[i] != 0 ? "1 " : "0 ");
        out << '\n';
    }
    out << "para  " << individuals() << ' ' << columns() << '\n';
    for (std::size_t r = 0; r < records_.size(); ++r) out << records_[r].text(static_cast<int>(r));
    return std::string(out.text());
}

}  // namespace vort
