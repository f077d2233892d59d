// What the page shows of model.json, as plain values.
#pragma once

#include <limits>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "prediction/evaluation.h"

namespace vort {

constexpr double kUnknown = std::numeric_limits<double>::quiet_NaN();

struct Locus {
    std::string name;
    int chromosome = 0;
    long position = 0;
    std::string a1, a2;  // a1 is counted; empty, "0" or "." where it is not known
    int rank = 0;
};

struct Tally {
    int cases = 0;
    int controls = 0;

    int all() const { return cases + controls; }
};

struct Learner {
    int id = 0;
    int marker_set = 0;
    std::vector<Locus> markers;  // one or two
    int group = 0;
    std::vector<std::vector<int>> cells;  // copies of A1 of each marker
    double coefficient = kUnknown;
    double risk_difference = kUnknown;
    Tally inside, outside;
    int missing = 0;
};

struct GenotypeCell {
    Tally people;
    int group = kNobody;

    static constexpr int kNobody = -1;  // has the genotype
};

struct ShownSet {
    int id = 0;
    std::vector<Locus> markers;
    std::vector<GenotypeCell> cells;  // 3 or 9 by copies of A1, first marker outer
};

struct WeighedMarker {
    Locus locus;
    double importance = kUnknown;  // per cent
    double p_min = kUnknown;
    double emp2 = kUnknown;
};

struct LeftOutLine {
    std::string what;  // "individuals" or "markers"
    long count = 0;
    std::string why;
};

// How the model does on people who were held back, and on those it was made from.
struct HoldoutView {
    double fraction = kUnknown;
    long cases = 0, controls = 0;
    std::optional<Evaluation> unseen, training;  // without a model none
};

// Numbers are kUnknown where the run does not have them.
struct ModelView {
    std::string version;
    std::string format;
    std::vector<std::pair<std::string, std::string>> files;  // role and path
    long individuals_read = 0, individuals = 0, cases = 0, controls = 0;
    long markers_read = 0, markers = 0, dropped = 0;
    std::vector<LeftOutLine> left_out;
    std::vector<std::string> notes;
    std::vector<std::pair<std::string, std::string>> parameters;

    std::string within_file;  // of the clusters that permutations kept to; empty: none
    long clusters = 0;

    double lambda_gc = kUnknown;
    bool has_model = false;
    double T0 = kUnknown;
    long permutations = 0;
    long stronger = 0;  // permuted data sets with a stronger model than the study,
    long equal = 0;     // and with one as strong
    double p = kUnknown, p_plus_one = kUnknown, p_low = kUnknown, p_high = kUnknown;

    double intercept = kUnknown;
    std::vector<Learner> learners;
    std::vector<ShownSet> sets;
    std::vector<WeighedMarker> weighed;  // by decreasing importance

    std::optional<HoldoutView> holdout;  // where somebody was held back

    bool permuted() const { return permutations > 0; }
    long tested() const { return markers - dropped; }
    double study_share() const { return individuals > 0 ? double(cases) / double(individuals) : 0; }
};

// InputError where the shape is not that of docs/model.schema.json.
ModelView read_model_view(const nlohmann::json& model);

}  // namespace vort
