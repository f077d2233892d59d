// make_pages DIR: writes report pages of made-up studies, for the test in the browser, and says of
// each how many of its markers have p < 0.001.
#include <algorithm>
#include <array>
#include <cmath>
#include <fstream>
#include <iostream>
#include <nlohmann/json.hpp>
#include <random>
#include <vector>

#include "common/input_error.h"
#include "prediction/evaluation.h"
#include "report/report_page.h"

namespace {

using nlohmann::json;
using vort::DataSetRow;
using vort::MarkerRow;
using vort::QuantileRow;

constexpr const char* kHostile = "</script><script>alert(1)</script><!--@data@-->\"'&";

struct Made {
    int chromosomes = 10;
    long markers = 300;  // in all
    int permutations = 200;
    bool model = true;
    bool tested = true;
    bool hostile = false;
    double T0 = 0.1790;
    bool holdout = false;
};

// A marker with its texts.
struct MadeMarker {
    std::string name;
    MarkerRow row;
};

constexpr int kSeed = 20;

double uniform(std::mt19937_64& random) {
    return double(random() >> 11) / double(1ULL << 53);
}

// The smallest of four related p-values is about that of two and a half independent ones.
double smallest_of_four(double u) {
    return 1 - std::pow(1 - u, 1 / 2.5);
}

std::vector<MadeMarker> make_markers(const Made& made) {
    std::mt19937_64 random(kSeed);
    std::vector<MadeMarker> markers(made.markers);
    static const std::array<const char*, 4> kModels = {"ADD", "DOM", "REC", "GENO"};
    for (long i = 0; i < made.markers; ++i) {
        MarkerRow& row = markers[i].row;
        row.chromosome = int(i * made.chromosomes / made.markers) + 1;
        row.position = 1000 * i + long(random() % 900) + 12345;
        row.a1 = i % 3 ? "A" : "C";
        row.a2 = i % 3 ? "G" : "T";
        row.model = kModels[random() % 4];
        row.p_min = smallest_of_four(uniform(random));
        markers[i].name = "rs" + std::to_string((made.markers > 1000 ? 1000000 : 1000) + i);
    }
    if (made.markers >= 300) {
        markers[made.markers / 7].row.p_min = 1.18e-7;
        markers[made.markers / 7 + 1].row.p_min = 7.4e-4;
    }
    if (made.hostile) markers[made.markers / 7].name = kHostile;
    for (MadeMarker& marker : markers) marker.row.name = marker.name;
    return markers;
}

std::vector<DataSetRow> make_data_sets(const Made& made) {
    std::mt19937_64 random(7);
    std::vector<DataSetRow> rows;
    rows.reserve(1 + std::size_t(made.permutations));
    rows.push_back({0, made.T0, 1.18e-7, "rs", 10});
    for (int k = 1; k <= made.permutations; ++k) {
        const double T = 0.1 + 0.05 * (uniform(random) + uniform(random) + uniform(random) - 1.4);
        const double p =
            smallest_of_four(1 - std::pow(uniform(random), 1.0 / double(made.markers)));
        rows.push_back({k, made.model ? T : vort::kNotAvailable, p, "rs", 3});
    }
    return rows;
}

// Ranks and EMP2 as the results would have them.
void rank(std::vector<MadeMarker>& markers, const std::vector<DataSetRow>& data_sets) {
    std::vector<MarkerRow*> order;
    for (MadeMarker& marker : markers) order.push_back(&marker.row);
    std::sort(order.begin(), order.end(), [](auto* a, auto* b) { return a->p_min < b->p_min; });
    int next = 1;
    for (MarkerRow* row : order) {
        row->rank = next++;
        const auto as_small =
            std::count_if(data_sets.begin() + 1, data_sets.end(),
                          [&](const DataSetRow& set) { return set.smallest_p <= row->p_min; });
        if (data_sets.size() > 1) row->emp2 = double(as_small + 1) / double(data_sets.size());
    }
}

std::vector<QuantileRow> make_quantiles(const std::vector<MadeMarker>& markers) {
    std::vector<double> p;
    p.reserve(markers.size());
    for (const MadeMarker& marker : markers) p.push_back(marker.row.p_min);
    std::sort(p.begin(), p.end());
    std::vector<QuantileRow> rows;
    const double all = double(p.size());
    for (std::size_t r = 1; r <= p.size(); r += 1 + r / 200) {
        // The r-th of `all` uniforms, its band by the normal approximation of its logarithm.
        const double middle = (double(r) - 0.3) / (all + 0.4);
        const double spread = std::exp(2.2 * std::sqrt((1 - middle) / double(r)));
        rows.push_back({long(r), p[r - 1], smallest_of_four(middle),
                        smallest_of_four(middle / spread),
                        smallest_of_four(std::min(0.9999, middle * spread))});
    }
    return rows;
}

json locus(const MarkerRow& row) {
    return {{"name", row.name},
            {"chromosome", row.chromosome},
            {"position", row.position},
            {"a1", row.a1},
            {"a2", row.a2},
            {"rank", row.rank}};
}

json learner(int id, int set, const json& markers, int group, const json& cells, double coefficient,
             double difference, std::array<int, 2> inside) {
    return {{"id", id},
            {"marker_set", set},
            {"markers", markers},
            {"group", group},
            {"cells", cells},
            {"coefficient", coefficient},
            {"risk_difference", difference},
            {"inside", {{"cases", inside[0]}, {"controls", inside[1]}}},
            {"outside", {{"cases", 337 - inside[0]}, {"controls", 261 - inside[1]}}},
            {"missing", 7}};
}

json cells(const std::vector<std::array<int, 3>>& cases_controls_group) {
    json all = json::array();
    const bool pair = cases_controls_group.size() == 9;
    for (int i = 0; i < int(cases_controls_group.size()); ++i) {
        const auto& [cases, controls, group] = cases_controls_group[i];
        all.push_back({{"genotype", pair ? json{i / 3, i % 3} : json::array({i})},
                       {"cases", cases},
                       {"controls", controls},
                       {"group", group < 0 ? json() : json(group)}});
    }
    return all;
}

// The interacting pair and the single marker of the example study, with its counts.
json make_model(std::vector<MadeMarker>& markers) {
    const std::size_t n = markers.size();
    MarkerRow& single = markers[n / 7].row;
    MarkerRow& first = markers[n * 3 / 4].row;
    MarkerRow& second = markers[n * 2 / 5].row;
    MarkerRow& chance = markers[n / 7 + (n > 2 ? 1 : 0)].row;
    for (MarkerRow* row : {&single, &first, &second, &chance}) row->in_model = true;
    const json pair = json::array({locus(first), locus(second)});
    const json mixed = json::array({locus(single), locus(chance)});
    json learners = {
        learner(1, 1, json::array({locus(single)}), 0, json::parse("[[0]]"), -2.493, -0.204,
                {137, 162}),
        learner(2, 1, json::array({locus(single)}), 1, json::parse("[[1]]"), -0.674, -0.056,
                {157, 86}),
        learner(3, 2, pair, 4, json::parse("[[1,1],[1,2],[2,1]]"), 3.068, 0.316, {97, 20}),
        learner(4, 2, pair, 1, json::parse("[[0,0],[2,2]]"), 2.186, 0.196, {109, 68}),
        learner(5, 3, mixed, 2, json::parse("[[0,0],[1,0],[2,0]]"), 0.364, 0.004, {1, 0}),
    };
    json sets = {
        {{"id", 1},
         {"markers", json::array({single.name})},
         {"groups", 3},
         {"cells", cells({{{137, 162, 0}}, {{157, 86, 1}}, {{42, 14, 2}}})}},
        {{"id", 2},
         {"markers", json::array({first.name, second.name})},
         {"groups", 4},
         {"cells", cells({{{107, 67, 1}},
                          {{54, 68, 2}},
                          {{3, 16, 3}},
                          {{61, 77, 2}},
                          {{74, 15, 4}},
                          {{9, 2, 4}},
                          {{6, 8, 2}},
                          {{14, 3, 4}},
                          {{2, 1, 1}}})}},
        {{"id", 3},
         {"markers", json::array({single.name, chance.name})},
         {"groups", 2},
         {"cells", cells({{{99, 106, 2}},
                          {{36, 50, 1}},
                          {{2, 4, 1}},
                          {{123, 49, 2}},
                          {{28, 33, 1}},
                          {{0, 0, -1}},
                          {{22, 10, 2}},
                          {{16, 2, 1}},
                          {{3, 2, 1}}})}},
    };
    json weighed = json::array();
    for (auto [row, importance] :
         {std::pair{&single, 41.2}, {&first, 22.1}, {&second, 22.1}, {&chance, 14.6}}) {
        json entry = locus(*row);
        entry.update({{"importance", importance},
                      {"p_min", row->p_min},
                      {"emp2", std::isnan(row->emp2) ? json() : json(row->emp2)}});
        weighed.push_back(entry);
    }
    return {{"intercept", 0.56},
            {"base_learners", learners},
            {"marker_sets", sets},
            {"markers", weighed}};
}

// Sixty people, of whom those at a high risk are cases more often; some risks exceed 1.
json make_holdout() {
    std::vector<double> risks;
    std::vector<short> phenotypes;
    for (int i = 0; i < 60; ++i) {
        risks.push_back(double(i / 3) / 18);
        phenotypes.push_back(i * i * 7 % 60 < i ? 1 : 0);
    }
    const json trial = vort::evaluation_json(vort::evaluate(risks, phenotypes, 0.5));
    return {{"fraction", 0.1},
            {"cases", trial["cases"]},
            {"controls", trial["controls"]},
            {"evaluation", trial},
            {"training", trial}};
}

json make_results(const Made& made, std::vector<MadeMarker>& markers,
                  const std::vector<DataSetRow>& data_sets) {
    const auto stronger = std::count_if(data_sets.begin() + 1, data_sets.end(),
                                        [&](auto& row) { return row.T > data_sets[0].T; });
    const double B = made.permutations;
    json result = {{"has_model", made.model},
                   {"T0", nullptr},
                   {"permutations", made.permutations},
                   {"stronger", stronger},
                   {"p", made.model ? json() : json(1)},
                   {"p_plus_one", nullptr},
                   {"p_interval", nullptr}};
    if (made.model) result["T0"] = made.T0;
    if (made.model && B > 0) {
        result["p"] = double(stronger) / B;
        result["p_plus_one"] = double(stronger + 1) / (B + 1);
        const double p = double(stronger) / B, error = 1.96 * std::sqrt(p * (1 - p) / B);
        result["p_interval"] = {p - error, stronger ? p + error : 1 - std::pow(0.025, 1 / B)};
    }
    const long dropped = made.tested ? std::min(4L, made.markers / 50) : made.markers;
    return {
        {"format", "vort-model"},
        {"format_version", 1},
        {"program", {{"name", "vort"}, {"version", "1.1.0"}}},
        {"input",
         {{"format", "bed"},
          {"files", json::array({{{"role", "bed"}, {"path", "examples/study.bed"}}})},
          {"individuals", {{"read", 600}, {"analysed", 598}, {"cases", 337}, {"controls", 261}}},
          {"markers",
           {{"read", made.markers + 1}, {"analysed", made.markers}, {"dropped", dropped}}},
          {"left_out",
           {{{"what", "individuals"}, {"count", 2}, {"why", "no phenotype"}},
            {{"what", "markers"}, {"count", 1}, {"why", "chromosome 0"}}}},
          {"notes", json::array()}}},
        {"parameters",
         {{"permutations", made.permutations}, {"best_m", 200}, {"max_retain", 1}, {"fdr", 0.75}}},
        {"screening", {{"lambda_gc", made.tested ? json(1.034) : json()}}},
        {"result", result},
        {"model", made.model ? make_model(markers) : json()}};
}

void write_page(const std::string& path, const Made& made) {
    std::vector<MadeMarker> markers = make_markers(made);
    const std::vector<DataSetRow> data_sets = make_data_sets(made);
    rank(markers, data_sets);
    json results = make_results(made, markers, data_sets);
    vort::ReportPage page(made.markers);
    for (MadeMarker& marker : markers) {
        if (!made.tested) {
            marker.row = MarkerRow();
            marker.row.name = marker.name;
        }
        page.add(marker.row);
    }
    if (made.holdout) results["holdout"] = make_holdout();
    std::vector<QuantileRow> quantiles;
    if (made.permutations > 0 && made.tested) quantiles = make_quantiles(markers);
    const auto small = std::count_if(markers.begin(), markers.end(), [](const MadeMarker& marker) {
        return marker.row.p_min < 1e-3;
    });
    std::cout << path << ": seed " << kSeed << ", " << small << " markers with p < 0.001\n";
    std::ofstream out(path, std::ios::binary);
    page.write(results, data_sets, quantiles, out);
}

}  // namespace

int main(int argc, char** argv) try {
    if (argc != 2) return 2;
    const std::string folder = std::string(argv[1]) + "/";
    write_page(folder + "study.html", {});
    write_page(folder + "large.html", {.chromosomes = 26, .markers = 541'325});
    write_page(folder + "hostile.html", {.hostile = true});
    write_page(folder + "weak.html", {.T0 = 0.12});
    write_page(folder + "holdout.html", {.holdout = true});
    write_page(folder + "no-model.html", {.model = false});
    write_page(folder + "no-permutations.html", {.permutations = 0});
    write_page(folder + "one-chromosome.html", {.chromosomes = 1, .permutations = 1});
    write_page(folder + "three-markers.html", {.chromosomes = 1, .markers = 3, .permutations = 10});
    write_page(folder + "one-marker.html", {.chromosomes = 1, .markers = 1, .model = false});
    write_page(folder + "none-tested.html",
               {.markers = 4, .permutations = 20, .model = false, .tested = false});
} catch (const vort::InputError& error) {
    std::cerr << error.text << '\n';
    return 1;
} catch (const std::exception& error) {
    std::cerr << error.what() << '\n';
    return 1;
}
