#include "report/marker_points.h"

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>

#include "report/wording.h"

namespace vort {
namespace {

constexpr std::size_t kBandPoints = 700;
constexpr std::size_t kBytes = 1'000'000;       // of all points, where the page is thinned
constexpr std::size_t kLeastBandBytes = 5'000;  // however many points are always kept

std::size_t bytes_of(const MarkerPoint& point) {
    return point.name.size() + 25;  // its numbers
}

// Three digits: 1000 e + m for m/100 * 10^-e, 100 <= m < 1000.
int p_code(double p) {
    if (!(p < 1)) return 100;
    if (p < 1e-300) return 300'100;
    int exponent = int(std::ceil(-std::log10(p)));
    long mantissa = std::lround(p * std::pow(10.0, exponent) * 100);
    if (mantissa >= 1000) {
        mantissa = 100;
        --exponent;
    } else if (mantissa < 100) {
        mantissa = std::lround(p * std::pow(10.0, ++exponent) * 100);
    }
    return 1000 * exponent + int(mantissa);
}

char model_letter(std::string_view model) {
    return model.empty() ? '-' : model.front();  // ADD, DOM, REC, GENO
}

std::size_t band_of(double p) {
    return std::size_t(std::clamp(-10 * std::log10(p), 0.0, 29.0));
}

double three_digits(double value) {
    const double scale = std::pow(10.0, 3 - std::ceil(std::log10(value)));
    return std::round(value * scale) / scale;
}

}  // namespace

MarkerPoints::MarkerPoints(long markers) : thin_(markers > kUnthinned) {}

void MarkerPoints::add(const MarkerRow& row) {
    if (!has_point(row)) return;
    Extent& extent =
        extents_.try_emplace(row.chromosome, Extent{row.position, row.position}).first->second;
    extent.first = std::min(extent.first, row.position);
    extent.last = std::max(extent.last, row.position);
    ++extent.markers;

    const int alleles =
        allele_pairs_.try_emplace(alleles_text(row.a1, row.a2), int(allele_pairs_.size()))
            .first->second;
    MarkerPoint point{seen_++,      row.chromosome,
                      row.position, row.rank,
                      alleles,      model_letter(row.model),
                      row.in_model, row.p_min,
                      row.emp2,     shortened(row.name, kLongestName)};
    if (!thin_ || row.in_model || !(row.p_min >= kAlwaysKept)) {
        kept_.push_back(std::move(point));
    } else {
        add_to_band(bands_[band_of(row.p_min)], std::move(point));
    }
}

void MarkerPoints::add_to_band(Band& band, MarkerPoint point) {
    if (band.seen++ % band.stride != 0) return;
    band.bytes += bytes_of(point);
    band.points.push_back(std::move(point));
    if (band.points.size() <= 2 * kBandPoints) return;

    std::vector<MarkerPoint> half;
    band.bytes = 0;
    for (std::size_t i = 0; i < band.points.size(); i += 2) {
        band.bytes += bytes_of(band.points[i]);
        half.push_back(std::move(band.points[i]));
    }
    band.points = std::move(half);
    band.stride *= 2;
}

std::vector<const MarkerPoint*> MarkerPoints::even_part(const Band& band) const {
    std::size_t kept = 0;
    for (const MarkerPoint& point : kept_) kept += bytes_of(point);
    const std::size_t room =
        std::max(kLeastBandBytes, (kBytes - std::min(kBytes, kept)) / bands_.size());
    const std::size_t all = band.points.size();
    std::size_t part = std::min(all, kBandPoints);
    if (band.bytes > room) part = std::min(part, all * room / band.bytes);
    std::vector<const MarkerPoint*> points;
    for (std::size_t i = 0; i < part; ++i) points.push_back(&band.points[i * all / part]);
    return points;
}

long MarkerPoints::shown() const {
    std::size_t shown = kept_.size();
    for (const Band& band : bands_) shown += even_part(band).size();
    return long(shown);
}

std::vector<const MarkerPoint*> MarkerPoints::in_order() const {
    std::vector<const MarkerPoint*> points;
    for (const MarkerPoint& point : kept_) points.push_back(&point);
    for (const Band& band : bands_) {
        const std::vector<const MarkerPoint*> part = even_part(band);
        points.insert(points.end(), part.begin(), part.end());
    }
    std::sort(points.begin(), points.end(),
              [](const auto* a, const auto* b) { return a->order < b->order; });
    return points;
}

nlohmann::json MarkerPoints::columns() const {
    using nlohmann::json;
    json runs = json::array(), position = json::array(), p = json::array(), rank = json::array();
    json alleles = json::array(), name = json::array(), in_model = json::array();
    json emp2_at = json::array(), emp2 = json::array();
    std::string model;
    int run_chromosome = 0;
    long run_length = 0, last_position = 0, index = 0;
    const auto end_run = [&] {
        if (run_length > 0) runs.push_back({run_chromosome, run_length});
        run_length = 0;
        last_position = 0;
    };
    for (const MarkerPoint* point : in_order()) {
        if (point->chromosome != run_chromosome) end_run();
        run_chromosome = point->chromosome;
        ++run_length;
        position.push_back(point->position - last_position);
        last_position = point->position;
        p.push_back(p_code(point->p));
        rank.push_back(point->rank);
        alleles.push_back(point->alleles);
        name.push_back(point->name);
        model += point->model;
        if (point->in_model) in_model.push_back(index);
        if (point->emp2 < 1) {
            emp2_at.push_back(index);
            emp2.push_back(three_digits(point->emp2));
        }
        ++index;
    }
    end_run();

    json pairs = json::array();
    for (std::size_t i = 0; i < allele_pairs_.size(); ++i) pairs.push_back("");
    for (const auto& [text, number] : allele_pairs_) pairs[number] = text;
    json chromosomes = json::array();
    for (const auto& [number, extent] : extents_) {
        chromosomes.push_back({{"number", number},
                               {"first", extent.first},
                               {"last", extent.last},
                               {"markers", extent.markers}});
    }
    return {{"runs", runs},       {"position", position}, {"p", p},
            {"rank", rank},       {"alleles", alleles},   {"allele_pairs", pairs},
            {"name", name},       {"model", model},       {"in_model", in_model},
            {"emp2_at", emp2_at}, {"emp2", emp2},         {"chromosomes", chromosomes}};
}

}  // namespace vort
