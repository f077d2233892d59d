#include "common/text_input.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <string_view>

#include "common/characters.h"

namespace vort {

namespace {

constexpr std::size_t kBlock = std::size_t{1} << 18;

void make_room(LongText& out, std::size_t size) {
    if (out.memory.size() <= out.used + size) out.memory.resize(2 * (out.used + size) + 1);
}

// from_chars takes no leading plus sign; stream extraction does.
std::string_view without_plus(std::string_view text) {
    return !text.empty() && text.front() == '+' ? text.substr(1) : text;
}

template <typename T>
bool whole_number(std::string_view text, T& out) {
    text = without_plus(text);
    const auto result = std::from_chars(text.data(), text.data() + text.size(), out);
    return result.ec == std::errc() && result.ptr == text.data() + text.size();
}

// A number too small for a double, which reads as 0.
bool is_tiny(std::string_view text) {
    text = without_plus(text);
    double value = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
    return result.ec == std::errc::result_out_of_range && result.ptr == text.data() + text.size() &&
           text.find_first_of("eE") != std::string_view::npos &&
           text[text.find_first_of("eE") + 1] == '-';
}

}  // namespace

std::string reason_text(int error) {
    return error == kBecameShorter ? "it became shorter while it was read" : std::strerror(error);
}

TextInput::TextInput(const std::string& path, const char* mode)
    : file_(path, std::string_view(mode) == "r" ? O_RDONLY : O_RDWR), open_error_(file_.error()) {
    if (!is_open()) return;
    struct stat status {};
    if (::fstat(file_.number(), &status) != 0) {
        open_error_ = errno;
    } else if (S_ISDIR(status.st_mode)) {
        open_error_ = EISDIR;
    }
    if (open_error_ != 0) {
        file_.close();
        return;
    }
    if (S_ISREG(status.st_mode)) size_ = static_cast<std::size_t>(status.st_size);
    buffer_.resize(size_ > 0 ? std::min(kBlock, size_ + 1) : kBlock);
}

// 0 at the end of the file, and from the first failure on.
std::size_t TextInput::read_block(char* to, std::size_t size) {
    if (read_error_ != 0) return 0;
    const std::size_t got = file_.read(to, size);
    read_ += got;
    if (got == 0)
        read_error_ = file_.error() == 0 && read_ < size_ ? kBecameShorter : file_.error();
    return got;
}

// Keeps what is unread, at the front of the buffer, and reads on behind it.
bool TextInput::refill() {
    if (!is_open()) return false;
    std::memmove(buffer_.data(), buffer_.data() + next_, end_ - next_);
    end_ -= next_;
    next_ = 0;
    // Lines far shorter than the buffer keep what is moved to its front small.
    if (end_ > buffer_.size() / 4) buffer_.resize(2 * buffer_.size());
    const std::size_t got = read_block(buffer_.data() + end_, buffer_.size() - end_);
    end_ += got;
    return got > 0;
}

int TextInput::peek() {
    if (next_ == end_ && !refill()) return EOF;
    return static_cast<unsigned char>(buffer_[next_]);
}

int TextInput::get() {
    const int c = peek();
    if (c == EOF) {
        at_end_ = true;
    } else {
        ++next_;
        if (c == '\n') ++line_;
    }
    return c;
}

bool TextInput::has_byte_order_mark() {
    constexpr std::string_view kMark = "\xEF\xBB\xBF";
    while (end_ - next_ < kMark.size() && refill()) {
    }
    return std::string_view(buffer_.data() + next_, end_ - next_).starts_with(kMark);
}

std::string TextInput::rest() {
    std::string text;
    text.reserve(end_ - next_ + (size_ > read_ ? size_ - read_ : 0));
    do {
        text.append(buffer_.data() + next_, end_ - next_);
        next_ = end_;
    } while (refill());
    at_end_ = true;
    return text;
}

void TextInput::skip_space() {
    while (is_space(peek())) get();
}

bool TextInput::start_item() {
    if (good()) {
        skip_space();
        if (peek() != EOF) return true;
        at_end_ = true;
    }
    failed_ = true;
    return false;
}

bool TextInput::word(std::string& out) {
    out.clear();
    if (!start_item()) return false;
    int c = peek();
    while (c != EOF && !is_space(c)) {
        out.push_back(static_cast<char>(c));
        ++next_;
        c = peek();
    }
    if (c == EOF) at_end_ = true;
    return true;
}

// Takes the longest run of characters that can belong to a number, whether or not it is one.
void TextInput::collect_number(bool floating) {
    number_.clear();
    bool point = false;
    bool exponent = false;
    bool digits = false;
    for (int c = peek(); c != EOF; c = peek()) {
        const bool after_exponent = exponent && (number_.back() == 'e' || number_.back() == 'E');
        const bool sign = (c == '+' || c == '-') && (number_.empty() || after_exponent);
        const bool first_point = floating && c == '.' && !point && !exponent;
        const bool first_exponent = floating && (c == 'e' || c == 'E') && digits && !exponent;
        if (!is_digit(c) && !sign && !first_point && !first_exponent) return;
        digits = digits || is_digit(c);
        point = point || first_point;
        exponent = exponent || first_exponent;
        number_.push_back(static_cast<char>(c));
        ++next_;
    }
    at_end_ = true;
}

template <typename T>
bool TextInput::integer(T& out) {
    out = 0;
    if (!start_item()) return false;
    collect_number(false);
    if (whole_number(number_, out)) return true;
    out = 0;
    failed_ = true;
    return false;
}

template bool TextInput::integer(short& out);
template bool TextInput::integer(int& out);

bool TextInput::real(double& out) {
    out = 0.0;
    if (!start_item()) return false;
    collect_number(true);
    if (whole_number(number_, out) || is_tiny(number_)) return true;
    out = 0.0;
    failed_ = true;
    return false;
}

bool TextInput::line(std::string_view& out) {
    out = {};
    if (!good()) {
        failed_ = true;
        return false;
    }
    std::size_t searched = 0;
    for (;;) {
        const char* begin = buffer_.data() + next_;
        const std::size_t size = end_ - next_;
        const void* found = std::memchr(begin + searched, '\n', size - searched);
        if (found != nullptr) {
            out = {begin, static_cast<std::size_t>(static_cast<const char*>(found) - begin)};
            next_ += out.size() + 1;
            ++line_;
            return true;
        }
        searched = size;
        if (!refill()) break;
    }
    out = {buffer_.data() + next_, end_ - next_};
    next_ = end_;
    at_end_ = true;
    failed_ = out.empty();
    return !failed_;
}

// Takes the rest of the line from what is buffered; false where it goes on behind that.
bool TextInput::append_buffered(LongText& out) {
    const char* const begin = buffer_.data() + next_;
    const void* const found = std::memchr(begin, '\n', end_ - next_);
    const char* const end =
        found == nullptr ? begin + (end_ - next_) : static_cast<const char*>(found);
    const auto size = static_cast<std::size_t>(end - begin);
    make_room(out, size);
    std::copy_n(begin, size, out.memory.data() + out.used);
    out.used += size;
    next_ += size;
    if (found == nullptr) return false;
    ++next_;
    ++line_;
    return true;
}

// The same from the file, with nothing buffered; what is read too much is buffered then.
bool TextInput::append_read(LongText& out, std::size_t& got) {
    const std::size_t block = std::min(kBlock, buffer_.size());
    make_room(out, block);
    char* const begin = out.memory.data() + out.used;
    got = read_block(begin, block);
    const void* const found = std::memchr(begin, '\n', got);
    if (found == nullptr) {
        out.used += got;
        return false;
    }
    const auto size = static_cast<std::size_t>(static_cast<const char*>(found) - begin);
    next_ = 0;
    end_ = got - size - 1;
    std::memcpy(buffer_.data(), begin + size + 1, end_);
    out.used += size;
    ++line_;
    return true;
}

bool TextInput::append_line(LongText& out) {
    if (!good()) {
        failed_ = true;
        return false;
    }
    const std::size_t before = out.used;
    if (append_buffered(out)) return true;
    for (std::size_t got = 1; got > 0;) {
        if (append_read(out, got)) return true;
    }
    at_end_ = true;
    failed_ = out.used == before;
    return !failed_;
}

}  // namespace vort
