// Settings of a CSM: built-in defaults, then its own reading of "parameter.txt", then the settings
// that the analysis fixes.
#include <algorithm>
#include <array>
#include <climits>
#include <iostream>

#include "common/memory_check.h"
#include "legacy/csm.h"
#include "legacy/default_objects.h"
#include "legacy/globals.h"
#include "legacy/on_console.h"
#include "legacy/parameter_readers.h"
#include "numeric/combinations.h"

namespace vort {

namespace {

constexpr std::array<const char*, 6> kStrategyNames = {"newCSM",  "oldCSM",  "zzgtest",
                                                       "onlyCSM", "tmptest", "CSMplus1Marker"};
constexpr int kStrategies = static_cast<int>(kStrategyNames.size());

bool is_share(double value) {
    return value > 0 && value <= 1;
}

void copy_text(const std::string& text, char (&out)[100]) {
    out[text.copy(out, sizeof out - 1)] = '\0';
}

}  // namespace

CSM::CSM(char* datapath_wanted)
    : choose_table(0, -1, 0, -1), Tgen(1, 0, 1, 0), yy(1, 0), first_codes{}, last_codes{} {
    init_default_parameter(datapath_wanted);
    allocate();
    if (test_method_print == 1) {
        test_method_print = 0;
        std::cout << "test_method=" << kStrategyNames[method_request % kStrategies] << '\n';
    }
}

void CSM::init_default_parameter(char* datapath_wanted) {
    csm_mode = 0;
    csm_replicate = 2;
    Number_of_permutation = 0;
    marker_num = 20;
    Sample_size = 400;
    Max_retain = 1;
    max_order = 3;
    permutation_mode = 0;
    quantitative_trait = 0;
    Head = 1;
    Recorder_num = 0;
    FDR_cutoff = 0.75;
    alpha = 0.05;
    csm_count = 5;
    ntru = 3;
    csm_flag_b = 0;
    skip_read = 0;
    test_method = 0;
    datapath = datapath_wanted;
    method_request = 0;
    FDR_request = 0;
    alpha_request = 0.05;
    data_ready = 0;
    How_many_imputation_to_deal_with_missing = 0;
    Best_m = marker_num;
    Symbol_of_missing_Gentype[0] = '\0';
    Inputfile[0] = '\0';
    ReadPara();
    if (is_share(FDR_request)) FDR_cutoff = FDR_request;
    if (is_share(alpha_request)) alpha = alpha_request;
    if (method_request >= 0 && method_request < kStrategies) test_method = method_request;
    case_num = Sample_size / 2;
    sigma = 0;
}

void CSM::ReadPara() {
    const ParameterFile file = read_parameters_on_console();
    for (const ParameterEntry& entry : file.dispatched()) store_parameter(entry);
    Best_m = std::min(Best_m, marker_num);
    max_order = Best_m < 1 ? 1 : 2;
    alpha_request = 0.05;
    csm_replicate = 1;
    ntru = 2;
    method_request = 0;
}

// Whole numbers are rounded here, where the other readers of the file cut them.
void CSM::store_parameter(const ParameterEntry& entry) {
    struct Row {
        Parameter parameter;
        int CSM::*field;
    };
    static constexpr std::array<Row, 9> kRows = {{
        {Parameter::kSampleSize, &CSM::Sample_size},
        {Parameter::kMaxRetain, &CSM::Max_retain},
        {Parameter::kHead, &CSM::Head},
        {Parameter::kRecorder, &CSM::Recorder_num},
        {Parameter::kBestM, &CSM::Best_m},
        {Parameter::kBestM, &CSM::marker_num},
        {Parameter::kImputations, &CSM::How_many_imputation_to_deal_with_missing},
        {Parameter::kReplicates, &CSM::csm_replicate},
        {Parameter::kPermutations, &CSM::Number_of_permutation},
    }};
    const Parameter parameter = parameter_of(entry.name);
    for (const Row& row : kRows) {
        if (row.parameter == parameter) this->*row.field = rounded_to_int(entry.value);
    }
    if (parameter == Parameter::kFdrCutoff) FDR_request = static_cast<double>(entry.value);
    if (parameter == Parameter::kInputFile) copy_text(entry.text, Inputfile);
    if (parameter == Parameter::kMissingSymbol) copy_text(entry.text, Symbol_of_missing_Gentype);
}

void CSM::allocate() {
    const int m = usable_markers();
    const double bytes = static_cast<double>(Sample_size) * (4.0 * m + m / 8.0 + 64.0);
    on_console([&](Transcript&) {
        require_memory(bytes,
                       "the " + std::to_string(marker_num) + " best markers (Best_m) of " +
                           std::to_string(Sample_size) + " individuals (Sample_size)",
                       default_objects().diagnostics);
        if (m / 2.0 * (m - 1.0) <= INT_MAX) return 0;
        default_objects().diagnostics.say("sizes out of range", kParameterFileName, 0,
                                          "Best_m: at most 65536 was expected, not " +
                                              std::to_string(marker_num) +
                                              "; the pairs of more markers cannot be numbered");
        stop("");
    });
    choose_table = OffsetMatrix<int>(0, m, 0, max_order);
    Tgen = OffsetMatrix<int>(1, Sample_size, 1, m);
    yy = OffsetVector<double>(1, Sample_size);
    missing_storage_.assign(static_cast<std::size_t>(Sample_size) + 1,
                            bitset(static_cast<unsigned long>(m) + 1));
    missing_set.clear();
    for (bitset& markers : missing_storage_) missing_set.push_back(&markers);
}

BuilderSettings CSM::settings() const {
    BuilderSettings settings;
    settings.individuals = Sample_size;
    settings.markers = marker_num;
    settings.max_retain = Max_retain;
    settings.permutations = Number_of_permutation;
    settings.fdr_cutoff = FDR_cutoff;
    settings.alpha = alpha;
    settings.clustering = clustermethod;
    return settings;
}

int CSM::choose(int i, int j) const {
    return vort::choose(i, j);
}

void CSM::fill_choose_table() {
    for (int i = 0; i <= usable_markers(); ++i) {
        for (int j = 0; j <= max_order; ++j) choose_table[i][j] = choose(i, j);
    }
    data_ready = 1;
}

}  // namespace vort
