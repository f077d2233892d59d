// Text files, read the way formatted stream extraction reads them, only faster.
//
// A TextInput has the states of a standard input stream: good() until a read fails or meets the
// end of the file; once it is not good every further read fails and stores a zero or an empty
// text. It keeps a line number, so that whatever is wrong can be told with its place.
//
// Reading happens in blocks of a megabyte; long lines make the buffer grow to a few times their
// length.
#pragma once

#include <cstddef>
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace vort {

class TextInput {
  public:
    // A missing or unreadable file, or a directory in a file's place, leaves is_open() false.
    // `mode` is "r", or "r+" where the file must be writable too.
    explicit TextInput(const std::string& path, const char* mode = "r");

    bool is_open() const { return file_ != nullptr; }
    bool good() const { return is_open() && !failed_ && !at_end_; }
    bool failed() const { return failed_; }

    // 1-based number of the line that the next character stands on.
    long line_number() const { return line_; }

    // Next character without white space skipped, or EOF.
    int get();
    int peek();

    // Skips white space, line ends included.
    void skip_space();

    // The next word between white space. False, and an empty word, where there is none.
    bool word(std::string& out);

    // A decimal integer, as far as its characters go. False, and 0, where the next characters are
    // no number or it does not fit T.
    template <typename T>
    bool integer(T& out);

    // A floating-point number. "inf", "nan" and hexadecimal numbers are none.
    bool real(double& out);

    // The rest of the line, its end dropped. Valid until the next read. False at the end of file.
    bool line(std::string_view& out);

  private:
    struct Close {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };

    bool refill();
    bool start_item();
    void collect_number(bool floating);

    std::unique_ptr<std::FILE, Close> file_;
    std::vector<char> buffer_;
    std::size_t next_ = 0;
    std::size_t end_ = 0;
    std::string number_;
    long line_ = 1;
    bool at_end_ = false;
    bool failed_ = false;
};

}  // namespace vort
