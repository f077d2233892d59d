#include "common/console.h"

#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <streambuf>
#include <vector>

#include "common/diagnostics.h"

namespace vort {

namespace {

class ConsoleBuffer : public std::streambuf {
  public:
    ConsoleBuffer() : buffer_(kSize), by_line_(::isatty(STDOUT_FILENO) != 0) {
        setp(buffer_.data(), buffer_.data() + buffer_.size());
    }

  protected:
    int_type overflow(int_type character) override {
        if (!write_out()) return traits_type::eof();
        if (!traits_type::eq_int_type(character, traits_type::eof())) {
            *pptr() = traits_type::to_char_type(character);
            pbump(1);
        }
        return traits_type::not_eof(character);
    }

    std::streamsize xsputn(const char* text, std::streamsize size) override {
        std::streamsize done = 0;
        if (size >= kLarge) {
            write_out();
            write_all(text, text + size);
            done = size;
        }
        while (done < size) {
            if (pptr() == epptr() && !write_out()) return done;
            const std::streamsize part = std::min<std::streamsize>(size - done, epptr() - pptr());
            std::memcpy(pptr(), text + done, static_cast<std::size_t>(part));
            pbump(static_cast<int>(part));
            done += part;
        }
        if (by_line_ && std::memchr(text, '\n', static_cast<std::size_t>(size)) != nullptr) {
            write_out();
        }
        return done;
    }

    int sync() override { return write_out() ? 0 : -1; }

  private:
    static constexpr std::size_t kSize = std::size_t{1} << 18;
    static constexpr std::streamsize kLarge = 1 << 14;  // not worth a copy

    bool write_out() {
        write_all(pbase(), pptr());
        setp(buffer_.data(), buffer_.data() + buffer_.size());
        return true;  // what a broken pipe or a full disk swallows does not stop the analysis
    }

    void write_all(const char* text, const char* end) {
        while (text < end && !failed_) {
            const ssize_t written =
                ::write(STDOUT_FILENO, text, static_cast<std::size_t>(end - text));
            if (written >= 0) {
                text += written;
            } else if (errno != EINTR) {
                failed_ = true;
                diagnose("failed writes to standard output", "standard output", 0,
                         std::string("could not be written (") + std::strerror(errno) +
                             "); the reports are still made");
            }
        }
    }

    std::vector<char> buffer_;
    bool by_line_;
    bool failed_ = false;
};

}  // namespace

void open_console() {
    // Never destroyed: std::cout may be used until the last moment of the process.
    static auto* const buffer = new ConsoleBuffer;
    std::cout.rdbuf(buffer);
    std::atexit([] { std::cout.flush(); });
}

}  // namespace vort
