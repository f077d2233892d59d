#include "results/model_json.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <set>

#include "common/input_error.h"
#include "ensemble/cell_counts.h"
#include "numeric/binomial_interval.h"
#include "results/account_json.h"
#include "results/fitted_risk.h"
#include "results/table_text.h"

namespace vort {

namespace {

using Json = nlohmann::ordered_json;

constexpr const char* kFormat = "vort-model";
constexpr int kFormatVersion = 1;
// Json::object() and Json::array() stand where a null would do: one that turns into either when it
// is first written to is left in pieces where there is no memory.
constexpr int kDeepest = 1000;  // beyond, a reader might run out of stack

Json number_or_null(double value) {
    return std::isnan(value) ? Json(nullptr) : Json(value);
}

class Writer {
  public:
    explicit Writer(const ModelDescription& run) : run_(run) {
        cases_ = std::ranges::count(run.data.phenotypes, short{1});
        controls_ = std::ssize(run.data.phenotypes) - cases_;
    }

    Json whole() const {
        Json out = Json::object();
        out["format"] = kFormat;
        out["format_version"] = kFormatVersion;
        out["program"] = {{"name", "vort"}, {"version", run_.version}};
        out["input"] = input();
        out["parameters"] = {{"permutations", run_.parameters.permutations},
                             {"best_m", run_.parameters.best_m},
                             {"max_retain", run_.parameters.max_retain},
                             {"fdr", run_.parameters.fdr}};
        if (run_.study.within) out["within"] = within(*run_.study.within);
        out["screening"] = {{"lambda_gc", number_or_null(run_.lambda_gc)}};
        out["result"] = result();
        out["model"] = run_.result.has_model ? model() : Json(nullptr);
        return out;
    }

  private:
    // The sets of the model, in the order of their base learners.
    struct MarkerSets {
        std::vector<const BaseLearner*> sets;
        std::vector<int> of_learner;  // numbers from 1
    };
    struct InAndOut {
        CellCount inside;
        CellCount outside;
        int missing = 0;
    };

    Json input() const;
    static Json within(const WithinAccount& account);
    Json result() const;
    Json model() const;
    MarkerSets marker_sets() const;
    Json marker(int rank) const;
    Json base_learner(const BaseLearner& learner, int set, double difference) const;
    Json marker_set(const BaseLearner& learner, int number) const;
    Json markers() const;
    InAndOut count(const BaseLearner& learner) const;
    std::vector<CellCount> cells(const BaseLearner& learner) const {
        return count_cells(run_.data.genotypes, run_.data.phenotypes, learner, run_.result.columns);
    }

