#include "legacy/bitset.h"

#include <algorithm>
#include <bit>
#include <iostream>
#include <string>

namespace vort {

namespace {

unsigned char mask_of(unsigned long i) {
    return static_cast<unsigned char>(1U << (i % 8));
}

}  // namespace

bitset::bitset(unsigned long n) : size(static_cast<std::uint32_t>(n)), data_((size + 7UL) / 8) {}

void bitset::SetZero() {
    std::fill(data_.begin(), data_.end(), static_cast<unsigned char>(0));
}

void bitset::SetbitOne(unsigned long i) {
    if (i < size) data_[i / 8] = static_cast<unsigned char>(data_[i / 8] | mask_of(i));
}

void bitset::SetbitZero(unsigned long i) {
    if (i < size) data_[i / 8] = static_cast<unsigned char>(data_[i / 8] & ~mask_of(i));
}

int bitset::GetAt(unsigned long i) const {
    return i < size ? data_[i / 8] & mask_of(i) : 0;
}

int bitset::SizeofSet() const {
    int count = 0;
    for (const unsigned char byte : data_) count += std::popcount(byte);
    return count;
}

void bitset::ShowBitSet() const {
    std::string text;
    for (std::uint32_t i = 0; i < size; ++i) text.push_back(GetAt(i) != 0 ? '1' : '0');
    std::cout << text << '\n';
}

int bitset::ifincludein(const bitset* other) const {
    if (size != other->size) return 0;
    for (std::size_t b = 0; b < data_.size(); ++b) {
        if ((data_[b] & ~other->data_[b]) != 0) return 0;
    }
    return 1;
}

}  // namespace vort
