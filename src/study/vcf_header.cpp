#include "study/vcf_header.h"

#include <htslib/bgzf.h>
#include <htslib/kseq.h>

#include <algorithm>
#include <array>
#include <new>
#include <optional>
#include <string_view>

#include "common/characters.h"
#include "common/input_error.h"

namespace vort {

namespace {

constexpr std::size_t kMostEntries = 65536;  // that a small header may number

bool read_fully(BGZF& file, void* to, std::size_t size) {
    const ssize_t got = bgzf_read(&file, to, size);
    return got >= 0 && static_cast<std::size_t>(got) == size;
}

// Its length is told before it; piece by piece, since that may not be true.
std::optional<std::string> bcf_text(BGZF& file) {
    constexpr std::string_view kMagic("BCF\2\2", 5);
    std::array<char, 5> magic{};
    std::array<unsigned char, 4> length{};
    if (!read_fully(file, magic.data(), magic.size()) ||
        std::string_view(magic.data(), magic.size()) != kMagic ||
        !read_fully(file, length.data(), length.size())) {
        return std::nullopt;
    }
    std::size_t left = 0;
    for (std::size_t k = 0; k < length.size(); ++k) left += std::size_t{length[k]} << 8 * k;
    std::string text;
    while (left > 0) {
        const std::size_t piece = std::min<std::size_t>(left, 65536);
        text.resize(text.size() + piece);
        if (!read_fully(file, text.data() + text.size() - piece, piece)) return std::nullopt;
        left -= piece;
    }
    return text;
}

// As far as the line of the samples.
std::optional<std::string> vcf_text(htsFile& file) {
    std::string text;
    int result = 0;
    while ((result = hts_getline(&file, KS_SEP_LINE, &file.line)) >= 0) {
        const std::string_view line(file.line.s, file.line.l);
        if (line.empty()) continue;
        if (!line.starts_with('#')) return std::nullopt;
        text.append(line) += '\n';
        if (!line.starts_with("##")) return text;
    }
    if (result < -1 || text.empty()) return std::nullopt;
    return text;
}

// The number behind "IDX", however it is spelt out; 0 where there is none.
std::size_t number_behind(std::string_view text) {
    constexpr std::string_view kBetween = " =\"";
    text.remove_prefix(std::min(text.find_first_not_of(kBetween), text.size()));
    std::size_t number = 0;
    for (std::size_t k = 0; k < std::min<std::size_t>(text.size(), 18) && is_digit(text[k]); ++k) {
        number = 10 * number + static_cast<std::size_t>(text[k] - '0');
    }
    return number;
}

void check_numbers(std::string_view text, const std::string& path) {
    constexpr std::string_view kKey = "IDX";
    const std::size_t most = kMostEntries + text.size();
    for (std::size_t at = text.find(kKey); at != std::string_view::npos;
         at = text.find(kKey, at + kKey.size())) {
        const std::size_t number = number_behind(text.substr(at + kKey.size()));
        if (number <= most) continue;
        input_error(path, 0,
                    "its header numbers an entry " + std::to_string(number) + " by IDX; at most " +
                        std::to_string(most) + " expected in one of " +
                        std::to_string(text.size()) + " bytes");
    }
}

}  // namespace

VcfHeader read_vcf_header(htsFile& file, const std::string& path) {
    const bool is_text = hts_get_format(&file)->format == vcf;
    std::optional<std::string> text = is_text ? vcf_text(file) : bcf_text(*file.fp.bgzf);
    if (!text) return nullptr;
    check_numbers(*text, path);
    VcfHeader header(bcf_hdr_init("r"));
    if (header == nullptr) throw std::bad_alloc();
    if (bcf_hdr_parse(header.get(), text->data()) < 0) return nullptr;
    return header;
}

}  // namespace vort
