// A fixed-length set of bit positions, 0-based.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace vort {

// Holds positions 0 .. size-1. Setting a position outside is ignored, reading one gives 0, so the
// callers that number markers or cells from 1 ask for one position more.
class bitset {
  public:
    explicit bitset(unsigned long n);

    void SetZero();
    void SetbitOne(unsigned long i);
    void SetbitZero(unsigned long i);

    // Non-zero when position i is set: the masked bit, not necessarily 1.
    int GetAt(unsigned long i) const;
    int operator[](unsigned long i) const { return GetAt(i); }

    // Number of positions set.
    int SizeofSet() const;

    // Prints a "0" or "1" for every position from 0 upward, then a line end.
    void ShowBitSet() const;

    // 1 when both sets have the same size and every position set here is set in `other`, else 0.
    int ifincludein(const bitset* other) const;

    std::uint32_t size;

  private:
    // Position i is bit i mod 8 of byte i / 8.
    std::vector<unsigned char> data_;
};

}  // namespace vort
