// What the screening hands over: genotypes by individual and column, and for every data set a row
// of phenotypes and a ranking of the columns.
#pragma once

#include <numeric>
#include <string>
#include <utility>
#include <vector>

namespace vort::testing {

class Study {
  public:
    // A string for each individual, a character for each column: 0, 1, 2, or '-' for missing. One
    // data set, its ranking the order of the columns.
    Study(std::vector<std::string> genotypes, std::vector<short> phenotype)
        : genotypes_(std::move(genotypes)) {
        for (std::string& row : genotypes_) {
            for (char& c : row) c = static_cast<char>(c == '-' ? -1 : c - '0');
        }
        std::vector<int> ranking(genotypes_[0].size());
        std::iota(ranking.begin(), ranking.end(), 0);
        add_data_set(std::move(phenotype), std::move(ranking));
    }

    void add_data_set(std::vector<short> phenotype, std::vector<int> ranking) {
        phenotypes_.push_back(std::move(phenotype));
        rankings_.push_back(std::move(ranking));
        x_ = pointers<char*>(genotypes_);
        y_ = pointers<short*>(phenotypes_);
        r_ = pointers<int*>(rankings_);
    }

    int individuals() const { return static_cast<int>(genotypes_.size()); }
    int markers() const { return static_cast<int>(rankings_[0].size()); }
    int data_sets() const { return static_cast<int>(rankings_.size()); }
    char** x() { return x_.data(); }
    short** y() { return y_.data(); }
    int** rankings() { return r_.data(); }

  private:
    template <typename Pointer, typename Rows>
    static std::vector<Pointer> pointers(Rows& rows) {
        std::vector<Pointer> result;
        for (auto& row : rows) result.push_back(row.data());
        return result;
    }

    std::vector<std::string> genotypes_;
    std::vector<std::vector<short>> phenotypes_;
    std::vector<std::vector<int>> rankings_;
    std::vector<char*> x_;
    std::vector<short*> y_;
    std::vector<int*> r_;
};

}  // namespace vort::testing
