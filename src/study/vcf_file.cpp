// Text is read line by line and taken apart by vcf_line.h, BCF by the library. Either way genotypes
// are not looked at before they are asked for.
#include "study/vcf_file.h"

#include <fcntl.h>
#include <htslib/hfile.h>
#include <htslib/hts_log.h>
#include <htslib/kseq.h>
#include <htslib/vcf.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <new>

#include "common/file_descriptor.h"
#include "common/input_error.h"
#include "study/chromosome_names.h"
#include "study/vcf_header.h"
#include "study/vcf_line.h"
#include "study/word_lines.h"

namespace vort {

namespace {

struct Release {
    void operator()(hFILE* file) const { hclose_abruptly(file); }
    void operator()(htsFile* file) const { hts_close(file); }
    void operator()(bcf1_t* record) const { bcf_destroy(record); }
};

// Null where the file is neither VCF nor BCF. The library would take some names for addresses, and
// some files for tickets that name others, here or on other machines: so it gets a descriptor, and
// only of a file that is what it should be.
htsFile* open_local(const std::string& path) {
    FileDescriptor descriptor(path, O_RDONLY);
    if (!descriptor.is_open()) return nullptr;
    std::unique_ptr<hFILE, Release> file(hdopen(descriptor.number(), "r"));
    if (file == nullptr) return nullptr;
    descriptor.release();
    htsFormat format{};
    if (hts_detect_format(file.get(), &format) < 0) return nullptr;
    if (format.format != vcf && format.format != bcf) return nullptr;
    htsFile* const opened = hts_hopen(file.get(), path.c_str(), "r");
    if (opened == nullptr) return nullptr;
    static_cast<void>(file.release());
    if (opened->fn != nullptr) return opened;  // its name, which the library copies unchecked
    hts_close(opened);
    throw std::bad_alloc();
}

// Lengthens an array of the library's.
template <typename T>
void reserve(T*& items, int& room, std::size_t needed) {
    if (static_cast<std::size_t>(room) >= needed || needed > INT_MAX) return;
    void* const more = std::realloc(items, needed * sizeof(T));
    if (more == nullptr) throw std::bad_alloc();
    items = static_cast<T*>(more);
    room = static_cast<int>(needed);
}

// Without memory the library would end the process when it takes a record apart, or lose a letter
// of its words; so it gets all room that it may need. A byte of text may come to be a number of
// four digits and a comma.
void reserve_words(bcf1_t& record) {
    const std::size_t text = 6 * record.shared.l + record.n_allele + 16;
    reserve(record.d.id, record.d.m_id, text);
    reserve(record.d.als, record.d.m_als, text);
    reserve(record.d.allele, record.d.m_allele, record.n_allele);
    const int formats = record.d.m_fmt;
    reserve(record.d.fmt, record.d.m_fmt, record.n_fmt);
    std::fill(record.d.fmt + formats, record.d.fmt + record.d.m_fmt, bcf_fmt_t{});
}

MarkerInfo marker_of(std::string_view contig, std::string_view name, long position,
                     std::string_view alternative, std::string_view reference) {
    MarkerInfo marker{chromosome_of(contig), std::string(name), position, std::string(alternative),
                      std::string(reference)};
    if (name != "." && !name.empty()) return marker;
    marker.name = contig;
    for (const std::string& part : {std::to_string(position), marker.a2, marker.a1}) {
        marker.name += ':' + part;
    }
    return marker;
}

}  // namespace

class VcfFile::File {
  public:
    explicit File(std::string path) : path_(std::move(path)) {
        require_readable(path_);
        hts_set_log_level(HTS_LOG_OFF);
        errno = 0;
        file_.reset(open_local(path_));
        if (file_ == nullptr && errno == ENOMEM) throw std::bad_alloc();
        if (file_ == nullptr) fail("is no VCF or BCF file; one of the two expected");
        if (hts_check_EOF(file_.get()) == 0) {
            fail("is cut short; the block that ends a bgzipped file expected; copy it again");
        }
        errno = 0;
        header_ = read_vcf_header(*file_, path_);
        if (header_ == nullptr && errno == ENOMEM) throw std::bad_alloc();
        record_.reset(bcf_init());
        if (header_ == nullptr) fail("has no header that can be read; that of a VCF expected");
        if (record_ == nullptr) throw std::bad_alloc();
    }

    const std::string& path() const { return path_; }

    std::span<char* const> samples() const {
        return {header_->samples, static_cast<std::size_t>(bcf_hdr_nsamples(header_.get()))};
    }

