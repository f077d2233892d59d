#include "numeric/draw_positions.h"

#include <algorithm>
#include <cstdint>
#include <vector>

#include "numeric/draw_kernel.h"
#include "numeric/random.h"

namespace vort {

namespace {

// One part of the generator: state' = factor * state mod modulus, from a first state on.
class Cycle {
  public:
    Cycle(int factor, int modulus, int first) : modulus_(modulus), place_(modulus, kNowhere) {
        for (int state = first; place_[state] == kNowhere; state = factor * state % modulus) {
            place_[state] = static_cast<std::uint16_t>(quotient_.size());
            quotient_.push_back(state / static_cast<double>(modulus));
            state_.push_back(static_cast<std::uint16_t>(state));
        }
    }

    // Where on the cycle a state is; kNowhere where it is not on it. `guess` may be the place,
    // which saves a look at a part of the table that no cache has.
    int place_of(int state, int guess) const {
        if (state_[guess] == state) return guess;
        return state >= 0 && state < modulus_ ? place_[state] : kNowhere;
    }
    int next(int place) const { return place + 1 == length() ? 0 : place + 1; }
    int length() const { return static_cast<int>(quotient_.size()); }
    int state(int place) const { return state_[place]; }
    const double* quotients(int place) const { return quotient_.data() + place; }

    static constexpr int kNowhere = 0xFFFF;  // no modulus is as large

  private:
    int modulus_;
    std::vector<std::uint16_t> place_;
    std::vector<std::uint16_t> state_;
    std::vector<double> quotient_;
};

struct Cycles {
    Cycle x{171, 30269, 1};
    Cycle y{172, 30309, 3};
    Cycle z{170, 30323, 5};
};

const Cycles& cycles() {
    static const Cycles made;
    return made;
}

void draw_one_by_one(int n, int* out) {
    for (int c = 0; c < n; ++c) out[c] = static_cast<int>((n - c) * rand1());
}

}  // namespace

void draw_positions(int n, int* out) {
    if (n < 1) return;
    const Cycles& all = cycles();
    static int last_x = 0, last_y = 0, last_z = 0;  // where the last call ended
    int x = all.x.place_of(RX, last_x);
    int y = all.y.place_of(RY, last_y);
    int z = all.z.place_of(RZ, last_z);
    if (x == Cycle::kNowhere || y == Cycle::kNowhere || z == Cycle::kNowhere) {
        return draw_one_by_one(n, out);
    }
    const auto draw_stretch =
        kernel_for(best_instructions(), []<Instructions I>() { return DrawKernel<I>::positions; });
    // Stretches in which no part returns to the beginning of its cycle.
    for (int done = 0; done < n;) {
        x = all.x.next(x);
        y = all.y.next(y);
        z = all.z.next(z);
        const int size =
            std::min({n - done, all.x.length() - x, all.y.length() - y, all.z.length() - z});
        draw_stretch(all.x.quotients(x), all.y.quotients(y), all.z.quotients(z), size, n - done,
                     out + done);
        done += size;
        x += size - 1;
        y += size - 1;
        z += size - 1;
    }
    last_x = x;
    last_y = y;
    last_z = z;
    RX = all.x.state(x);
    RY = all.y.state(y);
    RZ = all.z.state(z);
}

}  // namespace vort
