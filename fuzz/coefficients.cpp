// The coefficient file, "beta.txt": the whole input.
#include <cmath>
#include <memory>

#include "lars/selector.h"
#include "legacy/importance.h"
#include "support/files.h"
#include "support/harness.h"

namespace vort::fuzz {

namespace {

struct Coefficients {
    int columns = 0;
    int lines = 0;
    std::unique_ptr<double[]> beta, mean_square;
};

Coefficients read(const std::string& path) {
    Coefficients read;
    double* beta = nullptr;
    double* mean_square = nullptr;
    read.columns = readbeta(path.c_str(), &beta, &read.lines, &mean_square);
    read.beta.reset(beta);
    read.mean_square.reset(mean_square);
    return read;
}

// As a selection would have written what was read.
Selection selection_of(const Coefficients& coefficients) {
    Selection selection;
    for (int j = 0; j < coefficients.columns; ++j) {
        const auto at = static_cast<std::size_t>(j);
        selection.beta.push_back(coefficients.beta[at]);
        selection.mean_square.push_back(coefficients.mean_square[at]);
        if (coefficients.beta[at] != 0) ++selection.nonzero;
    }
    return selection;
}

void run(std::string_view input) {
    static Files files;
    static const bool silent = (silence_streams(), true);
    require(silent, "nothing is printed");
    const Coefficients once = read(files.put("beta.txt", input));
    constexpr int kMost = 10000;  // that take no time to go through
    if (once.columns <= 0 || once.columns > kMost) return;
    const std::string text = coefficient_text(selection_of(once));
    const std::string again = coefficient_text(selection_of(read(files.put("again.txt", text))));
    require(again == text, "coefficients are read as they were written");
}

}  // namespace

}  // namespace vort::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    vort::fuzz::run(vort::fuzz::text_of(data, size));
    return 0;
}
