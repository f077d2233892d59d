#include "numeric/generator.h"

#include <algorithm>
#include <vector>

#include "numeric/draw_kernel.h"

namespace vort {

namespace {

// One of the three parts: state' = multiplier * state mod modulus.
template <int kMultiplierOfPart, int kModulusOfPart, int kFirstOfPart>
struct Part {
    static constexpr int kMultiplier = kMultiplierOfPart;
    static constexpr int kModulus = kModulusOfPart;
    static constexpr int kFirst = kFirstOfPart;

    // Of residues; keeps the sign.
    static int product(int a, int b) { return a * b % kModulus; }

    static int power(std::uint64_t exponent) {
        int result = 1;
        for (int base = kMultiplier; exponent > 0; exponent /= 2, base = product(base, base)) {
            if (exponent % 2 == 1) result = product(result, base);
        }
        return result;
    }
};

using PartX = Part<171, 30269, 1>;
using PartY = Part<172, 30309, 3>;
using PartZ = Part<170, 30323, 5>;

// The states of a part that follow from its first one. Behind the last quotient stand those of the
// next stretch, from the beginning of the cycle.
template <typename P>
class Cycle {
  public:
    Cycle() : place_(P::kModulus, kNowhere) {
        int length = 0;
        for (int state = P::kFirst; place_[state] == kNowhere; ++length) {
            place_[state] = static_cast<std::uint16_t>(length);
            quotient_.push_back(state / static_cast<double>(P::kModulus));
            state = P::product(P::kMultiplier, state);
        }
        // The first draw made from the last state takes the second quotient.
        for (int k = 0; k <= Generator::kStretch; ++k) quotient_.push_back(quotient_[k]);
    }

    // The quotients of the draws made from a state; none if it is not on the cycle.
    const double* after(int state) const {
        if (state < 0 || place_[state] == kNowhere) return nullptr;
        return quotient_.data() + place_[state] + 1;
    }

  private:
    static constexpr std::uint16_t kNowhere = 0xFFFF;  // no modulus is as large

    std::vector<std::uint16_t> place_;
    std::vector<double> quotient_;
};

struct Cycles {
    Cycle<PartX> x;
    Cycle<PartY> y;
    Cycle<PartZ> z;
};

const Cycles& cycles() {
    static const Cycles made;
    return made;
}

}  // namespace

Generator::Skip::Skip(std::uint64_t draws)
    : x_(PartX::power(draws)), y_(PartY::power(draws)), z_(PartZ::power(draws)) {}

Generator::Generator(int x, int y, int z)
    : x_(x % PartX::kModulus), y_(y % PartY::kModulus), z_(z % PartZ::kModulus) {}

double Generator::next() {
    x_ = PartX::product(PartX::kMultiplier, x_);
    y_ = PartY::product(PartY::kMultiplier, y_);
    z_ = PartZ::product(PartZ::kMultiplier, z_);
    const double sum = x_ / 30269.0 + y_ / 30309.0 + z_ / 30323.0;
    return sum - static_cast<int>(sum);
}

void Generator::skip(const Skip& draws) {
    x_ = PartX::product(draws.x_, x_);
    y_ = PartY::product(draws.y_, y_);
    z_ = PartZ::product(draws.z_, z_);
}

void Generator::positions(int n, int left, int* out) {
    static const Skip whole_stretch(kStretch);
    const auto draw =
        kernel_for(best_instructions(), []<Instructions I>() { return DrawKernel<I>::positions; });
    for (int done = 0; done < n;) {
        const std::optional<Stretch> from = stretch();
        if (!from) {
            out[done] = static_cast<int>((left - done) * next());
            ++done;
            continue;
        }
        const int size = std::min(n - done, kStretch);
        draw(*from, size, left - done, out + done);
        skip(size == kStretch ? whole_stretch : Skip(static_cast<std::uint64_t>(size)));
        done += size;
    }
}

std::optional<Generator::Stretch> Generator::stretch() const {
    const Cycles& all = cycles();
    const Stretch out{all.x.after(x_), all.y.after(y_), all.z.after(z_)};
    if (out.x == nullptr || out.y == nullptr || out.z == nullptr) return std::nullopt;
    return out;
}

}  // namespace vort
