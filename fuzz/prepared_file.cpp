// A prepared file: two bytes say for how many individuals and best markers, the rest is the file.
#include "screening/prepared_file.h"

#include <algorithm>
#include <sstream>
#include <vector>

#include "support/files.h"
#include "support/harness.h"

namespace vort::fuzz {

namespace {

constexpr int kMarkers = 200;

// Genotypes of nobody in particular, so that what was read can be written.
Genotypes any_genotypes(int individuals) {
    Genotypes genotypes(individuals, kMarkers);
    for (int j = 0; j < kMarkers; ++j) {
        std::ranges::fill(genotypes.owned_column(j), static_cast<unsigned char>(37 * j));
    }
    return genotypes;
}

PreparedDataSet read(const std::string& path, int individuals, int best, std::string& told) {
    std::ostringstream text;
    Diagnostics diagnostics(text);
    PreparedDataSet data = read_prepared_file(path, individuals, best, kMarkers, diagnostics);
    diagnostics.finish();
    told = text.str();
    return data;
}

void check(const PreparedDataSet& data, int individuals, int best) {
    require(std::ssize(data.phenotypes) == individuals, "everybody has a phenotype");
    require(std::ssize(data.best) == best, "there are as many markers as asked for");
    const auto is_marker = [](int column) { return column >= 0 && column < kMarkers; };
    require(std::ranges::all_of(data.best, is_marker), "a best marker is a marker");
}

void check_round_trip(const PreparedDataSet& data, Files& files) {
    const auto individuals = static_cast<int>(data.phenotypes.size());
    const auto best = static_cast<int>(data.best.size());
    const std::string path = files.put("again", "");
    std::ostringstream nobody;
    Diagnostics diagnostics(nobody);
    write_prepared_file(path, any_genotypes(individuals), data.phenotypes, data.best, diagnostics);
    std::string told;
    const PreparedDataSet again = read(path, individuals, best, told);
    require(told.empty() && nobody.str().empty(), "a file that was written is sound");
    require(again.phenotypes == data.phenotypes && again.best == data.best,
            "a file is read as it was written");
    require(accepts([&] { require_prepared_for(path, data.phenotypes, {}, best, kMarkers, true); }),
            "a file is that of its own phenotypes");
}

void run(std::string_view input) {
    static Files files;
    if (input.size() < 2) return;
    const int individuals = static_cast<unsigned char>(input[0]);
    const int best = static_cast<unsigned char>(input[1]);
    const std::string path = files.put("prepared", input.substr(2));
    std::string told;
    PreparedDataSet data;
    if (!accepts([&] { data = read(path, individuals, best, told); })) return;
    check(data, individuals, best);
    if (told.empty()) check_round_trip(data, files);
}

}  // namespace

}  // namespace vort::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    vort::fuzz::run(vort::fuzz::text_of(data, size));
    return 0;
}
