#include "legacy/random.h"

#include <cstdlib>
#include <span>
#include <vector>

#include "numeric/generator.h"
#include "numeric/random_order.h"

namespace vort {

int RX = 1;
int RY = 3;
int RZ = 5;

namespace {

void draw_items(std::span<int> order) {
    Generator generator = default_generator();
    draw_order(generator, order);
    store_generator(generator);
}

}  // namespace

Generator default_generator() {
    return Generator(RX, RY, RZ);
}

void store_generator(const Generator& generator) {
    RX = generator.x();
    RY = generator.y();
    RZ = generator.z();
}

double rand1() {
    Generator generator = default_generator();
    const double drawn = generator.next();
    store_generator(generator);
    return drawn;
}

void init_rand1() {
    store_generator(Generator());
}

double rand2() {
    return std::rand() / 2147483647.0;
}

void randomsort(int n, int* out) {
    if (n < 1) return;
    draw_items({out + 1, static_cast<std::size_t>(n)});
    for (int c = 1; c <= n; ++c) ++out[c];
}

int permutation1(short* y, int n) {
    if (n < 1) return 0;
    std::vector<int> order(static_cast<std::size_t>(n));
    draw_items(order);
    const std::vector<short> before(y, y + n);
    for (int i = 0; i < n; ++i) y[i] = before[order[i]];
    return 0;
}

}  // namespace vort
