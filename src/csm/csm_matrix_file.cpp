// The design matrix that the selector reads.
//
// A line for each individual, in the order of the builder: the centred phenotype, then a 0 or 1 for
// each base learner, i.e. for each group of each kept record but the record's last one, which is
// the reference. Then a trailer with the dimensions, then the records as text blocks:
//
//     0.550000 1 0 0
//     -0.450000 0 0 1
//     ...
//     para  40 3
//     <number 0>
//     ...
#include <array>
#include <iostream>
#include <string>
#include <vector>

#include "common/end_program.h"
#include "common/number_text.h"
#include "common/output_file.h"
#include "csm/csm.h"
#include "numeric/scalars.h"

namespace vort {

namespace {

// One record's part of a row: which columns have a 1, by joint genotype code.
struct RecordColumns {
    int markers = 0;
    std::array<int, 4> marker{};       // 1 .. markers
    std::vector<std::string> by_code;  // "1 0 " and so on
    int columns = 0;
};

RecordColumns columns_of(const CSM& csm, int m, const BestClusterInformation& record) {
    RecordColumns part;
    part.markers = static_cast<int>(record.marker_count);
    csm.sortchoose(record.combination_index, m, part.markers, part.marker.data());
    const int codes = ipower(3, part.markers);
    part.by_code.resize(codes);
    for (unsigned q = 0; q + 1 < record.group_count_copy; ++q) {
        if (!(record.group_frequency[q] > 0 && record.group_frequency[q] < 1)) continue;
        ++part.columns;
        for (int code = 0; code < codes; ++code) {
            part.by_code[code] +=
                record.IncludeInGroup(static_cast<unsigned>(code), q) != 0 ? "1 " : "0 ";
        }
    }
    return part;
}

}  // namespace

void CSM::ProvideDataToNextProgram(const BestClusterInformationArray* array, const char* file) {
    OutputFile out(file, OutputFile::Mode::kTruncate);
    if (!out.is_open()) {
        std::cout << "Don't open file " << file << "!\n";
        end_program();
    }
    std::vector<RecordColumns> parts;
    int columns = 0;
    for (const auto& record : array->items) {
        parts.push_back(columns_of(*this, usable_markers(), *record));
        columns += parts.back().columns;
    }
    for (int i = 1; i <= Sample_size; ++i) {
        out << fixed(yy[i]) << ' ';
        for (const RecordColumns& part : parts) {
            out << part.by_code[cell_code(i, part.markers, part.marker.data())];
        }
        out << '\n';
    }
    out << "para  " << Sample_size << ' ' << columns << '\n';
    if (!out.close()) end_program();  // half a matrix would be read as a whole one
    for (int r = 0; r < array->count(); ++r) array->items[r]->Store(file, r);
}

}  // namespace vort
