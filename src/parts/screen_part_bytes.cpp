#include <algorithm>

#include "parts/bytes.h"
#include "parts/screen_part.h"

namespace vort {

namespace {

constexpr int kMostOfOneByte = 255;

// Counts of data sets take a byte each where there are so few of those.
void put_counts(ByteWriter& out, const std::vector<std::uint32_t>& counts, std::size_t data_sets) {
    if (data_sets > kMostOfOneByte) return out.put(counts);
    const std::vector<unsigned char> narrow(counts.begin(), counts.end());
    out.put(narrow);
}

std::vector<std::uint32_t> get_counts(ByteReader& in, int data_sets) {
    if (data_sets > kMostOfOneByte) return in.get_values<std::uint32_t>();
    const auto narrow = in.get_values<unsigned char>();
    return {narrow.begin(), narrow.end()};
}

void put_record(ByteWriter& out, const RunRecord& record) {
    for (const RunRecord::DataSet& data_set : record.data_sets) {
        out.put(data_set.smallest_p);
        out.put(data_set.best);
    }
    out.put(record.observed);
    out.put(record.ranking);
    put_counts(out, record.no_weaker, record.data_sets.size());
    out.put(record.quantiles.observed());
    out.put(record.quantiles.permuted());
}

bool all_below(const std::vector<int>& columns, int limit) {
    return std::ranges::all_of(columns, [limit](int j) { return j >= 0 && j < limit; });
}

void require_all_or_none(std::size_t size, int markers) {
    ByteReader::require(size == 0 || size == static_cast<std::size_t>(markers));
}

RunRecord get_record(ByteReader& in, const PartSizes& sizes) {
    RunRecord record;
    for (int d = 0; d < sizes.data_sets; ++d) {
        RunRecord::DataSet data_set;
        data_set.smallest_p = in.get<double>();
        data_set.best = in.get<int>();
        ByteReader::require(data_set.best >= -1 && data_set.best < sizes.markers);
        record.data_sets.push_back(data_set);
    }
    record.observed = in.get_values<double>();
    record.ranking = in.get_values<int>();
    ByteReader::require(all_below(record.ranking, sizes.markers));
    record.no_weaker = get_counts(in, sizes.data_sets);
    require_all_or_none(record.observed.size(), sizes.markers);
    require_all_or_none(record.no_weaker.size(), sizes.markers);
    record.quantiles = PvalueQuantiles(sizes.markers);
    auto observed = in.get_values<double>();
    const auto permuted = in.get_values<float>();
    ByteReader::require(record.quantiles.restore(std::move(observed), permuted));
    return record;
}

void put_kept(ByteWriter& out, const KeptSets& kept) {
    out.put(kept.markers);
    out.put(kept.pairs);
    out.put(kept.marker_text.text());
    out.put(kept.pair_text.text());
}

Transcript get_transcript(ByteReader& in) {
    const std::string_view text = in.get_text();
    Transcript transcript(!text.empty());
    transcript << text;
    return transcript;
}

KeptSets get_kept(ByteReader& in, int best_m) {
    KeptSets kept;
    kept.markers = in.get_values<int>();
    kept.pairs = in.get_values<int>();
    const auto numbered_to = [](const std::vector<int>& numbers, std::int64_t last) {
        return std::ranges::all_of(numbers, [last](int k) { return k >= 1 && k <= last; });
    };
    const std::int64_t m = best_m;
    ByteReader::require(numbered_to(kept.markers, m) && numbered_to(kept.pairs, m * (m - 1) / 2));
    kept.marker_text = get_transcript(in);
    kept.pair_text = get_transcript(in);
    return kept;
}

}  // namespace

std::string bytes_of(const ScreenPart& part) {
    ByteWriter out;
    put_record(out, part.record);
    for (const std::vector<int>& best : part.best) out.put(best);
    out.put(std::uint64_t{part.kept.size()});
    for (const KeptSets& kept : part.kept) put_kept(out, kept);
    for (const std::string& text : part.console) out.put(text);
    out.put(part.fdr_report);
    return std::move(out).take();
}

ScreenPart screen_part_of(std::string_view bytes, const PartSizes& sizes) {
    ByteReader in(bytes);
    ScreenPart part;
    part.record = get_record(in, sizes);
    for (int d = 0; d < sizes.data_sets; ++d) {
        part.best.push_back(in.get_values<int>());
        ByteReader::require(all_below(part.best.back(), sizes.markers));
        ByteReader::require(std::ssize(part.best.back()) >= sizes.best_m);
    }
    const std::size_t searched = in.get_count(32);
    ByteReader::require(searched == 0 || std::cmp_equal(searched, sizes.data_sets));
    for (std::size_t d = 0; d < searched; ++d) part.kept.push_back(get_kept(in, sizes.best_m));
    for (int d = 0; d < sizes.data_sets; ++d) part.console.emplace_back(in.get_text());
    part.fdr_report = in.get_text();
    in.require_end();
    return part;
}

std::string bytes_of(const DrawsPart& part) {
    ByteWriter out;
    out.put(part.draws);
    out.put(part.pairs);
    return std::move(out).take();
}

DrawsPart draws_part_of(std::string_view bytes, int data_sets) {
    ByteReader in(bytes);
    DrawsPart part;
    part.draws = in.get_values<std::int64_t>();
    part.pairs = in.get_values<char>();
    in.require_end();
    ByteReader::require(part.draws.size() == part.pairs.size());
    ByteReader::require(part.draws.empty() || std::cmp_equal(part.draws.size(), data_sets));
    for (const std::int64_t draws : part.draws) ByteReader::require(draws >= 0);
    return part;
}

}  // namespace vort
