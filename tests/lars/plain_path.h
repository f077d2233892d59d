// The stagewise path told as plainly as it can be, for the fast one to agree with: a turned column
// really is searched for a second time, every sum is taken on its own.
#pragma once

#include <algorithm>
#include <cmath>
#include <vector>

#include "common/transcript.h"

namespace vort::testing {

using Values = std::vector<double>;

enum class End { kAllSteps, kGrew, kStagnant, kNoResidual, kNoCoefficient };

// What a path works on and what it leaves.
struct Path {
    std::vector<Values> x;
    Values y;
    std::size_t max_steps = 49;
    Values beta = Values(x.size(), 0.0);
    Values residual = y;
    int step = -1;
    double ratio = -1.0;
    Transcript text = Transcript(true);
};

struct PlainPath {
    Path& p;
    std::vector<bool> negative = std::vector<bool>(p.x.size()), active = negative;
    std::vector<int> order = std::vector<int>(p.x.size());
    Values c = Values(p.x.size()), rest = {}, rss = {product(p.y, p.y)}, cp = {};

    static double product(const Values& a, const Values& b) {
        double sum = 0.0;
        for (std::size_t i = 0; i < a.size(); ++i) sum += a[i] * b[i];
        return sum;
    }
    void turn(std::size_t j) {
        for (double& value : p.x[j]) value = -value;
    }

    // False where no column can enter.
    bool enter(int k, double s, bool turned = false) {
        std::size_t best = c.size();
        for (std::size_t j = 0; j < c.size(); ++j) {
            if (active[j]) continue;
            c[j] = product(p.x[j], p.residual);
            if (c[j] < 0) negative[j] = true;
            c[j] /= s;
            if (best == c.size() || std::fabs(c[j]) > std::fabs(c[best])) best = j;
        }
        p.beta[best] = c[best] * s;
        if (p.beta[best] == 0.0) return false;
        const bool turns = negative[best] && !turned;
        p.text << "find " << (turns ? "negative" : "positive") << " coefficient at " << best
               << " beta[" << best << "]=" << general(p.beta[best]) << '\n';
        if (turns) turn(best);
        if (turns) return enter(k, s, true);
        active[best] = true;
        order[best] = k + 1;
        rest.push_back(0.0);
        for (std::size_t j = 0; j < c.size(); ++j) {
            if (!active[j]) rest[k] = std::max(rest[k], std::fabs(c[j]));
        }
        return true;
    }
    End step(int k) {
        const auto n = static_cast<double>(p.y.size());
        const double s = std::sqrt(rss[k] / (n - 1));
        if (s == 0.0) {
            p.text << "Residual prediction error vector E[" << k << "] is zero, at " << k
                   << " step !\n";
            return End::kNoResidual;
        }
        if (!enter(k, s)) return End::kNoCoefficient;
        for (std::size_t i = 0; i < p.y.size(); ++i) {
            double fit = 0.0;
            for (std::size_t j = 0; j < c.size(); ++j) {
                if (p.beta[j] != 0.0) fit += p.beta[j] * p.x[j][i];
            }
            p.residual[i] = p.y[i] - fit;
        }
        const double left = product(p.residual, p.residual);
        if (k > 0 && rss[k] < left) return End::kGrew;
        rss.push_back(left);
        p.text << "k=" << k + 1 << ",error=" << fixed(left, 13, 15) << " nRow=" << p.y.size()
               << " E2[k] =" << fixed(rss[k]) << " sigma2=" << fixed(rss[0] / n) << "\n\n";
        const bool stagnant = k > 10 && (rest[k - 10] - rest[k] < 0.05 * rest[0] ||
                                         rss[k - 10] - rss[k] < 0.01 * rss[0]);
        return stagnant ? End::kStagnant : End::kAllSteps;
    }
    void cut() {
        p.step = 0;
        for (int j = 0; j < std::ssize(rss); ++j) {
            const auto degrees = static_cast<int>(std::ssize(p.y) - std::ssize(rss));
            cp.push_back(degrees * rss[j] / rss.back() + 0.5 * j);
            if (cp[j] < cp[p.step]) p.step = j;
            p.text << "Cp[" << j << "]=" << general(cp[j]) << '\n';
        }
        p.ratio = cp[p.step] / cp[0];
        for (std::size_t j = 0; j < c.size(); ++j) {
            if (order[j] > p.step) p.beta[j] = 0.0;
            if (negative[j]) p.beta[j] = -p.beta[j];
            if (negative[j]) turn(j);
        }
        p.text << "stopstep=" << p.step << "\nCp return value=" << general(p.ratio) << '\n';
    }
};

inline End plain_walk(Path& p) {
    PlainPath path{p};
    const std::size_t steps = std::min({p.max_steps, p.y.size(), p.x.size()});
    End end = End::kAllSteps;
    for (int k = 0; end == End::kAllSteps && k < static_cast<int>(steps); ++k) end = path.step(k);
    if (end != End::kNoResidual && end != End::kNoCoefficient) path.cut();
    return end;
}

}  // namespace vort::testing
