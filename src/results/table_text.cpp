#include "results/table_text.h"

#include <zlib.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <memory>

#include "common/input_error.h"

namespace vort {

namespace {

void split(std::string_view line, std::vector<std::string_view>& words) {
    words.clear();
    for (std::size_t from = 0;;) {
        const std::size_t tab = line.find('\t', from);
        words.push_back(line.substr(from, tab - from));
        if (tab == std::string_view::npos) return;
        from = tab + 1;
    }
}

}  // namespace

TableReader::TableReader(std::string path, std::string_view text, std::string_view header)
    : path_(std::move(path)), rest_(text) {
    split(header, words_);
    columns_ = words_.size();
    const std::size_t end = rest_.find('\n');
    ++line_;
    if (rest_.substr(0, end) != header) fail("another header", header);
    rest_.remove_prefix(std::min(header.size() + 1, rest_.size()));
}

bool TableReader::next_line() {
    if (rest_.empty()) return false;
    const std::size_t end = std::min(rest_.find('\n'), rest_.size());
    split(rest_.substr(0, end), words_);
    rest_.remove_prefix(std::min(end + 1, rest_.size()));
    ++line_;
    return true;
}

bool TableReader::next() {
    if (!next_line()) return false;
    if (words_.size() != columns_) {
        fail(std::to_string(words_.size()) + " columns", std::to_string(columns_));
    }
    return true;
}

double TableReader::number(std::size_t c) const {
    const std::string_view text = words_[c];
    if (text == kNA) return std::nan("");
    double value = 0;
    const auto end = text.data() + text.size();
    const auto read = std::from_chars(text.data(), end, value);
    if (read.ptr != end || (read.ec != std::errc() && read.ec != std::errc::result_out_of_range)) {
        fail(text, "a number or NA");
    }
    return value;
}

long TableReader::whole(std::size_t c, long na) const {
    const std::string_view text = words_[c];
    if (text == kNA) return na;
    long value = 0;
    const auto end = text.data() + text.size();
    const auto read = std::from_chars(text.data(), end, value);
    if (read.ec != std::errc() || read.ptr != end) fail(text, "a whole number or NA");
    return value;
}

void TableReader::fail(std::string_view found, std::string_view expected) const {
    constexpr std::size_t kShown = 60;
    input_error(path_, line_,
                std::string(found.substr(0, kShown)) + "; " +
                    std::string(expected.substr(0, kShown)) +
                    " expected; make the results anew by vort run");
}

std::string read_whole_file(const std::string& path) {
    const auto fail = [&](const char* what, int error) {
        input_error(
            path, 0,
            std::string(what) + " (" + std::strerror(error) + "); results of vort run expected");
    };
    struct Close {
        void operator()(gzFile file) const { gzclose(file); }
    };
    errno = 0;
    const std::unique_ptr<gzFile_s, Close> file(gzopen(path.c_str(), "rb"));
    if (!file) fail("cannot be opened", errno != 0 ? errno : ENOMEM);
    gzbuffer(file.get(), 1U << 18);
    std::string text;
    constexpr std::size_t kPiece = std::size_t{1} << 20;
    for (;;) {
        const std::size_t size = text.size();
        text.resize(size + kPiece);
        const int read = gzread(file.get(), text.data() + size, kPiece);
        if (read < 0) fail("cannot be read", errno != 0 ? errno : EIO);
        text.resize(size + static_cast<std::size_t>(read));
        if (read == 0) break;
    }
    int status = Z_OK;
    gzerror(file.get(), &status);
    if (status != Z_OK && status != Z_STREAM_END) fail("is cut", EIO);
    return text;
}

}  // namespace vort
