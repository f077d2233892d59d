// One random study in files of every format, with people and markers left out and markers sorted:
// each comes to what is found by taking genotypes one by one.
#include <gtest/gtest.h>
#include <htslib/vcf.h>

#include <algorithm>
#include <memory>
#include <random>

#include "study/study_directory.h"
#include "study/study_files.h"

namespace vort::testing {
namespace {

// Rewrites a VCF; mode "wz" bgzips it, "wb" makes it BCF.
void convert(const std::string& from, const std::string& to, const char* mode) {
    htsFile* const in = hts_open(from.c_str(), "r");
    htsFile* const out = hts_open(to.c_str(), mode);
    bcf_hdr_t* const header = bcf_hdr_read(in);
    bcf1_t* const record = bcf_init();
    EXPECT_EQ(bcf_hdr_write(out, header), 0);
    while (bcf_read(in, header, record) == 0) EXPECT_EQ(bcf_write(out, header, record), 0);
    bcf_destroy(record);
    bcf_hdr_destroy(header);
    hts_close(out);
    hts_close(in);
}

struct Expected {
    std::string people, markers, codes, phenotypes;
};

class RandomStudyFiles {
  public:
    explicit RandomStudyFiles(unsigned seed) : random_(seed) {
        const int people = 2 + below(seed % 10 == 0 ? 700 : 90);
        const int markers = 1 + below(60);
        const bool sorted = below(2) == 0;
        for (int i = 0; i < people; ++i) {
            const std::string name = "i" + std::to_string(i);
            const int status = i < 2 ? i + 1 : below(2 + below(2));
            study_.people.push_back(name + ' ' + name + " 0 0 0 " + std::to_string(status));
            statuses_.push_back(status);
        }
        for (int j = 0; j < markers; ++j) {
            study_.markers.push_back({sorted ? 1 + 26 * j / 60 : 1 + below(26),
                                      "m" + std::to_string(j), 1 + (sorted ? j : below(9)), "A",
                                      "C"});
            std::vector<int> column;
            for (int i = 0; i < people; ++i) column.push_back(below(4) - 1);
            study_.codes.push_back(column);
        }
        choose();
    }

    void write() {
        write_bed(study_, "s");
        write_file("removed", removed_);
        write_file("excluded", excluded_);
        std::string phenotypes;
        for (std::size_t i = 0; i < statuses_.size(); ++i) {
            phenotypes += name(i) + ' ' + name(i) + ' ' + std::to_string(statuses_[i]) + '\n';
        }
        write_file("phenotypes", phenotypes);
        write_file("s.vcf", vcf());
        convert("s.vcf", "s.vcf.gz", "wz");
        convert("s.vcf", "s.bcf", "wb");
        write_file("s.raw", raw());
        const Study all = load_study(bed_request("s"));
        const int individuals = all.genotypes.individuals();
        const StudyParameters parameters{7, 3, 2, 0.25};
        write_study_directory(all, parameter_text(parameters, individuals, all.genotypes.markers()),
                              ".");
    }

    Expected expected() const {
        Expected text;
        for (const int i : people_) {
            text.people += name(at(i)) + '/' + name(at(i)) + ' ';
            text.phenotypes += statuses_[at(i)] == 2 ? '1' : '0';
        }
        for (const int j : markers_) {
            const MarkerInfo& m = study_.markers[at(j)];
            text.markers += std::to_string(m.chromosome) + ':' + std::to_string(m.position) + ':' +
                            m.name + ":AC ";
            if (!text.codes.empty()) text.codes += ' ';
            for (const int i : people_) text.codes += "-012"[study_.codes[at(j)][at(i)] + 1];
        }
        return text;
    }

  private:
    static std::size_t at(int i) { return static_cast<std::size_t>(i); }
    static std::string name(std::size_t i) { return "i" + std::to_string(i); }
    int below(int limit) { return static_cast<int>(random_() % static_cast<unsigned>(limit)); }

    void choose() {
        const int out = below(4);  // quarters
        for (int i = 0; i < static_cast<int>(study_.people.size()); ++i) {
            const bool removed = i >= 2 && below(4) < out;
            if (removed) removed_ += name(at(i)) + ' ' + name(at(i)) + '\n';
            if (!removed && statuses_[at(i)] != 0) people_.push_back(i);
        }
        for (int j = 0; j < static_cast<int>(study_.markers.size()); ++j) {
            const bool excluded = j > 0 && below(4) < out;
            if (excluded) excluded_ += study_.markers[at(j)].name + '\n';
            if (!excluded) markers_.push_back(j);
        }
        std::stable_sort(markers_.begin(), markers_.end(), [&](int a, int b) {
            const MarkerInfo &x = study_.markers[at(a)], &y = study_.markers[at(b)];
            return std::pair(x.chromosome, x.position) < std::pair(y.chromosome, y.position);
        });
    }

