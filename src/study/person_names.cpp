#include "study/person_names.h"

#include "common/input_error.h"
#include "study/word_lines.h"

namespace vort {

namespace {

std::string joined(std::string_view family, char between, std::string_view id) {
    return std::string(family).append(1, between).append(id);
}

// Which of the people a file names, FID IID a line.
std::vector<char> named_in(const std::string& path, const std::string& option,
                           const PersonNames& names, std::size_t people, Study& study) {
    std::vector<char> named(people, 0);
    long unknown = 0;
    WordLines lines(path, "FID IID", 2);
    while (lines.next()) {
        lines.require_at_least(2);
        const int i = names.find(lines[0], lines[1]);
        if (i < 0) {
            ++unknown;
        } else {
            named[static_cast<std::size_t>(i)] = 1;
        }
    }
    study.inputs.push_back({option.substr(2), path});
    if (unknown > 0) {
        study.notes.push_back(counted(unknown, "line", "lines") + " of " + option +
                              (unknown == 1 ? " names" : " name") + " nobody in the study.");
    }
    return named;
}

}  // namespace

PersonNames::PersonNames(const People& people) : one_name_(people.one_name) {
    numbers_.reserve(people.all.size());
    for (std::size_t i = 0; i < people.all.size(); ++i) {
        const Individual& name = people.all[i].name;
        const auto [place, fresh] = numbers_.emplace(
            one_name_ ? name.id : joined(name.family, '\t', name.id), static_cast<int>(i));
        if (fresh) continue;
        const Person& before = people.all[static_cast<std::size_t>(place->second)];
        input_error(people.file, people.all[i].line,
                    "individual " + (one_name_ ? name.id : joined(name.family, ' ', name.id)) +
                        ", as in line " + std::to_string(before.line) +
                        "; each individual once expected; take one of them out");
    }
}

int PersonNames::find(std::string_view family, std::string_view id) const {
    const auto number = [this](const std::string& name) {
        const auto found = numbers_.find(name);
        return found == numbers_.end() ? -1 : found->second;
    };
    if (!one_name_) return number(joined(family, '\t', id));
    const int i = family == id || family == "0" ? number(std::string(id)) : -1;
    return i >= 0 ? i : number(joined(family, '_', id));
}

std::vector<int> chosen_people(const People& people, const PersonNames& names,
                               const Filters& filters, Study& study) {
    std::vector<int> chosen = first_numbers(people.all.size());
    const auto choose = [&](const std::string& path, const std::string& option, bool keep) {
        if (path.empty()) return;
        const std::vector<char> named = named_in(path, option, names, people.all.size(), study);
        const auto gone = std::erase_if(
            chosen, [&](int i) { return (named[static_cast<std::size_t>(i)] != 0) != keep; });
        leave_out(study, LeftOut::What::kIndividuals, static_cast<long>(gone), option);
    };
    choose(filters.keep, "--keep", true);
    choose(filters.remove, "--remove", false);
    return chosen;
}

}  // namespace vort
