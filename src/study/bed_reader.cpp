// Binary files: individuals in the .fam, markers in the .bim, genotypes in the .bed, mapped.
#include <algorithm>
#include <array>

#include "common/input_error.h"
#include "genotypes/mapped_file.h"
#include "study/bim_file.h"
#include "study/cohort.h"
#include "study/fam_file.h"

namespace vort {

namespace {

constexpr std::size_t kHeader = 3;
constexpr std::array<unsigned char, kHeader> kMagic = {0x6C, 0x1B, 0x01};

void check_bed(const MappedFile& file, std::size_t individuals, std::size_t markers) {
    if (file.size() < kHeader || !std::equal(kMagic.begin(), kMagic.begin() + 2, file.bytes())) {
        input_error(file.path(), 0,
                    "is no .bed file; one that begins with the bytes 6C 1B expected");
    }
    if (file.bytes()[2] != kMagic[2]) {
        input_error(file.path(), 0,
                    "is individual-major; a SNP-major file expected; convert it, for example by "
                    "plink --make-bed");
    }
    const std::size_t expected = kHeader + (individuals + 3) / 4 * markers;
    if (file.size() == expected) return;
    input_error(file.path(), 0,
                std::to_string(file.size()) + " bytes; " + std::to_string(expected) +
                    " expected for " + std::to_string(individuals) + " individuals (.fam) and " +
                    std::to_string(markers) + " markers (.bim)");
}

// A .fam that has lost a line may fit a .bed in size, but then somebody's genotypes lie where
// nothing should. Looks at the first columns, in which such a person is bound to have some.
void tell_of_padding(const MappedFile& file, std::size_t individuals, std::size_t markers,
                     Study& study) {
    constexpr std::size_t kLooked = 1000;
    const std::size_t used = individuals % 4;
    if (used == 0) return;
    const std::size_t stride = (individuals + 3) / 4;
    for (std::size_t j = 1; j <= std::min(markers, kLooked); ++j) {
        if (file.bytes()[kHeader + j * stride - 1] >> 2 * used == 0) continue;
        study.notes.push_back(file.path() + " has something behind the last of " +
                              std::to_string(individuals) +
                              " individuals; see whether the .fam has lost a line.");
        return;
    }
}

class BedReader : public CohortReader {
  public:
    BedReader(const StudyFiles& files, Study& study) : files_(files) {
        study.inputs.insert(study.inputs.end(),
                            {{"bed", files.bed}, {"bim", files.bim}, {"fam", files.fam}});
    }

    People people() override {
        People people = read_fam(files_.fam);
        people_ = people.all.size();
        return people;
    }

    Cohort read(std::span<const int> wanted, MarkerChoice& choice, Study& study) override {
        Cohort cohort;
        cohort.markers = read_bim(files_.bim);
        const auto file = std::make_shared<const MappedFile>(files_.bed);
        check_bed(*file, people_, cohort.markers.size());
        tell_of_padding(*file, people_, cohort.markers.size(), study);
        study.markers_read = static_cast<long>(cohort.markers.size());
        cohort.genotypes = Genotypes(static_cast<int>(people_),
                                     static_cast<int>(cohort.markers.size()), file, kHeader);
        cohort.rows.assign(wanted.begin(), wanted.end());
        choice.apply(cohort.markers, cohort.columns);
        return cohort;
    }

  private:
    StudyFiles files_;
    std::size_t people_ = 0;
};

}  // namespace

std::unique_ptr<CohortReader> bed_reader(const StudyFiles& files, Study& study) {
    return std::make_unique<BedReader>(files, study);
}

}  // namespace vort