    bool next(VcfRecord& record) {
        errno = 0;
        const int result = is_text() ? hts_getline(file_.get(), KS_SEP_LINE, &file_->line)
                                     : bcf_read(file_.get(), header_.get(), record_.get());
        if (result == -1 && errno != ENOMEM) return false;
        ++records_;
        if (result < 0) fail_unreadable();
        if (is_text()) {
            // All calls are there, whether or not somebody asks for them.
            if (!split_vcf_line(line(), fields_) ||
                std::ranges::count(fields_.calls, '\t') + 1 != std::ssize(samples())) {
                fail_unreadable();
            }
            record = {marker_of(fields_.contig, fields_.name, position(), fields_.alternative,
                                fields_.reference),
                      fields_.alleles};
            return true;
        }
        check_record();
        const char* const contig = bcf_seqname(header_.get(), record_.get());
        record = {marker_of(contig == nullptr ? "." : contig, record_->d.id,
                            static_cast<long>(record_->pos) + 1, allele(1), allele(0)),
                  static_cast<int>(record_->n_allele)};
        return true;
    }

    Packed pack(std::span<unsigned char> out) {
        const auto individuals = static_cast<int>(samples().size());
        if (!is_text()) {
            const VcfCalls calls = this->calls();
            return checked(pack_calls(calls, individuals, out), calls.first != nullptr);
        }
        const auto packed = pack_line(fields_, individuals, out);
        if (!packed) fail_unreadable();
        return checked(*packed, fields_.genotype >= 0);
    }

  private:
    htsExactFormat format() const { return hts_get_format(file_.get())->format; }
    bool is_text() const { return format() == vcf; }
    std::string_view line() const { return {file_->line.s, file_->line.l}; }

    // One that is no number would be read as 0.
    long position() const {
        long position = 0;
        if (read_whole(fields_.position, position) && position >= 0) return position;
        fail_record("has position " + std::string(fields_.position) + "; a whole number expected");
    }

    void check_record() {
        reserve_words(*record_);
        constexpr int kHarmless = BCF_ERR_CTG_UNDEF | BCF_ERR_TAG_UNDEF;
        if ((record_->errcode & ~kHarmless) != 0 || record_->n_sample != samples().size() ||
            bcf_unpack(record_.get(), BCF_UN_STR) < 0) {
            fail_unreadable();
        }
    }

    // Null calls where the record has none.
    VcfCalls calls() {
        const bcf_fmt_t* const format = bcf_get_fmt(header_.get(), record_.get(), "GT");
        if (format == nullptr || format->n <= 0) return {};
        const int width = format->type == BCF_BT_INT8    ? 1
                          : format->type == BCF_BT_INT16 ? 2
                          : format->type == BCF_BT_INT32 ? 4
                                                         : 0;
        const std::size_t needed = static_cast<std::size_t>(width) *
                                   static_cast<std::size_t>(format->n) * samples().size();
        if (width == 0 || format->p_len < needed) fail_record("GT holds no genotypes");
        return {format->p, width, format->n, static_cast<int>(record_->n_allele)};
    }

    Packed checked(const PackedCalls& packed, bool has_calls) const {
        if (!packed.in_range) fail_record("calls an allele that it does not have");
        return {has_calls, packed.polyploid};
    }

    std::string allele(int k) const { return k < record_->n_allele ? record_->d.allele[k] : "."; }

    [[noreturn]] void fail(const std::string& what) const { input_error(path_, 0, what); }

    [[noreturn]] void fail_unreadable() const {
        if (errno == ENOMEM) throw std::bad_alloc();
        fail_record("cannot be read; a record of " +
                    counted(static_cast<long>(samples().size()), "individual", "individuals") +
                    " expected");
    }

    // Of the record read last; lines are counted in text only.
    [[noreturn]] void fail_record(const std::string& what) const {
        input_error(path_, is_text() ? static_cast<long>(file_->lineno) : 0,
                    "record " + std::to_string(records_) + ' ' + what);
    }

    std::string path_;
    std::unique_ptr<htsFile, Release> file_;
    VcfHeader header_;
    std::unique_ptr<bcf1_t, Release> record_;
    long records_ = 0;
    VcfLine fields_;  // of a text
};

VcfFile::VcfFile(std::string path) : file_(std::make_unique<File>(std::move(path))) {}

VcfFile::~VcfFile() = default;

const std::string& VcfFile::path() const {
    return file_->path();
}

std::span<char* const> VcfFile::samples() const {
    return file_->samples();
}

bool VcfFile::next(VcfRecord& record) {
    return file_->next(record);
}

VcfFile::Packed VcfFile::pack(std::span<unsigned char> out) {
    return file_->pack(out);
}

}  // namespace vort