    // In any of the spellings that a call has.
    std::string call(int code) {
        static const std::vector<std::vector<std::string>> spellings = {
            {"./.", ".", ".|.", "0/.", "./1", ".|0"},
            {"0/0", "0|0", "0"},
            {"0/1", "1/0", "0|1", "1|0"},
            {"1/1", "1|1", "1"}};
        const auto& texts = spellings[at(code + 1)];
        return texts[at(below(static_cast<int>(texts.size())))];
    }

    std::string vcf() {
        std::string text =
            "##fileformat=VCFv4.2\n##FORMAT=<ID=GT,Number=1,Type=String,Description=\"\">\n"
            "##FORMAT=<ID=DP,Number=1,Type=Integer,Description=\"\">\n";
        for (int c = 1; c <= 26; ++c) text += "##contig=<ID=chr" + std::to_string(c) + ">\n";
        text += "#CHROM\tPOS\tID\tREF\tALT\tQUAL\tFILTER\tINFO\tFORMAT";
        for (std::size_t i = 0; i < statuses_.size(); ++i) text += '\t' + name(i);
        for (std::size_t j = 0; j < study_.markers.size(); ++j) {
            const MarkerInfo& m = study_.markers[j];
            text += "\nchr" + std::to_string(m.chromosome) + '\t' + std::to_string(m.position) +
                    '\t' + m.name + "\tC\tA\t.\t.\t.\tGT:DP";
            for (const int code : study_.codes[j]) text += '\t' + call(code) + ":7";
        }
        return text + '\n';
    }

    std::string raw() {
        std::string text = "FID IID PAT MAT SEX PHENOTYPE";
        for (const MarkerInfo& m : study_.markers) text += ' ' + m.name + "_A";
        for (std::size_t i = 0; i < statuses_.size(); ++i) {
            text += '\n' + study_.people[i];
            for (const auto& column : study_.codes) {
                text += (below(9) == 0 ? '\t' : ' ') +
                        (column[i] < 0 ? "NA" : std::to_string(column[i]));
            }
        }
        return text + (below(2) == 0 ? "\r\n" : "");
    }

    std::mt19937 random_;
    PlainStudy study_;
    std::vector<int> statuses_, people_, markers_;
    std::string removed_, excluded_;
};

struct Format {
    const char* name;
    StudyFormat format;
    const char* vcf = "";
};

StudyRequest request_for(const Format& format) {
    StudyRequest request = bed_request("s");
    request.files.format = format.format;
    request.files.raw = "s.raw";
    request.files.directory = ".";
    request.files.vcf = format.vcf;
    if (format.format == StudyFormat::kVcf) {
        request.phenotype.file = "phenotypes";
        request.files.fam.clear();
    }
    request.filters.remove = "removed";
    request.filters.exclude = "excluded";
    request.threads = 2;
    return request;
}

void expect_the_same(unsigned seed) {
    constexpr Format kFormats[] = {{"bed", StudyFormat::kBed},
                                   {"raw", StudyFormat::kRaw},
                                   {"directory", StudyFormat::kDirectory},
                                   {"VCF", StudyFormat::kVcf, "s.vcf"},
                                   {"bgzipped VCF", StudyFormat::kVcf, "s.vcf.gz"},
                                   {"BCF", StudyFormat::kVcf, "s.bcf"}};
    RandomStudyFiles files(seed);
    files.write();
    const Expected expected = files.expected();
    for (const Format& format : kFormats) {
        SCOPED_TRACE(format.name);
        const Study study = load_study(request_for(format));
        EXPECT_EQ(people_of(study), expected.people);
        EXPECT_EQ(phenotypes_of(study), expected.phenotypes);
        EXPECT_EQ(codes_of(study.genotypes), expected.codes);
        if (format.format != StudyFormat::kDirectory) {
            EXPECT_EQ(markers_of(study), expected.markers);
        } else {
            EXPECT_EQ(study.parameters->best_m, 3);
        }
    }
}

TEST(RandomSelection, IsTheSameInEveryFormat) {
    const TemporaryFolder folder;
    for (unsigned seed = 1; seed <= 60 && !::testing::Test::HasFailure(); ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        expect_the_same(seed);
    }
}

}  // namespace
}  // namespace vort::testing
