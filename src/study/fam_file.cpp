#include "study/fam_file.h"

#include "study/word_lines.h"

namespace vort {

Person person_of(const std::vector<std::string_view>& six_words, long line) {
    Person person;
    person.name.family = six_words[0];
    person.name.id = six_words[1];
    person.founder = six_words[2] == "0" && six_words[3] == "0";
    const std::string_view sex = six_words[4];
    if (sex == "1" || sex == "2") person.name.sex = sex == "1" ? 1 : 2;
    person.status = six_words[5];
    person.line = line;
    return person;
}

People read_fam(const std::string& path) {
    People people{path, {}, false};
    WordLines lines(path, "FID IID PAT MAT SEX PHENOTYPE", 6);
    while (lines.next()) {
        lines.require(6);
        people.all.push_back(person_of(lines.words(), lines.line()));
    }
    if (people.all.empty()) lines.fail("no individual; at least one expected");
    return people;
}

}  // namespace vort
