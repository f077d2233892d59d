// The design matrix as text and the records of its columns: the whole input is the file.
#include <cmath>
#include <iostream>
#include <sstream>
#include <vector>

#include "legacy/design_file.h"
#include "legacy/record_file.h"
#include "support/files.h"
#include "support/harness.h"

namespace vort::fuzz {

namespace {

void check_matrix(const std::string& path) {
    const auto size = read_design_size(path);
    if (!size || size->rows < 0 || size->columns < 0 || !can_hold(path, *size)) return;
    const auto n = static_cast<std::size_t>(size->rows);
    std::vector<double> values(n * static_cast<std::size_t>(size->columns));
    std::vector<double> response(n);
    std::vector<double*> columns;
    for (int j = 0; j < size->columns; ++j) {
        columns.push_back(values.data() + static_cast<std::size_t>(j) * n);
    }
    std::ostringstream told;
    Diagnostics diagnostics(told);
    accepts([&] {
        read_design(path, {*size, false, false}, columns.data(), response.data(), diagnostics);
        for (const double value : values) require(std::isfinite(value), "values are numbers");
        for (const double value : response) require(std::isfinite(value), "responses are numbers");
    });
}

// What a record is asked after it was read.
void check_record(const BestClusterInformation& record) {
    require(record.marker_count >= 1 && record.marker_count <= 2, "a set has one or two markers");
    require(record.group_members.size() == record.group_num, "every group has its members");
    int codes[10] = {};
    for (unsigned q = 0; q < record.group_num; ++q) {
        int count = 0;
        record.getGenotypeCode(static_cast<int>(q), &count, codes);
        require(count >= 0 && count <= 10, "a group has at most all cells");
        record.IncludeInGroup(q, q);
    }
    for (int code = 0; code < 9; ++code) {
        const int group = record.getcluster_num(code);
        require(group >= 0, "a cell is in a group");
    }
}

// A record that was read is the same when its engine's form is told as text and read again.
void check_round_trip(const BestClusterInformation& record, Files& files) {
    const std::string text = record.record().text(0);
    Myfstream again(files.put("again", text).c_str());
    std::unique_ptr<BestClusterInformation> read;
    require(accepts([&] { read = read_record(again, 0); }), "a record that was written is read");
    require(read != nullptr, "a record that was written is whole");
    require(read->record().text(0) == text, "a record is read as it was written");
}

void run(std::string_view input) {
    static Files files;
    static const bool silent = (silence_streams(), true);
    require(silent, "nothing is printed");
    const std::string path = files.put("output_X_Y.txt", input);
    check_matrix(path);
    accepts([&] {
        Myfstream file(path.c_str());
        for (const auto& record : read_records(file)) {
            if (record == nullptr) continue;
            check_record(*record);
            check_round_trip(*record, files);
        }
    });
}

}  // namespace

}  // namespace vort::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    vort::fuzz::run(vort::fuzz::text_of(data, size));
    return 0;
}
