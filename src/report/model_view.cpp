#include "report/model_view.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "common/input_error.h"
#include "report/wording.h"
#include "results/json_values.h"

namespace vort {
namespace {

using nlohmann::json;

constexpr long kMostPeople = 1'000'000'000;  // or markers, or data sets; two fit an int together
constexpr long kAnyPosition = std::numeric_limits<long>::max();

long whole(const json& from, const char* key, long most = kMostPeople) {
    return whole_of(from.at(key), key, 0, most);
}

int small_whole(const json& from, const char* key) {
    return static_cast<int>(whole(from, key));
}

double number(const json& from, const char* key) {
    const json& value = from.at(key);
    return value.is_null() ? kUnknown : value.get<double>();
}

// Where older or partial results leave a part out.
const json& part(const json& from, const char* key) {
    static const json nothing;
    const auto found = from.find(key);
    return found == from.end() ? nothing : *found;
}

Locus read_locus(const json& from) {
    return {shortened(from.at("name").get<std::string>(), kLongestName),
            small_whole(from, "chromosome"),
            whole(from, "position", kAnyPosition),
            from.at("a1"),
            from.at("a2"),
            small_whole(from, "rank")};
}

std::vector<Locus> read_loci(const json& from) {
    std::vector<Locus> loci;
    for (const json& each : from) loci.push_back(read_locus(each));
    return loci;
}

Tally read_tally(const json& from) {
    return {small_whole(from, "cases"), small_whole(from, "controls")};
}

void require_one_or_two(const std::vector<Locus>& markers) {
    if (markers.empty() || markers.size() > 2) throw std::out_of_range("a number of markers");
}

// Copies of A1 at each of so many markers.
std::vector<int> read_genotype(const json& from, std::size_t markers) {
    if (from.size() != markers) throw std::out_of_range("a genotype of other markers");
    std::vector<int> genotype;
    for (const json& copies : from) {
        genotype.push_back(static_cast<int>(whole_of(copies, "a genotype", 0, 2)));
    }
    return genotype;
}

void require_sound(const Learner& learner) {
    require_one_or_two(learner.markers);
    // Of a share of cases, whose range is 1; fits may exceed that, but not by far.
    if (!(std::abs(learner.risk_difference) < 1000)) throw std::out_of_range("a risk difference");
}

Learner read_learner(const json& from) {
    Learner learner;
    learner.id = small_whole(from, "id");
    learner.marker_set = small_whole(from, "marker_set");
    learner.markers = read_loci(from.at("markers"));
    learner.group = small_whole(from, "group");
    for (const json& cell : from.at("cells")) {
        learner.cells.push_back(read_genotype(cell, learner.markers.size()));
    }
    learner.coefficient = from.at("coefficient");
    learner.risk_difference = from.at("risk_difference");
    learner.inside = read_tally(from.at("inside"));
    learner.outside = read_tally(from.at("outside"));
    if (from.contains("missing")) learner.missing = small_whole(from, "missing");
    require_sound(learner);
    return learner;
}

// The set names its markers only; what else is known of them stands with its base learners.
std::vector<Locus> loci_of_set(const json& set, const std::vector<Learner>& learners) {
    const int id = small_whole(set, "id");
    for (const Learner& learner : learners) {
        if (learner.marker_set == id) return learner.markers;
    }
    std::vector<Locus> loci;
    for (const json& name : set.at("markers"))
        loci.emplace_back().name = shortened(name.get<std::string>(), kLongestName);
    return loci;
}

ShownSet read_set(const json& from, const std::vector<Learner>& learners) {
    ShownSet set{small_whole(from, "id"), loci_of_set(from, learners), {}};
    require_one_or_two(set.markers);
    const bool pair = set.markers.size() == 2;
    set.cells.resize(pair ? 9 : 3);
    for (const json& each : from.at("cells")) {
        const std::vector<int> copies = read_genotype(each.at("genotype"), set.markers.size());
        GenotypeCell& cell = set.cells.at(pair ? 3 * copies[0] + copies[1] : copies[0]);
        cell.people = read_tally(each);
        if (!each.at("group").is_null()) cell.group = small_whole(each, "group");
    }
    return set;
}

void read_input(const json& input, ModelView& view) {
    view.format = input.at("format");
    for (const json& file : part(input, "files")) {
        view.files.emplace_back(file.at("role"), file.at("path"));
    }
    const json& individuals = input.at("individuals");
    view.individuals_read = whole(individuals, "read");
    view.individuals = whole(individuals, "analysed");
    view.cases = whole(individuals, "cases");
    view.controls = whole(individuals, "controls");
    const json& markers = input.at("markers");
    view.markers_read = whole(markers, "read");
    view.markers = whole(markers, "analysed");
    view.dropped = whole(markers, "dropped");
    for (const json& each : part(input, "left_out")) {
        view.left_out.push_back({each.at("what"), whole(each, "count"), each.at("why")});
    }
    for (const json& note : part(input, "notes")) view.notes.push_back(note);
}

void read_result(const json& result, ModelView& view) {
    view.has_model = result.at("has_model");
    view.T0 = number(result, "T0");
    view.permutations = whole(result, "permutations");
    if (result.contains("stronger")) view.stronger = whole(result, "stronger");
    if (result.contains("equal")) view.equal = whole(result, "equal");
    view.p = number(result, "p");
    view.p_plus_one = number(result, "p_plus_one");
    const json& interval = result.at("p_interval");
    if (!interval.is_null()) {
        view.p_low = interval.at(0);
        view.p_high = interval.at(1);
    }
}

void read_model(const json& model, ModelView& view) {
    if (model.is_null()) return;
    view.intercept = model.at("intercept");
    for (const json& each : model.at("base_learners")) view.learners.push_back(read_learner(each));
    for (const json& each : model.at("marker_sets")) {
        view.sets.push_back(read_set(each, view.learners));
    }
    for (const json& each : model.at("markers")) {
        view.weighed.push_back(
            {read_locus(each), each.at("importance"), number(each, "p_min"), number(each, "emp2")});
    }
}

std::optional<Evaluation> read_trial(const json& from) {
    if (from.is_null()) return std::nullopt;
    return read_evaluation(from);
}

HoldoutView read_holdout(const json& from) {
    return {number_of(from.at("fraction"), "a share", 0, 1), whole(from, "cases"),
            whole(from, "controls"), read_trial(from.at("evaluation")),
            read_trial(from.at("training"))};
}

ModelView read_all(const json& model) {
    ModelView view;
    view.version = model.at("program").at("version");
    read_input(model.at("input"), view);
    for (const auto& [key, value] : model.at("parameters").items()) {
        view.parameters.emplace_back(key,
                                     value.is_string() ? value.get<std::string>() : value.dump());
    }
    if (!part(model, "within").is_null()) {
        view.within_file = model.at("within").at("file");
        view.clusters = whole(model.at("within"), "clusters");
    }
    if (!part(model, "screening").is_null()) {
        view.lambda_gc = number(model.at("screening"), "lambda_gc");
    }
    read_result(model.at("result"), view);
    if (view.has_model) read_model(part(model, "model"), view);
    if (model.contains("holdout")) view.holdout = read_holdout(model.at("holdout"));
    return view;
}

}  // namespace

ModelView read_model_view(const json& model) try {
    return read_all(model);
} catch (const std::bad_alloc&) {
    throw;
} catch (const std::exception& fault) {  // json's own, or a genotype out of range
    input_error("model.json", 0,
                std::string(fault.what()) +
                    "; the results of a run as it left them are expected; run the analysis again");
}

}  // namespace vort
