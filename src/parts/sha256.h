// SHA-256 of bytes as they come.
#pragma once

#include <memory>
#include <string>
#include <string_view>

namespace vort {

class Sha256 {
  public:
    // Throws std::bad_alloc.
    Sha256();
    ~Sha256();
    Sha256(const Sha256&) = delete;
    Sha256& operator=(const Sha256&) = delete;

    void add(std::string_view bytes);
    // 64 hexadecimal digits; nothing can be added afterwards.
    std::string text();

  private:
    struct State;
    std::unique_ptr<State> state_;
};

std::string sha256(std::string_view bytes);

}  // namespace vort
