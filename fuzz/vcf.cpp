// A VCF as text, bgzipped, or a BCF: the whole input; or, of an input that begins with "%%", the
// section vcf beside fam and those of study_case.h. What is accepted is the same when the library
// has made a BCF of it: lines of text have a quick reader of their own, BCF has not.
#include <htslib/vcf.h>

#include <algorithm>
#include <memory>

#include "support/harness.h"
#include "support/study_case.h"

namespace vort::fuzz {

namespace {

struct Release {
    void operator()(htsFile* file) const { hts_close(file); }
    void operator()(bcf_hdr_t* header) const { bcf_hdr_destroy(header); }
    void operator()(bcf1_t* record) const { bcf_destroy(record); }
};
using File = std::unique_ptr<htsFile, Release>;
using Header = std::unique_ptr<bcf_hdr_t, Release>;
using Record = std::unique_ptr<bcf1_t, Release>;

// What the library takes exception to in a record that it returns all the same.
constexpr int kHarmless = BCF_ERR_CTG_UNDEF | BCF_ERR_TAG_UNDEF;

Header header_of(const File& file) {
    return Header(file == nullptr ? nullptr : bcf_hdr_read(file.get()));
}

// False where the library does not take the whole file; it looks at more than is needed here.
bool write_bcf(const std::string& from, const std::string& to) {
    const File in(hts_open(from.c_str(), "r"));
    const Header header = header_of(in);
    if (header == nullptr) return false;
    std::vector<Record> records;  // names that the header lacks are added to it on the way
    for (;;) {
        Record record(bcf_init());
        const int result = bcf_read(in.get(), header.get(), record.get());
        if (result == -1) break;
        if (result < 0 || (record->errcode & ~kHarmless) != 0) return false;
        record->errcode = 0;
        records.push_back(std::move(record));
    }
    const File out(hts_open(to.c_str(), "wbu"));
    if (out == nullptr || bcf_hdr_write(out.get(), header.get()) != 0) return false;
    for (const Record& record : records) {
        if (bcf_write(out.get(), header.get(), record.get()) != 0) return false;
    }
    return true;
}

// Texts of a BCF end at a NUL, and one that begins with a bell is none.
bool fits_bcf(const Study& study) {
    return std::ranges::all_of(study.markers, [](const MarkerInfo& marker) {
        const std::string all = marker.name + marker.a1 + marker.a2;
        return all.find_first_of(std::string_view("\0\a", 2)) == std::string::npos;
    });
}

void require_same(const Study& study, const Study& again) {
    require(again.phenotypes == study.phenotypes, "a BCF has the same phenotypes");
    require(again.markers.size() == study.markers.size(), "a BCF has the same markers");
    for (std::size_t j = 0; j < study.markers.size(); ++j) {
        const MarkerInfo& one = study.markers[j];
        const MarkerInfo& other = again.markers[j];
        require(one.name == other.name && one.chromosome == other.chromosome &&
                    one.position == other.position && one.a1 == other.a1 && one.a2 == other.a2,
                "a BCF has the same markers");
        for (int i = 0; i < study.genotypes.individuals(); ++i) {
            require(study.genotypes.code(i, static_cast<int>(j)) ==
                        again.genotypes.code(i, static_cast<int>(j)),
                    "a BCF has the same genotypes");
        }
    }
}

void run(std::string_view text) {
    static Files files;
    const bool alone = !text.starts_with("%%");
    const Sections input(alone ? std::string_view() : text);
    StudyRequest request = request_for(input, files);
    request.files.format = StudyFormat::kVcf;
    request.files.vcf = files.put("vcf", alone ? text : input["vcf"]);
    if (input.has("fam")) request.files.fam = files.put("fam", input["fam"]);
    const auto study = check_study(request, files);
    const std::string bcf = files.put("bcf", "");
    if (!study || !fits_bcf(*study) || !write_bcf(request.files.vcf, bcf)) return;
    // Names with a NUL make headers that the library itself does not read.
    if (header_of(File(hts_open(bcf.c_str(), "r"))) == nullptr) return;
    request.files.vcf = bcf;
    Study again;
    require(accepts([&] { again = load_study(request); }), "a BCF is accepted as the VCF was");
    require_same(*study, again);
}

}  // namespace

}  // namespace vort::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    vort::fuzz::run(vort::fuzz::text_of(data, size));
    return 0;
}
