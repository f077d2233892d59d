// Text is read line by line, and what is plain in it taken as it stands (vcf_line.h); lines that
// are not, and BCF, go through the library's own reader. Either way genotypes are not looked at
// before they are asked for.
#include "study/vcf_file.h"

#include <fcntl.h>
#include <htslib/hfile.h>
#include <htslib/hts_log.h>
#include <htslib/kseq.h>
#include <htslib/vcf.h>

#include <cerrno>
#include <new>

#include "common/file_descriptor.h"
#include "common/input_error.h"
#include "study/chromosome_names.h"
#include "study/vcf_line.h"
#include "study/word_lines.h"

namespace vort {

namespace {

struct Release {
    void operator()(hFILE* file) const { hclose_abruptly(file); }
    void operator()(htsFile* file) const { hts_close(file); }
    void operator()(bcf_hdr_t* header) const { bcf_hdr_destroy(header); }
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
    if (opened != nullptr) static_cast<void>(file.release());
    return opened;
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
    File(std::string path, int threads) : path_(std::move(path)) {
        require_readable(path_);
        hts_set_log_level(HTS_LOG_OFF);
        errno = 0;
        file_.reset(open_local(path_));
        if (file_ == nullptr && errno == ENOMEM) throw std::bad_alloc();
        if (file_ == nullptr) fail("is no VCF or BCF file; one of the two expected");
        if (hts_check_EOF(file_.get()) == 0) {
            fail("is cut short; the block that ends a bgzipped file expected; copy it again");
        }
        if (threads > 1) hts_set_threads(file_.get(), threads - 1);
        errno = 0;
        header_.reset(bcf_hdr_read(file_.get()));
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
        const int result = is_text() ? hts_getline(file_.get(), KS_SEP_LINE, &file_->line)
                                     : bcf_read(file_.get(), header_.get(), record_.get());
        if (result == -1) return false;
        ++records_;
        if (result < 0) fail_unreadable();
        is_plain_ = is_text() && split_vcf_line(line(), fields_);
        if (is_plain_) {
            record = {marker_of(fields_.contig, fields_.name, fields_.position, fields_.alternative,
                                fields_.reference),
                      fields_.alleles};
            return true;
        }
        if (is_text()) parse_line();
        check_record();
        const char* const contig = bcf_seqname(header_.get(), record_.get());
        record = {marker_of(contig == nullptr ? "." : contig, record_->d.id,
                            static_cast<long>(record_->pos) + 1, allele(1), allele(0)),
                  static_cast<int>(record_->n_allele)};
        return true;
    }

    Packed pack(std::span<unsigned char> out) {
        const auto individuals = static_cast<int>(samples().size());
        if (is_plain_) {
            if (pack_plain_calls(fields_.calls, fields_.alleles, individuals, out)) return {};
            is_plain_ = false;
            parse_line();
            check_record();
        }
        const VcfCalls calls = this->calls();
        const PackedCalls packed = pack_calls(calls, individuals, out);
        if (!packed.in_range) fail_record("calls an allele that it does not have");
        return {calls.first != nullptr, packed.polyploid};
    }

  private:
    htsExactFormat format() const { return hts_get_format(file_.get())->format; }
    bool is_text() const { return format() == vcf; }
    std::string_view line() const { return {file_->line.s, file_->line.l}; }

    // Takes the line apart where it lies.
    void parse_line() {
        require_position();
        if (vcf_parse(&file_->line, header_.get(), record_.get()) < 0) fail_unreadable();
    }

    // One that is no number would be read as 0.
    void require_position() const {
        const std::string_view rest = line().substr(std::min(line().find('\t'), line().size()));
        if (rest.empty()) fail_unreadable();
        const std::string_view word = rest.substr(1, rest.find('\t', 1) - 1);
        long position = 0;
        if (read_whole(word, position) && position >= 0) return;
        fail_record("has position " + std::string(word) + "; a whole number expected");
    }

    void check_record() {
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

    std::string allele(int k) const { return k < record_->n_allele ? record_->d.allele[k] : "."; }

    [[noreturn]] void fail(const std::string& what) const { input_error(path_, 0, what); }

    [[noreturn]] void fail_unreadable() const {
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
    std::unique_ptr<bcf_hdr_t, Release> header_;
    std::unique_ptr<bcf1_t, Release> record_;
    long records_ = 0;
    bool is_plain_ = false;  // `fields_` hold the record, and `record_` does not
    VcfLine fields_;
};

VcfFile::VcfFile(std::string path, int threads)
    : file_(std::make_unique<File>(std::move(path), threads)) {}

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
