#include "screening/fdr_report.h"

#include <algorithm>
#include <iostream>
#include <sstream>

#include "common/end_program.h"
#include "common/number_text.h"
#include "numeric/index_sort.h"
#include "screening/globals.h"
#include "screening/snp_index.h"

namespace vort {

namespace {

constexpr double kLevel = 0.05;
constexpr int kListedWithoutFinding = 50;

using Locate = int (*)(int, int*, int*);
using FindName = const char* (*)(int, int*, int*);

// 1-based marker numbers in ascending order of their p-values, elements 1 .. Marker.
std::vector<int> order_by_pvalue(std::vector<double> pvalue) {
    std::vector<int> order(pvalue.size());
    Quickindex(pvalue.data(), order.data(), Marker);
    return order;
}

// One list of markers; `model_of` names the model that gave a marker's p-value.
template <typename Put, typename ModelOf>
void write_list(Put put, const std::vector<double>& pvalue, const std::vector<int>& order,
                int count, Locate locate, FindName find_name, ModelOf model_of) {
    const int listed = std::min(count >= 1 ? count : kListedWithoutFinding, Marker);
    for (int k = 1; k <= listed; ++k) {
        const int number = order[k];
        int chromosome = 0;
        int locus = 0;
        locate(number, &chromosome, &locus);
        const char* name = find_name(number, &chromosome, &locus);
        std::ostringstream out;
        out << (count < 1 ? "FDR reject Marker=" : "FDR find Marker=") << number
            << "\t name = " << name << "\t locus=" << locus
            << "\t pvalue=" << general(pvalue[number])
            << " corresponding  model=" << modelname[model_of(number)] << '\n';
        put(out.str());
    }
}

std::string heading(int model, int count) {
    return std::string("model=") + modelname[model] +
           " # of satisfy FDR marker, i. e.  len=" + std::to_string(count) + '\n';
}

}  // namespace

int false_discovery_count(const std::vector<double>& pvalue, const std::vector<int>& order,
                          double level, double divisor) {
    int k = Marker;
    while (k > 0 && !(pvalue[order[k]] <= k * level / divisor / Marker)) --k;
    return k;
}

FdrReport::FdrReport() : file_("FDR_results.txt", OutputFile::Mode::kTruncate) {
    if (!file_.is_open()) {
        std::cout << "find error to open FDR_results.txt\n";
        end_program();
    }
}

// The marker table is first looked at behind the first heading, and may end the program there.
void FdrReport::write(const MarkerPvalues& all, const std::vector<int>& minimum_order) {
    const auto put = [this](const std::string& text) {
        std::cout << text;
        file_ << text;
        file_.stream().flush();
    };
    for (int model = 0; model < kModels; ++model) {
        const std::vector<double>& pvalue = all.model[model];
        const std::vector<int> order = order_by_pvalue(pvalue);
        const int count = false_discovery_count(pvalue, order, kLevel, 1);
        put(heading(model, count));
        write_list(put, pvalue, order, count, return_chromosome_and_locus, findSNPname,
                   [model](int) { return model; });
    }
    const int count = false_discovery_count(all.minimum, minimum_order, kLevel, kModels);
    put(heading(kModels, count));
    write_list(put, all.minimum, minimum_order, count, return_chromosome_and_locus1, findSNPname1,
               [&all](int number) { return all.minimum_model[number]; });
}

}  // namespace vort
