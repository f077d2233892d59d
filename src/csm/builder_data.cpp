#include "csm/builder_data.h"

#include <algorithm>
#include <numeric>

#include "common/parallel.h"
#include "common/workspaces.h"

namespace vort {

bool is_quantity(short phenotype) {
    return phenotype != 0 && phenotype != 1;
}

BuilderData::BuilderData(const BuilderInput& input, const BuilderSettings& settings,
                         bool quantitative, int threads)
    : order_(static_cast<std::size_t>(settings.individuals)),
      y_(input.phenotypes.begin(), input.phenotypes.begin() + settings.individuals),
      quantitative_(quantitative ||
                    std::any_of(input.phenotypes.begin(),
                                input.phenotypes.begin() + settings.individuals, is_quantity)),
      planes_(settings.individuals, settings.usable_markers()),
      frequencies_(static_cast<std::size_t>(settings.usable_markers())),
      missing_before_(frequencies_.size() + 1) {
    std::iota(order_.begin(), order_.end(), 0);
    spread_cases();
    if (input.clusters != nullptr) clusters_ = input.clusters->placed(order_);
    centre();
    const auto room = 2 * static_cast<std::size_t>(input.genotypes.individuals());
    Workspaces<std::vector<signed char>> spaces([room] { return std::vector<signed char>(room); });
    constexpr std::size_t kAtOnce = 32;
    for_each_stretch(threads, frequencies_.size(), kAtOnce, [&](std::size_t j, std::size_t end) {
        const auto space = spaces.borrow();
        for (; j < end; ++j) take_marker(input, static_cast<int>(j), *space);
    });
    for (std::size_t j = 0; j < frequencies_.size(); ++j) {
        missing_before_[j + 1] = missing_before_[j] + frequencies_[j].missing;
    }
}

BuilderData::BuilderData(PlacedData placed)
    : order_(placed.phenotype.size()),
      y_(std::move(placed.phenotype)),
      sigma_(placed.sigma),
      cases_(placed.cases),
      quantitative_(placed.quantitative),
      planes_(std::move(placed.planes)),
      frequencies_(static_cast<std::size_t>(planes_.markers())),
      missing_before_(frequencies_.size() + 1) {
    std::iota(order_.begin(), order_.end(), 0);
}

// First all cases to the front, by exchanges from both ends; then the second half of them with the
// first individuals of the second half.
void BuilderData::spread_cases() {
    const int n = individuals();
    const auto exchange = [this](int a, int b) {
        std::swap(y_[a], y_[b]);
        std::swap(order_[a], order_[b]);
    };
    const auto is_case = [this](int i) { return y_[i] > 0; };
    cases_ = static_cast<int>(std::count_if(y_.begin(), y_.end(), [](double y) { return y > 0; }));
    int left = 0;
    int right = cases_;
    for (;;) {
        while (left < cases_ && is_case(left)) ++left;
        while (right < n && !is_case(right)) ++right;
        if (left >= cases_ || right >= n) break;
        exchange(left, right);
    }
    for (int l = cases_ / 2, r = n / 2; l < cases_ && r < n; ++l, ++r) exchange(l, r);
}

void BuilderData::centre() {
    double sum = 0;
    for (const double y : y_) sum += y;
    mean_ = sum / individuals();
    double squares = 0;
    for (double& y : y_) {
        y -= mean_;
        squares += y * y;
    }
    sigma_ = squares / individuals();
}

void BuilderData::take_marker(const BuilderInput& input, int marker,
                              std::vector<signed char>& space) {
    const std::span<signed char> codes(space.data(), space.size() / 2);
    const std::span<signed char> placed(space.data() + codes.size(), y_.size());
    input.genotypes.unpack(input.best[marker], codes.data());
    std::array<int, 4> count{};  // missing, 0, 1, 2
    for (std::size_t i = 0; i < placed.size(); ++i) {
        const signed char code = codes[order_[i]];
        placed[i] = code;
        ++count[code + 1];
    }
    planes_.set(marker, placed);
    const double known = individuals() - count[0];
    frequencies_[marker] = {count[0], count[1] / known, count[2] / known};
}

bool BuilderData::is_case_control() const {
    return !quantitative_ && cases_ > 0 && cases_ < individuals();
}

}  // namespace vort