    const ModelDescription& run_;
    long cases_ = 0;
    long controls_ = 0;
};

Json Writer::within(const WithinAccount& account) {
    return {{"file", account.file},
            {"name", account.column.empty() ? Json(nullptr) : Json(account.column)},
            {"clusters", account.clusters},
            {"fixed", account.fixed},
            {"unassigned", account.unassigned}};
}

Json Writer::input() const {
    Json out = Json::object();
    out["format"] = name_of(run_.format);
    out["files"] = files_json(run_.study);
    out["individuals"] = {{"read", run_.study.individuals_read},
                          {"analysed", cases_ + controls_},
                          {"cases", cases_},
                          {"controls", controls_}};
    out["markers"] = {{"read", run_.study.markers_read},
                      {"analysed", run_.study.markers.size()},
                      {"dropped", run_.rows.dropped()}};
    out["left_out"] = left_out_json(run_.study);
    out["notes"] = run_.study.notes;
    return out;
}

Json Writer::result() const {
    const Result& result = run_.result;
    const int B = static_cast<int>(result.permuted.size());
    // Where the observed data set has no model, every other one counts as no weaker.
    const int b = !result.has_model
                      ? B
                      : static_cast<int>(std::ranges::count_if(
                            result.permuted, [&](double S) { return S < result.observed; }));
    Json out = Json::object();
    out["has_model"] = result.has_model;
    out["T0"] = result.has_model ? Json(1 - result.observed) : Json(nullptr);
    out["permutations"] = B;
    out["stronger"] = b;
    out["equal"] = result.has_model ? std::ranges::count(result.permuted, result.observed) : 0;
    out["p"] = B > 0 ? Json(static_cast<double>(b) / B) : Json(nullptr);
    out["p_plus_one"] = (b + 1.0) / (B + 1.0);
    out["p_interval"] = nullptr;
    if (B > 0) {
        const Interval interval = clopper_pearson(b, B);
        out["p_interval"] = {interval.low, interval.high};
    }
    return out;
}

Writer::MarkerSets Writer::marker_sets() const {
    MarkerSets out;
    std::map<std::array<int, 2>, int> numbers;
    for (const BaseLearner& learner : run_.result.learners) {
        const auto [place, is_new] =
            numbers.try_emplace(learner.marker, static_cast<int>(numbers.size()) + 1);
        if (is_new) out.sets.push_back(&learner);
        out.of_learner.push_back(place->second);
    }
    return out;
}

Json Writer::model() const {
    const auto& learners = run_.result.learners;
    const FittedRisk risk =
        fitted_risk(learners, static_cast<double>(cases_), static_cast<double>(controls_));
    const MarkerSets sets = marker_sets();
    Json out = Json::object();
    out["intercept"] = risk.intercept;
    out["base_learners"] = Json::array();
    for (std::size_t b = 0; b < learners.size(); ++b) {
        out["base_learners"].push_back(
            base_learner(learners[b], sets.of_learner[b], risk.difference[b]));
    }
    out["marker_sets"] = Json::array();
    for (std::size_t s = 0; s < sets.sets.size(); ++s) {
        out["marker_sets"].push_back(marker_set(*sets.sets[s], static_cast<int>(s) + 1));
    }
    out["markers"] = markers();
    return out;
}

Json Writer::marker(int rank) const {
    const MarkerInfo& info = run_.study.markers[run_.result.columns[rank - 1]];
    return {{"name", info.name},
            {"chromosome", info.chromosome},
            {"position", info.position},
            {"a1", info.a1},
            {"a2", info.a2},
            {"rank", rank}};
}

Json genotype_of(int code, int markers) {
    return markers == 2 ? Json({code / 3, code % 3}) : Json::array({code});
}

Writer::InAndOut Writer::count(const BaseLearner& learner) const {
    InAndOut counted;
    const std::vector<CellCount> all = cells(learner);
    int seen = 0;
    for (std::size_t code = 0; code < all.size(); ++code) {
        CellCount& side = learner.cluster[code] == learner.group ? counted.inside : counted.outside;
        side.cases += all[code].cases;
        side.controls += all[code].controls;
        seen += all[code].all();
    }
    counted.missing = static_cast<int>(cases_ + controls_) - seen;
    return counted;
}

Json Writer::base_learner(const BaseLearner& learner, int set, double difference) const {
    Json out = Json::object();
    out["id"] = learner.id;
    out["marker_set"] = set;
    out["markers"] = Json::array();
    for (int l = 0; l < learner.markers; ++l) out["markers"].push_back(marker(learner.marker[l]));
    out["group"] = learner.group + 1;
    out["cells"] = Json::array();
    const std::vector<CellCount> all = cells(learner);
    for (std::size_t code = 0; code < all.size(); ++code) {
        if (learner.cluster[code] != learner.group || all[code].all() == 0) continue;
        out["cells"].push_back(genotype_of(static_cast<int>(code), learner.markers));
    }
    const InAndOut counted = count(learner);
    out["coefficient"] = learner.beta;
    out["risk_difference"] = difference;
    out["inside"] = {{"cases", counted.inside.cases}, {"controls", counted.inside.controls}};
    out["outside"] = {{"cases", counted.outside.cases}, {"controls", counted.outside.controls}};
    out["missing"] = counted.missing;
    return out;
}

Json Writer::marker_set(const BaseLearner& learner, int number) const {
    Json out = Json::object();
    out["id"] = number;
    out["markers"] = Json::array();
    for (int l = 0; l < learner.markers; ++l) {
        out["markers"].push_back(marker(learner.marker[l])["name"]);
    }
    const std::vector<CellCount> all = cells(learner);
    std::set<int> groups;
    Json table = Json::array();
    for (std::size_t code = 0; code < all.size(); ++code) {
        // A genotype that nobody has is in no group.
        const bool seen = all[code].all() > 0;
        if (seen) groups.insert(learner.cluster[code]);
        table.push_back({{"genotype", genotype_of(static_cast<int>(code), learner.markers)},
                         {"cases", all[code].cases},
                         {"controls", all[code].controls},
                         {"group", seen ? Json(learner.cluster[code] + 1) : Json(nullptr)}});
    }
    out["groups"] = groups.size();
    out["cells"] = std::move(table);
    return out;
}

Json Writer::markers() const {
    std::map<int, double> importance;
    double total = 0;
    for (const BaseLearner& learner : run_.result.learners) {
        for (int l = 0; l < learner.markers; ++l) {
            importance[learner.marker[l]] += learner.importance;
            total += learner.importance;
        }
    }
    Json out = Json::array();
    for (const int rank : run_.result.markers) {
        const MarkerRow row = run_.rows.row(run_.result.columns[rank - 1]);
        Json entry = marker(rank);
        entry["importance"] = 100 * importance[rank] / total;
        entry["p_min"] = number_or_null(row.p_min);
        entry["emp2"] = number_or_null(row.emp2);
        out.push_back(std::move(entry));
    }
    return out;
}

}  // namespace

nlohmann::ordered_json model_json(const ModelDescription& run) {
    return Writer(run).whole();
}

nlohmann::json read_model(const std::string& path) {
    const std::string text = read_whole_file(path);
    nlohmann::json model;
    if (nesting_of(text) <= kDeepest) model = nlohmann::json::parse(text, nullptr, false);
    const auto has = [&](const char* key, const nlohmann::json& value) {
        return model.is_object() && model.contains(key) && model[key] == value;
    };
    if (!has("format", kFormat) || !has("format_version", kFormatVersion)) {
        input_error(path, 0,
                    "is no description of a model; a model.json of vort run, format version " +
                        std::to_string(kFormatVersion) + ", expected");
    }
    return model;
}

}  // namespace vort
