// The stagewise path told as plainly as it can be, for the fast one to agree with: a turned column
// really is searched for a second time, every sum is taken on its own.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>
#include <utility>
#include <vector>

namespace vort::testing {

using Columns = std::vector<std::vector<double>>;

// What a path works on and what it leaves.
struct Path {
    Path(Columns x_in, std::vector<double> y_in, int limit_in = 50)
        : x(std::move(x_in)), y(std::move(y_in)), limit(limit_in), beta(x.size(), 0.0) {
        const std::size_t steps =
            std::min({static_cast<std::size_t>(std::max(limit - 1, 0)), x.size(), y.size()});
        e.assign(steps + 1, std::vector<double>(y.size(), 0.0));
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

inline std::string text_of(const char* format, double value) {
    char buffer[400];
    std::snprintf(buffer, sizeof buffer, format, std::isnan(value) ? -std::fabs(value) : value);
    return buffer;
}

inline double plain_product(const std::vector<double>& a, const std::vector<double>& b) {
    double sum = 0.0;
    for (std::size_t i = 0; i < a.size(); ++i) sum += a[i] * b[i];
    return sum;
}

inline End plain_steps(Path& p, std::vector<double>& rss, std::vector<int>& order,
                       std::vector<bool>& negative, int& accepted) {
    const int n = static_cast<int>(p.y.size());
    const int columns = static_cast<int>(p.x.size());
    std::vector<double> c(p.x.size()), rest;
    std::vector<bool> active(p.x.size(), false);
    p.e[0] = p.y;
    rss.push_back(plain_product(p.e[0], p.e[0]));
    for (int k = 0; k < std::min({p.limit - 1, columns, n}); ++k) {
        const double s = std::sqrt(rss[k] / (n - 1));
        if (s == 0.0) {
            const std::string step = std::to_string(k);
            p.printed += "Residual prediction error vector E[" + step + "] is zero, at " + step +
                         " step !\n";
            return End::kNoResidual;
        }
        for (bool positive = true;; positive = false) {
            int best = -1;
            for (int j = 0; j < columns; ++j) {
                if (active[j]) continue;
                c[j] = plain_product(p.x[j], p.e[k]);
                if (c[j] < 0) negative[j] = true;
                c[j] /= s;
                if (best < 0 || std::fabs(c[j]) > std::fabs(c[best])) best = j;
            }
            active[best] = true;
            p.beta[best] = c[best] * s;
            if (p.beta[best] == 0.0) return End::kNoCoefficient;
            const bool turn = negative[best] && positive;
            p.printed += std::string("find ") + (turn ? "negative" : "positive") +
                         " coefficient at " + std::to_string(best) + " beta[" +
                         std::to_string(best) + "]=" + text_of("%g", p.beta[best]) + "\n";
            if (!turn) {
                order[best] = k + 1;
                break;
            }
            for (double& value : p.x[best]) value = -value;
            active[best] = false;
        }
        rest.push_back(0.0);
        for (int j = 0; j < columns; ++j) {
            if (!active[j]) rest[k] = std::max(rest[k], std::fabs(c[j]));
        }
        for (int i = 0; i < n; ++i) {
            double fit = 0.0;
            for (int j = 0; j < columns; ++j) {
                if (p.beta[j] != 0.0) fit += p.beta[j] * p.x[j][i];
            }
            p.e[k + 1][i] = p.y[i] - fit;
        }
        rss.push_back(plain_product(p.e[k + 1], p.e[k + 1]));
        if (k > 0 && rss[k] < rss[k + 1]) return End::kGrew;
        accepted = k + 1;
        p.printed += "k=" + std::to_string(k + 1) + ",error=" + text_of("%15.13f", rss[k + 1]) +
                     " nRow=" + std::to_string(n) + " E2[k] =" + text_of("%f", rss[k]) +
                     " sigma2=" + text_of("%f", rss[0] / n) + "\n\n";
        if (k > 10 &&
            (rest[k - 10] - rest[k] < 0.05 * rest[0] || rss[k - 10] - rss[k] < 0.01 * rss[0])) {
            return End::kStagnant;
        }
    }
    return End::kAllSteps;
}

inline End plain_walk(Path& p) {
    std::vector<double> rss;
    std::vector<int> order(p.x.size(), static_cast<int>(std::max(p.x.size(), p.y.size())));
    std::vector<bool> negative(p.x.size(), false);
    int accepted = 0;
    const End end = plain_steps(p, rss, order, negative, accepted);
    p.ratio = 0.0;
    if (end == End::kNoResidual || end == End::kNoCoefficient) return end;
    std::vector<double> cp;
    p.stop = 0;
    for (int j = 0; j <= accepted; ++j) {
        const int degrees = static_cast<int>(p.y.size()) - accepted - 1;
        cp.push_back(degrees * rss[j] / rss[accepted] + 0.5 * j);
        if (cp[j] < cp[p.stop]) p.stop = j;
        p.printed += "Cp[" + std::to_string(j) + "]=" + text_of("%g", cp[j]) + "\n";
    }
    p.ratio = cp[p.stop] / cp[0];
    for (std::size_t j = 0; j < p.x.size(); ++j) {
        if (order[j] > p.stop) p.beta[j] = 0.0;
        if (!negative[j]) continue;
        p.beta[j] = -p.beta[j];
        for (double& value : p.x[j]) value = -value;
    }
    p.printed +=
        "stopstep=" + std::to_string(p.stop) + "\nCp return value=" + text_of("%g", p.ratio) + "\n";
    return end;
}

}  // namespace vort::testing
