// The stagewise path told as plainly as it can be, for the fast one to agree with: a turned column
// really is searched for a second time, every sum is taken on its own.
#pragma once

#include <algorithm>
#include <cmath>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "common/number_text.h"

namespace vort::testing {

using Columns = std::vector<std::vector<double>>;

// What a path works on and what it leaves.
struct Path {
    Path(Columns x_in, std::vector<double> y_in, int limit_in = 50)
        : x(std::move(x_in)), y(std::move(y_in)), limit(limit_in), beta(x.size(), 0.0) {
        e.assign(std::min({std::max<std::size_t>(limit, 1) - 1, x.size(), y.size()}) + 1,
                 std::vector<double>(y.size(), 0.0));
    }

    template <typename... T>
    void print(const T&... items) {
        std::ostringstream text;
        (text << ... << items);
        printed += text.str();
    }

    Columns x;
    std::vector<double> y;
    int limit;
    std::vector<double> beta;
    Columns e;
    int stop = -1;
    double ratio = -1.0;
    std::string printed;
};

enum class End { kAllSteps, kGrew, kStagnant, kNoResidual, kNoCoefficient };

inline double plain_product(const std::vector<double>& a, const std::vector<double>& b) {
    double sum = 0.0;
    for (std::size_t i = 0; i < a.size(); ++i) sum += a[i] * b[i];
    return sum;
}

inline void negate(std::vector<double>& values) {
    for (double& value : values) value = -value;
}

inline End plain_steps(Path& p, std::vector<double>& rss, std::vector<std::size_t>& order,
                       std::vector<bool>& negative) {
    const std::size_t n = p.y.size();
    std::vector<double> c(p.x.size()), rest;
    std::vector<bool> active(p.x.size(), false);
    p.e[0] = p.y;
    rss = {plain_product(p.y, p.y)};
    for (std::size_t k = 0; k + 1 < p.e.size(); ++k) {
        const double s = std::sqrt(rss[k] / (static_cast<double>(n) - 1));
        if (s == 0.0) {
            p.print("Residual prediction error vector E[", k, "] is zero, at ", k, " step !\n");
            return End::kNoResidual;
        }
        for (bool positive = true;; positive = false) {
            std::size_t best = c.size();
            for (std::size_t j = 0; j < c.size(); ++j) {
                if (active[j]) continue;
                c[j] = plain_product(p.x[j], p.e[k]);
                if (c[j] < 0) negative[j] = true;
                c[j] /= s;
                if (best == c.size() || std::fabs(c[j]) > std::fabs(c[best])) best = j;
            }
            p.beta[best] = c[best] * s;
            if (p.beta[best] == 0.0) return End::kNoCoefficient;
            const bool turn = negative[best] && positive;
            p.print("find ", turn ? "negative" : "positive", " coefficient at ", best, " beta[",
                    best, "]=", general(p.beta[best]), '\n');
            if (turn) negate(p.x[best]);
            if (turn) continue;
            active[best] = true;
            order[best] = k + 1;
            break;
        }
        rest.push_back(0.0);
        for (std::size_t j = 0; j < c.size(); ++j) {
            if (!active[j]) rest[k] = std::max(rest[k], std::fabs(c[j]));
        }
        for (std::size_t i = 0; i < n; ++i) {
            double fit = 0.0;
            for (std::size_t j = 0; j < c.size(); ++j) {
                if (p.beta[j] != 0.0) fit += p.beta[j] * p.x[j][i];
            }
            p.e[k + 1][i] = p.y[i] - fit;
        }
        const double left = plain_product(p.e[k + 1], p.e[k + 1]);
        if (k > 0 && rss[k] < left) return End::kGrew;
        rss.push_back(left);
        p.print("k=", k + 1, ",error=", fixed(left, 13, 15), " nRow=", n, " E2[k] =", fixed(rss[k]),
                " sigma2=", fixed(rss[0] / static_cast<double>(n)), "\n\n");
        if (k > 10 &&
            (rest[k - 10] - rest[k] < 0.05 * rest[0] || rss[k - 10] - rss[k] < 0.01 * rss[0])) {
            return End::kStagnant;
        }
    }
    return End::kAllSteps;
}

inline End plain_walk(Path& p) {
    std::vector<double> rss, cp;
    std::vector<std::size_t> order(p.x.size(), std::max(p.x.size(), p.y.size()));
    std::vector<bool> negative(p.x.size(), false);
    const End end = plain_steps(p, rss, order, negative);
    p.ratio = 0.0;
    if (end == End::kNoResidual || end == End::kNoCoefficient) return end;
    p.stop = 0;
    for (int j = 0; j < std::ssize(rss); ++j) {
        const auto degrees = static_cast<int>(std::ssize(p.y) - std::ssize(rss));
        cp.push_back(degrees * rss[j] / rss.back() + 0.5 * j);
        if (cp[j] < cp[p.stop]) p.stop = j;
        p.print("Cp[", j, "]=", general(cp[j]), '\n');
    }
    p.ratio = cp[p.stop] / cp[0];
    for (std::size_t j = 0; j < p.x.size(); ++j) {
        if (order[j] > static_cast<std::size_t>(p.stop)) p.beta[j] = 0.0;
        if (!negative[j]) continue;
        p.beta[j] = -p.beta[j];
        negate(p.x[j]);
    }
    p.print("stopstep=", p.stop, "\nCp return value=", general(p.ratio), '\n');
    return end;
}

}  // namespace vort::testing
