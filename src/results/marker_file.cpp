#include "results/marker_file.h"

#include <zlib.h>

#include <array>
#include <limits>
#include <new>

#include "common/output_file.h"
#include "common/parallel.h"
#include "common/stop.h"
#include "results/table_text.h"

namespace vort {

namespace {

constexpr std::string_view kHeader =
    "CHR\tSNP\tBP\tA1\tA2\t"
    "CASE_A1A1\tCASE_A1A2\tCASE_A2A2\tCTRL_A1A1\tCTRL_A1A2\tCTRL_A2A2\tCASE_MISS\tCTRL_MISS\t"
    "CHISQ_ADD\tP_ADD\tCHISQ_DOM\tP_DOM\tCHISQ_REC\tP_REC\tCHISQ_GENO\tDF_GENO\tP_GENO\t"
    "MODEL\tP_MIN\tRANK\tEMP1\tEMP2\tIN_MODEL";

constexpr std::size_t kRowsAtOnce = 4096;

void put_copies(Transcript& out, const GroupCounts& group) {
    for (int copies = 2; copies >= 0; --copies) out << '\t' << group.copies[copies];
}

void put_test(Transcript& out, const TestResult& test) {
    put_number(out, test.chisq);
    put_number(out, test.p);
}

// Whole numbers from 1 on.
void put_positive(Transcript& out, int value) {
    out << '\t';
    if (value > 0) {
        out << value;
    } else {
        out << kNA;
    }
}

void put_row(Transcript& out, const MarkerRow& row) {
    out << row.chromosome << '\t' << row.name << '\t' << row.position << '\t' << row.a1 << '\t'
        << row.a2;
    put_copies(out, row.cases);
    put_copies(out, row.controls);
    out << '\t' << row.cases.missing << '\t' << row.controls.missing;
    put_test(out, row.additive);
    put_test(out, row.dominant);
    put_test(out, row.recessive);
    put_number(out, row.genotype.chisq);
    put_positive(out, row.genotype_df);
    put_number(out, row.genotype.p);
    out << '\t' << (row.model.empty() ? kNA : row.model);
    put_number(out, row.p_min);
    put_positive(out, row.rank);
    put_number(out, row.emp1);
    put_number(out, row.emp2);
    out << '\t' << (row.in_model ? '1' : '0') << '\n';
}

// A member of a gzip file, which may have several; without a name or time, so that the same text
// gives the same bytes.
std::string compressed(std::string_view text) {
    constexpr int kGzip = 15 + 16;
    constexpr int kMemoryLevel = 8;
    z_stream stream{};
    if (deflateInit2(&stream, Z_DEFAULT_COMPRESSION, Z_DEFLATED, kGzip, kMemoryLevel,
                     Z_DEFAULT_STRATEGY) != Z_OK) {
        throw std::bad_alloc();
    }
    std::string out(deflateBound(&stream, text.size()), '\0');
    std::string in(text);
    stream.next_in = reinterpret_cast<Bytef*>(in.data());
    stream.avail_in = static_cast<uInt>(in.size());
    stream.next_out = reinterpret_cast<Bytef*>(out.data());
    stream.avail_out = static_cast<uInt>(out.size());
    const int ended = deflate(&stream, Z_FINISH);
    out.resize(stream.total_out);
    deflateEnd(&stream);
    if (ended != Z_STREAM_END) throw std::bad_alloc();
    return out;
}

// Some rows, and their lines, the header in front of the first.
struct Piece {
    std::vector<MarkerRow> rows;
    std::string text;
};

Piece make_piece(const MarkerRows& rows, std::size_t begin, std::size_t end, bool gzip) {
    Piece piece;
    Transcript out(true);
    if (begin == 0) out << kHeader << '\n';
    for (std::size_t j = begin; j < end; ++j) {
        piece.rows.push_back(rows.row(j));
        put_row(out, piece.rows.back());
    }
    piece.text = gzip ? compressed(out.text()) : std::string(out.text());
    return piece;
}

constexpr long kMostChromosome = 26;

class RowReader {
  public:
    RowReader(const std::string& path, std::string_view text) : table_(path, text, kHeader) {}

    bool next(MarkerRow& row) {
        if (!table_.next()) return false;
        row = MarkerRow();
        column_ = 0;
        row.chromosome = whole(kMostChromosome);
        row.name = word();
        row.position = table_.whole(column_++, 0, 0, std::numeric_limits<long>::max());
        row.a1 = word();
        row.a2 = word();
        take_copies(row.cases);
        take_copies(row.controls);
        row.cases.missing = whole();
        row.controls.missing = whole();
        row.additive = test();
        row.dominant = test();
        row.recessive = test();
        row.genotype.chisq = number();
        row.genotype_df = whole();
        row.genotype.p = share();
        row.model = word();
        if (row.model == kNA) row.model = {};
        row.p_min = share();
        row.rank = whole();
        row.emp1 = share();
        row.emp2 = share();
        row.in_model = whole(1) != 0;
        return true;
    }

  private:
    std::string_view word() { return table_.word(column_++); }
    int whole(long most = std::numeric_limits<int>::max()) {
        return static_cast<int>(table_.whole(column_++, 0, 0, most));
    }
    double number() { return table_.number(column_++); }
    double share() { return table_.share(column_++); }
    TestResult test() {
        const double chisq = number();
        return {chisq, share()};
    }
    void take_copies(GroupCounts& group) {
        for (int copies = 2; copies >= 0; --copies) group.copies[copies] = whole();
    }

    TableReader table_;
    std::size_t column_ = 0;
};

}  // namespace

void write_marker_file(const std::string& path, const MarkerRows& rows, bool gzip, int threads,
                       Diagnostics& diagnostics, const TakeRow& take) {
    OutputFile file(path, OutputFile::Mode::kTruncate, diagnostics);
    const std::size_t pieces =
        std::max<std::size_t>((rows.size() + kRowsAtOnce - 1) / kRowsAtOnce, 1);
    for_each_in_order(
        threads, pieces,
        [&](std::size_t p) {
            const std::size_t begin = p * kRowsAtOnce;
            return make_piece(rows, begin, std::min(rows.size(), begin + kRowsAtOnce), gzip);
        },
        [&](std::size_t, const Piece& piece) {
            file << piece.text;
            for (const MarkerRow& row : piece.rows) take(row);
        });
    if (!file.close()) stop("", 1);
}

void read_marker_file(const std::string& path, const TakeRow& take) {
    const std::string text = read_whole_file(path);
    RowReader rows(path, text);
    MarkerRow row;
    while (rows.next(row)) take(row);
}

}  // namespace vort
