// VCF and BCF, one marker after the other; genotypes of those that are left out by name are never
// looked at.

#include <unordered_map>

#include "common/input_error.h"
#include "study/cohort.h"
#include "study/compaction.h"
#include "study/fam_file.h"
#include "study/packed_columns.h"
#include "study/vcf_file.h"
#include "study/word_lines.h"

namespace vort {

namespace {

class VcfReader : public CohortReader {
  public:
    VcfReader(const StudyFiles& files, Study& study) : file_(files.vcf), fam_(files.fam) {
        study.inputs.push_back({"vcf", files.vcf});
        if (!fam_.empty()) study.inputs.push_back({"fam", fam_});
    }

    // In the order of the samples; who they are is told by the .fam, or by their one name.
    People people() override {
        People people{file_.path(), {}, true};
        for (const char* const name : file_.samples()) {
            require_name(name, people.all.size() + 1);
            people.all.push_back({{name, name, 0}, true, "", 0});
        }
        if (people.all.empty()) {
            input_error(file_.path(), 0, "has no samples; genotypes expected");
        }
        return fam_.empty() ? people : named_by_fam(people);
    }

    Cohort read(std::span<const int> wanted, MarkerChoice& choice, Study& study) override {
        Cohort cohort;
        const std::vector<Run> runs = runs_of(wanted);
        PackedColumns columns(static_cast<int>(wanted.size()));
        std::vector<unsigned char> packed(packed_size(static_cast<int>(file_.samples().size())));
        VcfRecord record;
        while (file_.next(record)) {
            ++study.markers_read;
            if (record.alleles > 2) {
                ++many_alleles_;
            } else if (choice.takes(record.marker)) {
                const VcfFile::Packed result = file_.pack(packed);
                if (!result.has_calls) ++without_calls_;
                polyploid_ += result.polyploid;
                pack_runs(packed, runs, columns.add());
                cohort.markers.push_back(std::move(record.marker));
            }
        }
        cohort.genotypes = columns.take();
        cohort.rows = first_numbers(wanted.size());
        cohort.columns = first_numbers(cohort.markers.size());
        tell(study);
        return cohort;
    }

  private:
    // Where a name is empty, the library takes the rest of the header's line for it.
    void require_name(std::string_view name, std::size_t number) const {
        if (name.find_first_of("\t\n") == std::string_view::npos) return;
        input_error(file_.path(), 0,
                    "sample " + std::to_string(number) + " has no name; one expected");
    }

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

std::unique_ptr<CohortReader> vcf_reader(const StudyFiles& files, Study& study) {
    return std::make_unique<VcfReader>(files, study);
}

}  // namespace vort
