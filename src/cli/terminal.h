// What a command says to its user, and a copy of it for the log.
//
// Messages go to standard error, the summary to standard output. A line of progress may stand below
// the messages on a terminal; a message takes its place, and it comes back with the next one.
#pragma once

#include <mutex>
#include <ostream>
#include <streambuf>
#include <string>
#include <string_view>

namespace vort {

class Terminal {
  public:
    Terminal();
    ~Terminal() { clear_progress(); }
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;

    // Whether standard error is one.
    bool is_terminal() const { return is_terminal_; }

    // A line on standard error, "vort: " in front of it. Control characters show as "?", here and
    // in what is printed.
    void say(std::string_view text);
    // A text on standard output. Takes no memory: the results are there when they are told of.
    void print(std::string_view text);
    // For diagnostics: each line is said.
    std::ostream& errors() { return errors_; }

    // Puts a line below all messages, in the place of the one before; only on a terminal.
    void show_progress(const std::string& line);
    void clear_progress();

    // All that was said.
    std::string log() const;

  private:
    // Hands on each line when it is whole.
    class Lines : public std::streambuf {
      public:
        explicit Lines(Terminal& terminal) : terminal_(terminal) {}

      protected:
        int_type overflow(int_type character) override;
        std::streamsize xsputn(const char* text, std::streamsize size) override;

      private:
        void hand_on();

        Terminal& terminal_;
        std::string line_;
    };

    void erase_progress();

    bool is_terminal_;
    mutable std::mutex mutex_;
    std::string log_;
    bool progress_shown_ = false;
    Lines lines_{*this};
    std::ostream errors_{&lines_};
};

}  // namespace vort
