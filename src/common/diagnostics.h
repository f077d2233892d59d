// Standard error: what was wrong with the input, in one line each.
//
// Standard output carries the analysis and its own messages, whose bytes are fixed. Whatever the
// analysis ignores, cuts or guesses at is said here, with file, line and what was expected:
//
//     dat1.txt:12: row has 4 genotypes, expected 5; the rest is taken as missing
//
// At most ten lines of a kind are written; a count of the others follows at the end.
#pragma once

#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

namespace vort {

class Diagnostics {
  public:
    // Writes to `out`, which is not owned.
    explicit Diagnostics(std::ostream& out) : out_(out) {}
    ~Diagnostics() { finish(); }
    Diagnostics(const Diagnostics&) = delete;
    Diagnostics& operator=(const Diagnostics&) = delete;

    // `kind` names what is counted, in the plural ("rows with too few genotypes"); it must outlive
    // this object, as a string literal does. `line` is 1-based; 0 leaves it out. A line that
    // repeats the last one of its kind is dropped.
    void say(std::string_view kind, std::string_view file, long line, const std::string& text);

    // Writes the counts of the lines held back, and forgets all counts.
    void finish();

  private:
    struct KindCount {
        std::string_view kind;
        long count;
        std::string last;
    };

    long count_one(std::string_view kind, const std::string& line);

    std::ostream& out_;
    std::vector<KindCount> counts_;
};

}  // namespace vort
