// Numbers and texts as bytes, and back.
//
// Lengths are told before what they are of, and a reader believes none that exceeds the bytes that
// are left: a file of a kilobyte never makes it ask for a gigabyte.
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

namespace vort {

static_assert(std::endian::native == std::endian::little, "parts hold numbers as they lie here");

class ByteWriter {
  public:
    explicit ByteWriter(std::string before = {}) : bytes_(std::move(before)) {}

    template <typename T>
    requires std::is_arithmetic_v<T>
    void put(T value) { bytes_.append(reinterpret_cast<const char*>(&value), sizeof value); }
    void put(std::string_view text) {
        put(std::uint64_t{text.size()});
        bytes_.append(text);
    }
    template <typename T>
    requires std::is_arithmetic_v<T>
    void put(std::span<const T> values) {
        put(std::uint64_t{values.size()});
        bytes_.append(reinterpret_cast<const char*>(values.data()), values.size_bytes());
    }
    template <typename T>
    void put(const std::vector<T>& values) {
        put(std::span<const T>(values));
    }

    std::string take() && { return std::move(bytes_); }

  private:
    std::string bytes_;
};

// Thrown where bytes end too early or hold what cannot be.
struct MalformedBytes {};

// The bytes are not owned.
class ByteReader {
  public:
    explicit ByteReader(std::string_view bytes) : bytes_(bytes) {}

    template <typename T>
    T get() {
        static_assert(std::is_arithmetic_v<T>);
        T value{};
        const std::string_view from = take(sizeof value);
        std::memcpy(&value, from.data(), sizeof value);
        return value;
    }
    // A number that counts or names something below `limit`.
    template <typename T>
    T get_below(T limit) {
        const T value = get<T>();
        require(value >= 0 && value < limit);
        return value;
    }
    std::string_view get_text() { return take(get<std::uint64_t>()); }
    template <typename T>
    std::vector<T> get_values() {
        const auto count = get<std::uint64_t>();
        require(count <= bytes_.size() / sizeof(T));
        std::vector<T> values(count);
        const std::string_view from = take(count * sizeof(T));
        if (count > 0) std::memcpy(values.data(), from.data(), from.size());
        return values;
    }
    // How many of something follow, each of which takes so many bytes or more.
    std::size_t get_count(std::size_t least) {
        const auto count = get<std::uint64_t>();
        require(count <= bytes_.size() / least);
        return count;
    }

    static void require(bool sound) {
        if (!sound) throw MalformedBytes();
    }
    void require_end() const { require(bytes_.empty()); }

  private:
    std::string_view take(std::uint64_t size) {
        require(size <= bytes_.size());
        const std::string_view taken = bytes_.substr(0, size);
        bytes_.remove_prefix(size);
        return taken;
    }

    std::string_view bytes_;
};

}  // namespace vort
