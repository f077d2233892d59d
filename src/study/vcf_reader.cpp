// VCF, plain or bgzipped, and BCF, record after record; what is left out by name is never unpacked.
#include <htslib/hfile.h>
#include <htslib/hts_log.h>
#include <htslib/vcf.h>

#include <algorithm>
#include <unordered_map>

#include "common/input_error.h"
#include "study/cohort.h"
#include "study/compaction.h"
#include "study/fam_file.h"
#include "study/packed_columns.h"
#include "study/vcf_genotypes.h"
#include "study/word_lines.h"

namespace vort {

namespace {

struct Release {
    void operator()(htsFile* file) const { hts_close(file); }
    void operator()(bcf_hdr_t* header) const { bcf_hdr_destroy(header); }
    void operator()(bcf1_t* record) const { bcf_destroy(record); }
};

class VcfFile {
  public:
    VcfFile(std::string path, int threads) : path_(std::move(path)) {
        require_readable(path_);  // here, so that a name is never taken for an address
        hts_set_log_level(HTS_LOG_OFF);
        file_.reset(hts_open(path_.c_str(), "r"));
        if (file_ == nullptr || !is_vcf()) {
            fail("is no VCF or BCF file; one of the two expected");
        }
        if (hts_check_EOF(file_.get()) == 0) {
            fail("is cut short; the block that ends a bgzipped file expected; copy it again");
        }
        if (threads > 1) hts_set_threads(file_.get(), threads - 1);
        header_.reset(bcf_hdr_read(file_.get()));
        record_.reset(bcf_init());
        if (header_ == nullptr) fail("has no header that can be read; that of a VCF expected");
        if (record_ == nullptr) throw std::bad_alloc();
    }

    std::span<char* const> samples() const {
        return {header_->samples, static_cast<std::size_t>(bcf_hdr_nsamples(header_.get()))};
    }

    // The next record; null at the end. Its genotypes are not unpacked.
    bcf1_t* next() {
        const int result = bcf_read(file_.get(), header_.get(), record_.get());
        if (result == -1) return nullptr;
        ++records_;
        constexpr int kHarmless = BCF_ERR_CTG_UNDEF | BCF_ERR_TAG_UNDEF;
        if (result < 0 || (record_->errcode & ~kHarmless) != 0 ||
            record_->n_sample != samples().size()) {
            fail_record("cannot be read; a record of " +
                        counted(static_cast<long>(samples().size()), "individual", "individuals") +
                        " expected");
        }
        if (bcf_unpack(record_.get(), BCF_UN_STR) < 0) fail_record("cannot be read");
        check_position();
        return record_.get();
    }

    // The name of its contig, position, name and alleles.
    MarkerInfo marker() const {
        const char* const contig = bcf_seqname(header_.get(), record_.get());
        MarkerInfo marker{chromosome_of(contig == nullptr ? "" : contig), record_->d.id,
                          static_cast<long>(record_->pos) + 1, allele(1), allele(0)};
        if (marker.name == "." || marker.name.empty()) {
            marker.name = std::string(contig == nullptr ? "." : contig) + ':' +
                          std::to_string(marker.position) + ':' + marker.a2 + ':' + marker.a1;
        }
        return marker;
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

    const std::string& path() const { return path_; }
    [[noreturn]] void fail(const std::string& what) const { input_error(path_, 0, what); }

    // Of the record read last; lines are counted in text only.
    [[noreturn]] void fail_record(const std::string& what) const {
        input_error(path_, is_text() ? static_cast<long>(file_->lineno) : 0,
                    "record " + std::to_string(records_) + ' ' + what);
    }

  private:
    bool is_vcf() const {
        const auto format = hts_get_format(file_.get())->format;
        return format == vcf || format == bcf;
    }
    bool is_text() const { return hts_get_format(file_.get())->format == vcf; }

    // A position that is no number has been read as 0; its word stands behind the contig's.
    void check_position() const {
        if (!is_text()) return;
        const std::string_view line(file_->line.s, file_->line.l);
        const std::string_view rest = line.substr(std::min(line.find('\0'), line.size() - 1) + 1);
        const std::string_view word = rest.substr(0, rest.find('\0'));
        long position = 0;
        if (read_whole(word, position) && position == record_->pos + 1) return;
        fail_record("has position " + std::string(word) + "; a whole number expected");
    }

    std::string allele(int k) const { return k < record_->n_allele ? record_->d.allele[k] : "."; }

    std::string path_;
    std::unique_ptr<htsFile, Release> file_;
    std::unique_ptr<bcf_hdr_t, Release> header_;
    std::unique_ptr<bcf1_t, Release> record_;
    long records_ = 0;
};

class VcfReader : public CohortReader {
  public:
    VcfReader(const StudyFiles& files, int threads, Study& study)
        : file_(files.vcf, threads), fam_(files.fam) {
        study.inputs.push_back({"vcf", files.vcf});
        if (!fam_.empty()) study.inputs.push_back({"fam", fam_});
    }

