#include "study/phenotype.h"

#include <algorithm>

#include "common/input_error.h"
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

Phenotypes own_phenotypes(const People& people, bool control_is_0) {
    Phenotypes phenotypes{people.file, {}};
    StatusColumn column(people.file, control_is_0);
    for (const Person& person : people.all) {
        if (person.status.empty()) {
            input_error(people.file, 0, "has no phenotypes; name a file that does by --pheno");
        }
        phenotypes.values.push_back(column.read(person.status, person.line));
    }
    column.require_coding();
    return phenotypes;
}

bool is_header(const WordLines& lines) {
    return (lines[0] == "FID" || lines[0] == "#FID") && lines[1] == "IID";
}

// The column of the file's phenotypes, from 0. `lines` stand on the first line.
std::size_t column_in(const WordLines& lines, const std::string& name) {
    if (name.empty()) return 2;
    if (!is_header(lines)) {
        lines.fail("no header; one that begins with FID IID expected, to find --pheno-name " +
                   name);
    }
    const auto& titles = lines.words();
    const auto found = std::find(titles.begin() + 2, titles.end(), name);
    if (found == titles.end()) {
        lines.fail("no column " + name + "; one of that name expected; correct --pheno-name");
    }
    return static_cast<std::size_t>(found - titles.begin());
}

// A file of phenotypes, line by line.
class PhenotypeFile {
  public:
    PhenotypeFile(const PhenotypeSource& source, const PersonNames& names, std::size_t people)
        : names_(names),
          lines_(source.file, "FID IID and a phenotype", static_cast<std::size_t>(-1)),
          column_(source.file, source.control_is_0),
          line_of_(people, 0) {
        phenotypes_.file = source.file;
        phenotypes_.values.assign(people, kNoPhenotype);
        read(source.name);
    }

    Phenotypes take() { return std::move(phenotypes_); }
    long strangers() const { return strangers_; }

  private:
    void read(const std::string& name) {
        if (!lines_.next()) input_error(lines_.path(), 0, "is empty; phenotypes expected");
        lines_.require_at_least(3);
        const std::size_t place = column_in(lines_, name);
        bool more = !is_header(lines_) || lines_.next();
        for (; more; more = lines_.next()) {
            lines_.require_at_least(place + 1);
            take_line(column_.read(lines_[place], lines_.line()));
        }
        column_.require_coding();
    }

    void take_line(short phenotype) {
        const int i = names_.find(lines_[0], lines_[1]);
        if (i < 0) {
            ++strangers_;
            return;
        }
        long& line = line_of_[static_cast<std::size_t>(i)];
        if (line > 0) {
            lines_.fail("individual " + std::string(lines_[0]) + ' ' + std::string(lines_[1]) +
                        ", as in line " + std::to_string(line) +
                        "; each individual once expected; take one of them out");
        }
        line = lines_.line();
        phenotypes_.values[static_cast<std::size_t>(i)] = phenotype;
    }

    const PersonNames& names_;
    WordLines lines_;
    StatusColumn column_;
    std::vector<long> line_of_;  // that a person stands in; 0 none
    Phenotypes phenotypes_;
    long strangers_ = 0;
};

}  // namespace

Phenotypes read_phenotypes(const People& people, const PersonNames& names,
                           const PhenotypeSource& source, Study& study) {
    if (source.file.empty()) return own_phenotypes(people, source.control_is_0);
    PhenotypeFile file(source, names, people.all.size());
    study.inputs.push_back({"phenotype", source.file});
    if (file.strangers() > 0) {
        study.notes.push_back(counted(file.strangers(), "individual", "individuals") + " of " +
                              source.file + (file.strangers() == 1 ? " is" : " are") +
                              " not in the study.");
    }
    return file.take();
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
