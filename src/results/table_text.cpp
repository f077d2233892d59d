#include "results/table_text.h"

#include <zlib.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <filesystem>
#include <new>

#include "common/input_error.h"
#include "common/text_input.h"

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

constexpr const char* kResults = "results of vort run expected";

[[noreturn]] void fail_file(const std::string& path, const char* what, int error,
                            const char* expected) {
    input_error(path, 0, std::string(what) + " (" + reason_text(error) + "); " + expected);
}

// A gzip file of one member or several.
class Inflation {
  public:
    explicit Inflation(std::string_view bytes)
        : bytes_(bytes), piece_(std::clamp(8 * bytes.size(), kLeastPiece, kMostPiece)) {
        constexpr int kGzipWindow = 15 + 16;
        if (inflateInit2(&stream_, kGzipWindow) != Z_OK) throw std::bad_alloc();
    }
    ~Inflation() { inflateEnd(&stream_); }
    Inflation(const Inflation&) = delete;
    Inflation& operator=(const Inflation&) = delete;

    // False where the file is cut or no gzip file.
    bool run(std::string& text) {
        int status = Z_OK;
        while (status == Z_OK || (status == Z_STREAM_END && has_input())) {
            if (status == Z_STREAM_END) inflateReset(&stream_);
            if (!has_input() && !is_full_) return false;
            status = step(text);
        }
        if (status == Z_MEM_ERROR) throw std::bad_alloc();
        return status == Z_STREAM_END;
    }

  private:
    static constexpr std::size_t kLeastPiece = 4096;
    static constexpr std::size_t kMostPiece = std::size_t{1} << 20;

    bool has_input() const { return stream_.avail_in > 0 || !bytes_.empty(); }

    int step(std::string& text) {
        if (stream_.avail_in == 0) {
            const std::string_view piece = bytes_.substr(0, kMostPiece);
            bytes_.remove_prefix(piece.size());
            stream_.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(piece.data()));
            stream_.avail_in = static_cast<uInt>(piece.size());
        }
        const std::size_t size = text.size();
        text.resize(size + piece_);
        stream_.next_out = reinterpret_cast<Bytef*>(text.data() + size);
        stream_.avail_out = static_cast<uInt>(piece_);
        const int status = inflate(&stream_, Z_NO_FLUSH);
        text.resize(size + piece_ - stream_.avail_out);
        is_full_ = stream_.avail_out == 0;
        return status;
    }

    std::string_view bytes_;
    std::size_t piece_;  // of the text
    z_stream stream_{};
    bool is_full_ = false;  // more may come without more bytes
};

std::string decompressed(const std::string& path, std::string_view bytes) {
    std::string text;
    if (!Inflation(bytes).run(text)) fail_file(path, "is cut", EIO, kResults);
    return text;
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

bool TableReader::next() {
    if (rest_.empty()) return false;
    const std::size_t end = std::min(rest_.find('\n'), rest_.size());
    const std::string_view line = rest_.substr(0, end);
    rest_.remove_prefix(std::min(end + 1, rest_.size()));
    ++line_;
    // Counted first: a line of nothing but tabs would take sixteen times its size.
    const auto columns = static_cast<std::size_t>(std::ranges::count(line, '\t')) + 1;
    if (columns != columns_) {
        fail(std::to_string(columns) + (columns == 1 ? " column" : " columns"),
             std::to_string(columns_));
    }
    split(line, words_);
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

double TableReader::share(std::size_t c) const {
    const double value = number(c);
    if (value < 0 || value > 1) fail(words_[c], "a number from 0 to 1, or NA");
    return value;
}

long TableReader::whole(std::size_t c, long na, long least, long most) const {
    const std::string_view text = words_[c];
    if (text == kNA) return na;
    long value = 0;
    const auto end = text.data() + text.size();
    const auto read = std::from_chars(text.data(), end, value);
    if (read.ec == std::errc() && read.ptr == end && value >= least && value <= most) return value;
    fail(text, "a whole number from " + std::to_string(least) + " to " + std::to_string(most) +
                   ", or NA");
}

void TableReader::fail(std::string_view found, std::string_view expected) const {
    constexpr std::size_t kShown = 60;
    input_error(path_, line_,
                std::string(found.substr(0, kShown)) + "; " +
                    std::string(expected.substr(0, kShown)) +
                    " expected; make the results anew by vort run");
}

std::string read_bytes(const std::string& path, const char* expected) {
    std::error_code failure;
    if (std::filesystem::is_other(path, failure) && !path.starts_with("/dev/fd/")) {
        input_error(path, 0, "is a pipe or a device; a file expected");
    }
    TextInput input(path);
    if (!input.is_open()) fail_file(path, "cannot be opened", input.open_error(), expected);
    std::string bytes = input.rest();
    if (input.read_error() != 0) fail_file(path, "cannot be read", input.read_error(), expected);
    return bytes;
}

std::string read_whole_file(const std::string& path) {
    std::string bytes = read_bytes(path, kResults);
    constexpr std::string_view kGzip = "\x1f\x8b";
    if (!bytes.starts_with(kGzip)) return bytes;
    if (path.ends_with(".gz")) return decompressed(path, bytes);
    input_error(path, 0, "is compressed; text expected; decompress it");
}

int nesting_of(std::string_view json) {
    int open = 0;
    int deepest = 0;
    bool in_string = false;
    for (std::size_t i = 0; i < json.size(); ++i) {
        const char c = json[i];
        if (in_string && c == '\\') ++i;
        if (c == '"') in_string = !in_string;
        if (in_string) continue;
        if (c == '[' || c == '{') deepest = std::max(deepest, ++open);
        if (c == ']' || c == '}') --open;
    }
    return deepest;
}

}  // namespace vort
