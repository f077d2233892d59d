// Many draws of the generator at once.
//
// Each of the generator's three parts runs through a cycle of at most 30322 states, so its
// quotients (RX / 30269.0 and so on) can be tabulated in the order in which they come. A stretch of
// draws is then the sum of three stretches of tables, modulo 1: no divisions, no waiting of one
// draw for the one before, and the same doubles. A state that is on none of the cycles (the parts
// can be set to anything) falls back to single draws.
//
// Cost: three tables of a quarter of a megabyte, made at the first call; some additions a draw.
#pragma once

namespace vort {

// For c = 0 .. n-1: out[c] = the next rand1() times (n - c), cut to a whole number. This is where,
// counted from 0, the c-th of n items drawn without replacement stands among those that are left.
void draw_positions(int n, int* out);

}  // namespace vort
