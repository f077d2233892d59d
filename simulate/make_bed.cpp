// make_bed OUT INDIVIDUALS MARKERS SEED [MISSING [LD]]: a simulated case-control study as OUT.bed,
// OUT.bim and OUT.fam, quickly and at any size.
//
// Half of the individuals are cases. Minor allele frequencies are even in [0.02, 0.5); a marker
// copies each genotype of the one before it with probability LD, except where a chromosome begins.
// In the middle of chromosome 1 one marker has an effect of its own (cases' frequency 0.08 higher),
// and the middle markers of chromosomes 2 and 3 act together: among cases, carriers of the first
// carry the second more often. Everything is drawn from one xorshift generator, so the same
// arguments give the same files.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

static std::uint64_t state;
static double uniform() {
    state ^= state << 13;
    state ^= state >> 7;
    state ^= state << 17;
    return static_cast<double>(state >> 11) * 0x1p-53;
}

int main(int argc, char** argv) {
    if (argc < 5)
        return std::fputs("usage: make_bed OUT INDIVIDUALS MARKERS SEED [MISSING [LD]]\n", stderr),
               2;
    const std::string out = argv[1];
    const long n = std::atol(argv[2]), m = std::atol(argv[3]);
    state = 0x9E3779B97F4A7C15u ^ std::strtoull(argv[4], nullptr, 10) * 0xBF58476D1CE4E5B9u;
    const double missing = argc > 5 ? std::atof(argv[5]) : 0.005,
                 ld = argc > 6 ? std::atof(argv[6]) : 0.3;
    const int chromosomes = 22;
    const auto first_of = [=](long c) { return m * (c - 1) / chromosomes; };
    const auto middle = [=](long c) { return (first_of(c) + first_of(c + 1)) / 2; };

    std::FILE* fam = std::fopen((out + ".fam").c_str(), "w");
    std::FILE* bim = std::fopen((out + ".bim").c_str(), "w");
    std::FILE* bed = std::fopen((out + ".bed").c_str(), "wb");
    if (!fam || !bim || !bed) return std::perror(out.c_str()), 1;
    for (long i = 0; i < n; ++i) {
        std::fprintf(fam, "F%ld I%ld 0 0 %ld %ld\n", i + 1, i + 1, 1 + i % 2, 1 + (i / 2) % 2);
    }
    std::fwrite("\x6c\x1b\x01", 1, 3, bed);
    const unsigned char code[] = {3, 2, 0, 1};  // 0, 1, 2 copies of A1, missing
    std::vector<unsigned char> genotype(n), partner(n), row((n + 3) / 4);
    long chromosome = 1;
    for (long j = 0; j < m; ++j) {
        while (chromosome < chromosomes && j >= first_of(chromosome + 1)) ++chromosome;
        std::fprintf(bim, "%ld\trs%ld\t0\t%ld\tA\tG\n", chromosome, 100000 + j,
                     1000 * (j - first_of(chromosome) + 1));
        double f = 0.02 + 0.48 * uniform();
        const bool lone = j == middle(1), first = j == middle(2), second = j == middle(3);
        if (lone || first || second) f = 0.3;
        const bool linked = j != first_of(chromosome) && !lone && !first && !second;
        std::fill(row.begin(), row.end(), 0);
        for (long i = 0; i < n; ++i) {
            const bool is_case = (i / 2) % 2 == 1;
            double p = f;
            if (lone && is_case) p += 0.08;
            if (second && is_case) p += partner[i] ? 0.10 : -0.08;
            unsigned char g = static_cast<unsigned char>((uniform() < p) + (uniform() < p));
            if (linked && uniform() < ld) g = genotype[i];
            genotype[i] = g;
            const unsigned char shown = uniform() < missing ? 3 : g;
            row[i / 4] |= static_cast<unsigned char>(code[shown] << 2 * (i % 4));
        }
        if (first) partner.assign(genotype.begin(), genotype.end());
        std::fwrite(row.data(), 1, row.size(), bed);
    }
    return std::fclose(fam) | std::fclose(bim) | std::fclose(bed);
}
