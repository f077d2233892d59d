#include "report/wording.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdio>

namespace vort {
namespace {

std::string printed(const char* format, int digits, double value) {
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), format, digits, value);
    return text.data();
}

bool is_known(std::string_view allele) {
    return !allele.empty() && allele != "0" && allele != ".";
}

constexpr std::size_t kLongestAllele = 8;

// "A", or "copies of the counted allele".
std::string counted_allele(const Locus& locus, bool plural) {
    if (is_known(locus.a1)) return shortened(locus.a1, kLongestAllele);
    return plural ? "copies of the counted allele" : "copy of the counted allele";
}

// Sets of 0, 1, 2 copies are bits 0, 1, 2.
constexpr int kAnyCopies = 7;

std::string genotypes_text(const Locus& locus, int copies) {
    static constexpr std::array<const char*, 7> kNumbers = {
        "", "no ", "one ", "at most one ", "two ", "none or two ", "at least one "};
    if (copies == kAnyCopies) return "any genotype at " + locus.name;
    const bool plural = copies == 4 || copies == 5;
    return kNumbers.at(copies) + counted_allele(locus, plural) + " at " + locus.name;
}

// Some copies of one marker together with some of the other; for a single marker, any of the other.
struct Clause {
    int first = 0;
    int second = kAnyCopies;

    int cells() const {  // bit 3 i + j: i copies of the first, j of the second
        int bits = 0;
        for (int i = 0; i < 3; ++i) bits |= (first >> i & 1) * (second << 3 * i);
        return bits;
    }
    int parts() const { return (first != kAnyCopies) + (second != kAnyCopies); }
};

// The fewest clauses whose cells are those of a group; of equally few those with the fewest parts,
// then with the least overlap. Each step covers the first cell that is left, in every way.
class ShortestRule {
  public:
    explicit ShortestRule(int group) : group_(group) { cover(group); }

    const std::vector<Clause>& clauses() const { return best_; }

  private:
    static int length(const std::vector<Clause>& clauses) {
        int parts = 0, cells = 0;
        for (const Clause& clause : clauses) {
            parts += clause.parts();
            cells += std::popcount(unsigned(clause.cells()));
        }
        return (int(clauses.size()) * 100 + parts) * 100 + cells;
    }

    void cover(int left) {
        if (!best_.empty() && length(now_) >= length(best_)) return;
        if (left == 0) {
            best_ = now_;
            return;
        }
        for (int first = 1; first <= kAnyCopies; ++first) {
            for (int second = 1; second <= kAnyCopies; ++second) {
                const Clause clause{first, second};
                const int cells = clause.cells();
                if ((cells & ~group_) != 0 || (cells & left & -left) == 0) continue;
                now_.push_back(clause);
                cover(left & ~cells);
                now_.pop_back();
            }
        }
    }

    int group_;
    std::vector<Clause> now_, best_;
};

std::vector<Clause> clauses_of(const std::vector<std::vector<int>>& cells, bool pair) {
    int bits = 0;
    for (const auto& cell : cells) bits |= 1 << (pair ? 3 * cell.at(0) + cell.at(1) : cell.at(0));
    return pair ? ShortestRule(bits).clauses() : std::vector<Clause>{{bits}};
}

// Whoever may have none of an allele need not carry it: such rules begin with "people with".
bool is_of_carriers(const std::vector<Clause>& clauses) {
    const auto carries = [](int copies) { return copies == kAnyCopies || (copies & 1) == 0; };
    return std::all_of(clauses.begin(), clauses.end(), [&](const Clause& clause) {
        return clause.parts() > 0 && carries(clause.first) && carries(clause.second);
    });
}

std::string clause_text(const Clause& clause, const std::vector<Locus>& markers,
                        const std::string& join) {
    if (clause.second == kAnyCopies) return genotypes_text(markers[0], clause.first);
    if (clause.first == kAnyCopies) return genotypes_text(markers[1], clause.second);
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

std::string auc_text(const RocArea& roc) {
    if (std::isnan(roc.area)) return "not available without both cases and controls";
    const std::string area = decimal(roc.area, 3);
    if (std::isnan(roc.interval.low)) return area + " (no interval)";
    return area + " (95 % interval " + decimal(roc.interval.low, 3) + " to " +
           decimal(roc.interval.high, 3) + ")";
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

std::string alleles_text(std::string_view a1, std::string_view a2) {
    constexpr std::size_t kLongest = 16;
    if (!is_known(a1)) return {};
    return shortened(a1, kLongest) + (is_known(a2) ? "/" + shortened(a2, kLongest) : "");
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
    if (cells.empty()) return "people of whom none has complete genotypes";
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
