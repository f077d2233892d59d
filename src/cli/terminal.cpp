#include "cli/terminal.h"

#include <unistd.h>

#include <iostream>
#include <utility>

#include "common/characters.h"

namespace vort {

Terminal::Terminal() : is_terminal_(::isatty(STDERR_FILENO) == 1) {}

void Terminal::say(std::string_view text) {
    std::string line = "vort: " + std::string(text) + '\n';
    make_visible(line);
    const std::scoped_lock lock(mutex_);
    erase_progress();
    log_ += line;
    std::cerr << line;
}

void Terminal::print(std::string_view text) {
    {
        const std::scoped_lock lock(mutex_);
        erase_progress();
        char before = '\0';
        for (const char c : text) std::cout.put(visible(c, std::exchange(before, c)));
        std::cout.flush();
    }
    if (!std::cout) say("standard output cannot be written; the summary stands in run.log");
}

void Terminal::show_progress(const std::string& line) {
    if (!is_terminal_) return;
    const std::scoped_lock lock(mutex_);
    // To the beginning of the line, the text, the rest of the line erased.
    std::cerr << '\r' << line << "\x1b[K" << std::flush;
    progress_shown_ = true;
}

void Terminal::clear_progress() {
    const std::scoped_lock lock(mutex_);
    erase_progress();
}

void Terminal::erase_progress() {
    if (!progress_shown_) return;
    std::cerr << "\r\x1b[K" << std::flush;
    progress_shown_ = false;
}

std::string Terminal::log() const {
    const std::scoped_lock lock(mutex_);
    return log_;
}

Terminal::Lines::int_type Terminal::Lines::overflow(int_type character) {
    if (traits_type::eq_int_type(character, traits_type::eof())) return 0;
    line_ += traits_type::to_char_type(character);
    hand_on();
    return character;
}

std::streamsize Terminal::Lines::xsputn(const char* text, std::streamsize size) {
    line_.append(text, static_cast<std::size_t>(size));
    hand_on();
    return size;
}

void Terminal::Lines::hand_on() {
    for (;;) {
        const std::size_t end = line_.find('\n');
        if (end == std::string::npos) return;
        terminal_.say(std::string_view(line_).substr(0, end));
        line_.erase(0, end + 1);
    }
}

}  // namespace vort
