#include "study/person_column.h"

#include <algorithm>

#include "common/input_error.h"
#include "study/word_lines.h"

namespace vort {

namespace {

bool is_header(const WordLines& lines) {
    return (lines[0] == "FID" || lines[0] == "#FID") && lines[1] == "IID";
}

// The place of the column, from 0. `lines` stand on the first line.
std::size_t place_of(const PersonColumn& column, const WordLines& lines) {
    if (column.name.empty()) return 2;
    const std::string named = std::string(column.option) + ' ' + column.name;
    if (!is_header(lines)) {
        lines.fail("no header; one that begins with FID IID expected, to find " + named);
    }
    const auto& titles = lines.words();
    const auto found = std::find(titles.begin() + 2, titles.end(), column.name);
    if (found == titles.end()) {
        lines.fail("no column " + column.name + "; one of that name expected; correct " +
                   std::string(column.option));
    }
    return static_cast<std::size_t>(found - titles.begin());
}

// Which line a person stands in.
class LinesOfPeople {
  public:
    LinesOfPeople(const PersonNames& names, std::size_t people)
        : names_(names), line_of_(people, 0) {}

    int person(const WordLines& lines) {
        const int i = names_.find(lines[0], lines[1]);
        if (i < 0) ++strangers_;
        return i;
    }

    void require_first(int person, const WordLines& lines) {
        if (person < 0) return;
        long& line = line_of_[static_cast<std::size_t>(person)];
        if (line > 0) {
            lines.fail("individual " + std::string(lines[0]) + ' ' + std::string(lines[1]) +
                       ", as in line " + std::to_string(line) +
                       "; each individual once expected; take one of them out");
        }
        line = lines.line();
    }

    long strangers() const { return strangers_; }

  private:
    const PersonNames& names_;
    std::vector<long> line_of_;  // 0: none
    long strangers_ = 0;
};

}  // namespace

std::string read_person_column(const PersonColumn& column, const PersonNames& names,
                               std::size_t people, Study& study, const TakePersonValue& take) {
    const std::string expected = "FID IID and " + std::string(column.one);
    WordLines lines(column.file, expected, static_cast<std::size_t>(-1));
    if (!lines.next()) {
        input_error(column.file, 0, "is empty; " + std::string(column.many) + " expected");
    }
    lines.require_at_least(3);
    const std::size_t place = place_of(column, lines);
    const bool header = is_header(lines);
    std::string title(header ? lines[place] : "");
    LinesOfPeople seen(names, people);
    for (bool more = !header || lines.next(); more; more = lines.next()) {
        lines.require_at_least(place + 1);
        const int person = seen.person(lines);
        take(person, lines[place], lines.line());
        seen.require_first(person, lines);
    }
    study.inputs.push_back({std::string(column.role), column.file});
    const long strangers = seen.strangers();
    if (strangers > 0) {
        study.notes.push_back(counted(strangers, "individual", "individuals") + " of " +
                              column.file + (strangers == 1 ? " is" : " are") +
                              " not in the study.");
    }
    return title;
}

}  // namespace vort