    // In the order of the samples; who they are is told by the .fam, or by their one name.
    People people() override {
        People people{file_.path(), {}, true};
        for (const char* const name : file_.samples()) {
            people.all.push_back({{name, name, 0}, true, "", 0});
        }
        if (people.all.empty()) file_.fail("has no samples; genotypes expected");
        return fam_.empty() ? people : named_by_fam(people);
    }

    Cohort read(std::span<const int> wanted, MarkerChoice& choice, Study& study) override {
        Cohort cohort;
        const std::vector<Run> runs = runs_of(wanted);
        PackedColumns columns(static_cast<int>(wanted.size()));
        std::vector<unsigned char> packed(packed_size(static_cast<int>(file_.samples().size())));
        while (const bcf1_t* record = file_.next()) {
            ++study.markers_read;
            if (record->n_allele > 2) {
                ++many_alleles_;
                continue;
            }
            MarkerInfo marker = file_.marker();
            if (!choice.takes(marker)) continue;
            pack_record(packed);
            pack_runs(packed, runs, columns.add());
            cohort.markers.push_back(std::move(marker));
        }
        cohort.genotypes = columns.take();
        cohort.rows = first_numbers(wanted.size());
        cohort.columns = first_numbers(cohort.markers.size());
        tell(study);
        return cohort;
    }

  private:
    People named_by_fam(const People& samples) const {
        People people = read_fam(fam_);
        std::unordered_map<std::string, const Person*> by_name;
        for (const Person& person : people.all) {
            const auto [place, fresh] = by_name.emplace(person.name.id, &person);
            if (!fresh) place->second = nullptr;  // only FID_IID tells them apart
        }
        for (const Person& person : people.all) {
            by_name.emplace(person.name.family + '_' + person.name.id, &person);
        }
        std::vector<Person> all;
        for (const Person& sample : samples.all) {
            const auto found = by_name.find(sample.name.id);
            if (found == by_name.end() || found->second == nullptr) {
                input_error(fam_, 0,
                            "has no individual " + sample.name.id + "; every sample of " +
                                file_.path() + " expected, by IID or FID_IID");
            }
            all.push_back(*found->second);
        }
        people.all = std::move(all);
        return people;
    }

    void pack_record(std::vector<unsigned char>& packed) {
        const VcfCalls calls = file_.calls();
        const auto individuals = static_cast<int>(file_.samples().size());
        if (calls.first == nullptr) ++without_calls_;
        const PackedCalls result = pack_calls(calls, individuals, packed);
        if (!result.in_range) file_.fail_record("calls an allele that it does not have");
        polyploid_ += result.polyploid;
    }

    void tell(Study& study) const {
        leave_out(study, LeftOut::What::kMarkers, many_alleles_, "more than one ALT allele");
        if (without_calls_ > 0) {
            study.notes.push_back(counted(without_calls_, "marker has", "markers have") +
                                  " no GT; all genotypes there are missing.");
        }
        if (polyploid_ > 0) {
            study.notes.push_back(counted(polyploid_, "genotype", "genotypes") +
                                  " of more than two alleles count as missing.");
        }
    }

    VcfFile file_;
    std::string fam_;
    long many_alleles_ = 0;
    long without_calls_ = 0;
    long polyploid_ = 0;
};

}  // namespace

std::unique_ptr<CohortReader> vcf_reader(const StudyFiles& files, int threads, Study& study) {
    return std::make_unique<VcfReader>(files, threads, study);
}

}  // namespace vort
