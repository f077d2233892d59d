// The screening once more, marker by marker and line by line: what faster forms are held against.
#pragma once

#include <algorithm>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "numeric/index_sort.h"
#include "screening/five_model_test.h"
#include "screening/globals.h"

namespace vort::testing {

// What a screening of the current `X` and `Y` prints, the seconds left out, and its ranking.
class PlainScreening {
  public:
    PlainScreening() : minimum_(Marker + 1), order_(Marker + 1) {
        for (int j = 0; j < Marker; ++j) test(j);
        Quickindex(minimum_.data(), order_.data(), Marker);  // ties as it leaves them
    }

    std::vector<int> ranking() const {
        std::vector<int> columns(order_.begin() + 1, order_.end());
        for (int& column : columns) --column;
        return columns;
    }

    std::string console() const {
        std::ostringstream out;
        for (const auto& list : listed_) out << list.text;
        for (int model = 0; model < 4; ++model) {
            out << "model=" << modelname[model]
                << " # of marker's pvalue<0.002=" << listed_[model].count << '\n';
        }
        out << "model=minimum   # of marker's pvalue<0.002/4=" << listed_[4].count << '\n';
        for (int model = 0; model < 4; ++model) {
            out << "model=" << modelname[model]
                << " # of marker's missing num than 20=" << dropped_[model]
                << " total_count_drop_diseasemaker=" << dropped_[4] << '\n';
        }
        for (int k = 1; k <= Marker; ++k) {
            out << k << " index=" << order_[k] << " pvalue=" << minimum_[order_[k]]
                << " ref=" << order_[k] - 1 << '\n';
        }
        return out.str();
    }

  private:
    void test(int j) {
        double pvalue[4];
        int cases[4], controls[4];
        calculate_pvalue4_and_freq(Y, X, Marker, Sample, j, pvalue, cases, controls);
        // The default share of missing genotypes.
        if (cases[3] > samplesize[1] / 20 || controls[3] > samplesize[0] / 20) {
            for (int model = 0; model < 4; ++model) dropped_[model] += pvalue[model] <= 0.002;
            ++dropped_[4];
            std::fill(pvalue, pvalue + 4, 1.0);
        }
        minimum_[j + 1] = *std::min_element(pvalue, pvalue + 4);
        for (int model = 0; model < 4; ++model) list(model, j, pvalue[model], 0.002);
        list(4, j, minimum_[j + 1], 0.0005);
    }

    void list(int model, int j, double p, double threshold) {
        if (!(p <= threshold)) return;
        std::ostringstream line;
        line << "model=" << modelname[model] << " i=" << j + 1 << " pvalue=" << p << '\n';
        listed_[model].text += line.str();
        ++listed_[model].count;
    }

    struct List {
        std::string text;
        int count = 0;
    };
    List listed_[5];
    int dropped_[5] = {};  // per model, then all
    std::vector<double> minimum_;
    std::vector<int> order_;
};

// A data set file of `Sample` rows and `Marker` markers; some markers follow the phenotype, every
// fourth misses genotypes.
inline std::string random_data_set(std::mt19937& random) {
    std::string text;
    const auto kinds = 2 + random() % 2;  // now and then a quantitative phenotype
    for (int i = 0; i < Sample; ++i) {
        const auto phenotype = i < 2 ? static_cast<unsigned long>(i) : random() % kinds;
        text += std::to_string(phenotype);
        for (int j = 0; j < Marker; ++j) {
            const auto missing = j % 4 == 0 ? 12U : 60U;
            const auto code = j % 5 == 0 && random() % 3 != 0 ? phenotype % 2 * 2 : random() % 3;
            text += random() % missing == 0 ? " -1" : ' ' + std::to_string(code);
        }
        text += '\n';
    }
    return text;
}

}  // namespace vort::testing
