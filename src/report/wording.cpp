#include "report/wording.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <map>

namespace vort {
namespace {

using Genotypes3 = std::set<int>;  // of 0, 1, 2 copies

std::string printed(const char* format, int digits, double value) {
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), format, digits, value);
    return text.data();
}

bool is_known(const std::string& allele) {
    return !allele.empty() && allele != "0" && allele != ".";
}

constexpr std::size_t kLongestAllele = 8;

// "A", or "copies of the counted allele".
std::string counted_allele(const Locus& locus, bool plural) {
    if (is_known(locus.a1)) return shortened(locus.a1, kLongestAllele);
    return plural ? "copies of the counted allele" : "copy of the counted allele";
}

std::string genotypes_text(const Locus& locus, const Genotypes3& copies) {
    struct Wording {
        Genotypes3 copies;
        const char* text;
        bool plural;
    };
    static const std::array<Wording, 6> wordings = {{{{0}, "no ", false},
                                                     {{1}, "one ", false},
                                                     {{2}, "two ", true},
                                                     {{1, 2}, "at least one ", false},
                                                     {{0, 1}, "at most one ", false},
                                                     {{0, 2}, "none or two ", true}}};
    for (const Wording& wording : wordings) {
        if (wording.copies == copies) {
            return wording.text + counted_allele(locus, wording.plural) + " at " + locus.name;
        }
    }
    return "any genotype at " + locus.name;
}

struct Clause {
    Genotypes3 first, second;  // the second is empty for a single marker
};

// The cells as few rectangles: rows with the same columns together, or columns with the same rows.
std::vector<Clause> rectangles(const std::vector<std::vector<int>>& cells, bool by_rows) {
    std::map<int, Genotypes3> of_line;
    for (const auto& cell : cells) {
        of_line[by_rows ? cell[0] : cell[1]].insert(by_rows ? cell[1] : cell[0]);
    }
    std::vector<Clause> clauses;
    for (const auto& [line, across] : of_line) {
        const auto like = std::find_if(clauses.begin(), clauses.end(), [&](const Clause& clause) {
            return (by_rows ? clause.second : clause.first) == across;
        });
        if (like != clauses.end()) {
            (by_rows ? like->first : like->second).insert(line);
        } else {
            clauses.push_back(by_rows ? Clause{{line}, across} : Clause{across, {line}});
        }
    }
    return clauses;
}

std::vector<Clause> clauses_of(const std::vector<std::vector<int>>& cells, bool pair) {
    if (!pair) {
        Clause clause;
        for (const auto& cell : cells) clause.first.insert(cell.at(0));
        return {clause};
    }
    std::vector<Clause> rows = rectangles(cells, true);
    std::vector<Clause> columns = rectangles(cells, false);
    return columns.size() < rows.size() ? columns : rows;
}

// Whoever has none of an allele carries nothing: such rules begin with "people with".
bool is_of_carriers(const std::vector<Clause>& clauses) {
    const auto has = [](const Genotypes3& set, int copies) { return set.count(copies) > 0; };
    return std::none_of(clauses.begin(), clauses.end(), [&](const Clause& clause) {
        return has(clause.first, 0) || has(clause.second, 0);
    });
}

std::string clause_text(const Clause& clause, const std::vector<Locus>& markers,
                        const std::string& join) {
    if (clause.second.empty()) return genotypes_text(markers[0], clause.first);
    if (clause.first.size() == 3 && clause.second.size() < 3) {
        return genotypes_text(markers[1], clause.second);
    }
    if (clause.second.size() == 3) return genotypes_text(markers[0], clause.first);
    return genotypes_text(markers[0], clause.first) + " and " + join +
           genotypes_text(markers[1], clause.second);
}

std::string difference_text(double difference) {
    const long points = std::lround(100 * std::abs(difference));
    const std::string way = difference > 0 ? "higher" : "lower";
    if (points == 0) return "less than half a point " + way;
    return std::to_string(points) + (points == 1 ? " point " : " points ") + way;
}

}  // namespace

