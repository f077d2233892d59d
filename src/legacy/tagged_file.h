// A text file that is searched for tags.
#pragma once

#include <sstream>
#include <string>

namespace vort {

// Reads numbers and characters as a stream does, and finds texts from a remembered position on.
// The whole file is held in memory. A file that cannot be opened is said on the console, and
// reads as empty.
class Myfstream : public std::istringstream {
  public:
    explicit Myfstream(const char* file);

    bool is_open() const { return open_; }

    // Searches forward from the remembered position for the first `length` characters of `text`.
    // Returns the position just behind the match, which is where both the search and the stream
    // go on, or 0 where the text does not occur again.
    long find(const char* text, int length);
    long find(const std::string& text) { return find(text.c_str(), static_cast<int>(text.size())); }

    // Search and stream go on at this position.
    void go_to(long position);

    long size() const { return static_cast<long>(contents_.size()); }

  private:
    std::string contents_;
    std::size_t searched_ = 0;
    bool open_ = false;
};

}  // namespace vort
