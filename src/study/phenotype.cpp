#include "study/phenotype.h"

#include <algorithm>

#include "common/input_error.h"
#include "study/person_column.h"
#include "study/word_lines.h"

namespace vort {

namespace {

// Values of a phenotype column, and what they are taken for.
class StatusColumn {
  public:
    StatusColumn(std::string file, bool control_is_0)
        : file_(std::move(file)), control_is_0_(control_is_0) {}

    short read(std::string_view text, long line) {
        if (text == "-9" || text == "NA") return kNoPhenotype;
        if (text == "0" || text == "1") ++(text == "0" ? zeros_ : ones_);
        if (control_is_0_) {
            if (text == "0") return 0;
            if (text == "1") return 1;
        } else {
            if (text == "0") return kNoPhenotype;
            if (text == "1") return 0;
            if (text == "2") {
                ++twos_;
                return 1;
            }
        }
        fail(text, line);
    }

    // 0 and 1 alone are hardly "missing" and "control".
    void require_coding() const {
        if (control_is_0_ || twos_ > 0 || ones_ == 0 || zeros_ == 0) return;
        input_error(file_, 0,
                    "the phenotypes are 0 and 1; 1 (control) and 2 (case) expected; if 0 is a "
                    "control and 1 a case, say so by --1");
    }

  private:
    [[noreturn]] void fail(std::string_view text, long line) const {
        std::string found = "phenotype " + std::string(text);
        if (!control_is_0_) {
            input_error(file_, line,
                        found + "; 1 (control), 2 (case), or 0, -9 or NA (missing) expected");
        }
        found += "; 0 (control), 1 (case), or -9 or NA (missing) expected";
        if (text == "2") found += "; where 1 is a control and 2 a case leave out --1";
        input_error(file_, line, found);
    }

    std::string file_;
    bool control_is_0_;
    long zeros_ = 0;
    long ones_ = 0;
    long twos_ = 0;
};

Phenotypes own_phenotypes(const People& people, const PhenotypeSource& source) {
    Phenotypes phenotypes{people.file, {}};
    StatusColumn column(people.file, source.control_is_0);
    phenotypes.values.reserve(people.all.size());
    for (const Person& person : people.all) {
        if (person.status.empty() && !source.optional) {
            input_error(people.file, 0, "has no phenotypes; name a file that does by --pheno");
        }
        phenotypes.values.push_back(
            person.status.empty() ? kNoPhenotype : column.read(person.status, person.line));
    }
    column.require_coding();
    return phenotypes;
}

}  // namespace

Phenotypes read_phenotypes(const People& people, const PersonNames& names,
                           const PhenotypeSource& source, Study& study) {
    if (source.file.empty()) return own_phenotypes(people, source);
    Phenotypes phenotypes{source.file, std::vector<short>(people.all.size(), kNoPhenotype)};
    StatusColumn column(source.file, source.control_is_0);
    const auto take = [&](int person, std::string_view value, long line) {
        const short phenotype = column.read(value, line);
        if (person >= 0) phenotypes.values[static_cast<std::size_t>(person)] = phenotype;
    };
    read_person_column(
        {source.file, source.name, "--pheno-name", "a phenotype", "phenotypes", "phenotype"}, names,
        people.all.size(), study, take);
    column.require_coding();
    return phenotypes;
}

void require_both_groups(const std::string& file, const std::vector<short>& phenotypes,
                         bool before) {
    const auto cases = std::count(phenotypes.begin(), phenotypes.end(), short{1});
    const auto controls = std::count(phenotypes.begin(), phenotypes.end(), short{0});
    if (cases > 0 && controls > 0) return;
    const char* advice = "; both expected";
    if (!before) advice = " are left; both expected; loosen the filters";
    if (cases + controls == 0 && before) {
        advice =
            "; both expected; name the file that has phenotypes by --pheno, or compare its "
            "FID and IID with the study's";
    }
    input_error(file, 0,
                counted(cases, "case", "cases") + " and " +
                    counted(controls, "control", "controls") + advice);
}

}  // namespace vort