std::string grouped(long number) {
    std::string text = std::to_string(number);
    for (int i = int(text.size()) - 3; i > (number < 0 ? 1 : 0); i -= 3) text.insert(i, ",");
    return text;
}

std::string counted(long number, std::string_view plural) {
    std::string noun(plural);
    if (number == 1 && noun.ends_with('s')) noun.pop_back();
    return (number == 0 ? "no" : grouped(number)) + " " + noun;
}

std::string decimal(double value, int digits) {
    return std::isfinite(value) ? printed("%.*f", digits, value) : "not available";
}

std::string p_text(double p) {
    if (!std::isfinite(p)) return "not available";
    if (p == 0) return "0";
    if (p >= 0.9995) return "1";
    if (p >= 0.00095) return printed("%.*g", 2, p);
    std::string text = printed("%.*e", 1, p);
    const std::size_t zero = text.find("e-0");  // "3.2e-09"
    if (zero != std::string::npos) text.erase(zero + 2, 1);
    return text;
}

std::string share_text(long part, long of) {
    if (of == 0) return "no share";
    return std::to_string(std::lround(100.0 * double(part) / double(of))) + "\u00a0%";
}

std::string chromosome_name(int chromosome) {
    switch (chromosome) {
        case 23:
            return "X";
        case 24:
            return "Y";
        case 25:
            return "XY";
        case 26:
            return "MT";
        default:
            return std::to_string(chromosome);
    }
}

std::string shortened(std::string_view text, std::size_t longest) {
    if (text.size() <= longest) return std::string(text);
    std::size_t end = longest - 1;
    while (end > 0 && (text[end] & 0xC0) == 0x80) --end;  // not within a character
    return std::string(text.substr(0, end)) + "\u2026";
}

std::string genotype_letters(const Locus& locus, int copies) {
    if (!is_known(locus.a1) || !is_known(locus.a2)) return {};
    const std::string& first = copies == 0 ? locus.a2 : locus.a1;
    const std::string& second = copies == 2 ? locus.a1 : locus.a2;
    const bool letters = locus.a1.size() == 1 && locus.a2.size() == 1;
    return shortened(first, kLongestAllele) + (letters ? "" : "/") +
           shortened(second, kLongestAllele);
}

std::string copies_text(const Locus& locus, int copies) {
    static constexpr std::array<const char*, 3> kNumbers = {"no", "one", "two"};
    if (is_known(locus.a1)) {
        return std::string(kNumbers.at(copies)) + " " + shortened(locus.a1, kLongestAllele);
    }
    return std::string(kNumbers.at(copies)) + (copies == 1 ? " copy" : " copies");
}

std::string rule_text(const std::vector<Locus>& markers,
                      const std::vector<std::vector<int>>& cells) {
    const std::vector<Clause> clauses = clauses_of(cells, markers.size() == 2);
    const bool carriers = is_of_carriers(clauses);
    const std::string join = carriers ? "of " : "with ";
    std::string text = carriers ? "carriers " : "people ";
    for (std::size_t i = 0; i < clauses.size(); ++i) {
        if (i > 0) text += ", or ";
        text += join + clause_text(clauses[i], markers, join);
    }
    return text;
}

std::string learner_sentence(const Learner& learner) {
    std::string text = rule_text(learner.markers, learner.cells);
    text[0] = char(text[0] - 'a' + 'A');
    const int all = learner.inside.all();
    if (all == 0) {
        text += ": nobody with complete genotypes";
    } else {
        text += ": " + counted(learner.inside.cases, "cases") + " among " + grouped(all) + ", " +
                share_text(learner.inside.cases, all);
    }
    return text + "; the fitted risk is " + difference_text(learner.risk_difference) + ".";
}

}  // namespace vort
