#include "parts/saved_study.h"

#include <array>
#include <cstdio>
#include <cstring>
#include <utility>

#include "common/input_error.h"
#include "common/output_file.h"
#include "common/stop.h"
#include "genotypes/mapped_file.h"
#include "parts/bytes.h"

namespace vort {

namespace {

// What every SNP-major .bed begins with.
constexpr std::array<unsigned char, 3> kMagic = {0x6c, 0x1b, 0x01};

std::string_view text_of(std::span<const unsigned char> bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

void put_account(ByteWriter& out, const Study& study) {
    out.put(std::int64_t{study.individuals_read});
    out.put(std::int64_t{study.markers_read});
    out.put(std::uint64_t{study.left_out.size()});
    for (const LeftOut& left : study.left_out) {
        out.put(static_cast<char>(left.what == LeftOut::What::kMarkers));
        out.put(std::int64_t{left.count});
        out.put(left.why);
    }
    out.put(std::uint64_t{study.notes.size()});
    for (const std::string& note : study.notes) out.put(note);
    out.put(std::uint64_t{study.inputs.size()});
    for (const InputFile& input : study.inputs) {
        out.put(input.role);
        out.put(input.path);
    }
}

void get_account(ByteReader& in, Study& study) {
    study.individuals_read = in.get<std::int64_t>();
    study.markers_read = in.get<std::int64_t>();
    for (std::size_t left = in.get_count(17); left > 0; --left) {
        const auto what =
            in.get<char>() != 0 ? LeftOut::What::kMarkers : LeftOut::What::kIndividuals;
        const auto count = in.get<std::int64_t>();
        study.left_out.push_back({what, count, std::string(in.get_text())});
    }
    for (std::size_t left = in.get_count(8); left > 0; --left) {
        study.notes.emplace_back(in.get_text());
    }
    for (std::size_t left = in.get_count(16); left > 0; --left) {
        std::string role(in.get_text());
        study.inputs.push_back({std::move(role), std::string(in.get_text())});
    }
}

void put_markers(ByteWriter& out, const std::vector<MarkerInfo>& markers) {
    out.put(std::uint64_t{markers.size()});
    for (const MarkerInfo& marker : markers) {
        out.put(marker.chromosome);
        out.put(marker.name);
        out.put(std::int64_t{marker.position});
        out.put(marker.a1);
        out.put(marker.a2);
    }
}

void put_people(ByteWriter& out, const std::vector<short>& phenotypes,
                const std::vector<Individual>& individuals) {
    out.put(phenotypes);
    for (const Individual& individual : individuals) {
        out.put(individual.family);
        out.put(individual.id);
        out.put(individual.sex);
    }
}

void get_people(ByteReader& in, std::vector<short>& phenotypes,
                std::vector<Individual>& individuals) {
    phenotypes = in.get_values<short>();
    for (std::size_t i = 0; i < phenotypes.size(); ++i) {
        Individual individual;
        individual.family = in.get_text();
        individual.id = in.get_text();
        individual.sex = in.get<signed char>();
        individuals.push_back(std::move(individual));
    }
}

std::vector<MarkerInfo> get_markers(ByteReader& in) {
    constexpr int kChromosomes = 26;
    std::vector<MarkerInfo> markers(in.get_count(36));
    for (MarkerInfo& marker : markers) {
        marker.chromosome = in.get_below(kChromosomes + 1);
        marker.name = in.get_text();
        marker.position = in.get<std::int64_t>();
        marker.a1 = in.get_text();
        marker.a2 = in.get_text();
    }
    return markers;
}

void put_clusters(ByteWriter& out, const Study& study) {
    out.put(static_cast<char>(study.within.has_value()));
    if (!study.within) return;
    out.put(study.within->labels);
    out.put(study.within->file);
    out.put(study.within->column);
    for (const long count :
         {study.within->clusters, study.within->fixed, study.within->unassigned}) {
        out.put(std::int64_t{count});
    }
}

void get_clusters(ByteReader& in, Study& study) {
    if (in.get<char>() == 0) return;
    WithinAccount& within = study.within.emplace();
    within.labels = in.get_values<int>();
    ByteReader::require(within.labels.size() == study.phenotypes.size());
    for (const int label : within.labels) ByteReader::require(label >= Clusters::kAlone);
    study.clusters = Clusters(within.labels);
    within.file = in.get_text();
    within.column = in.get_text();
    for (long* const count : {&within.clusters, &within.fixed, &within.unassigned}) {
        *count = in.get<std::int64_t>();
    }
}

}  // namespace

std::string bytes_of(const Study& study) {
    ByteWriter out;
    put_account(out, study);
    put_people(out, study.phenotypes, study.individuals);
    put_markers(out, study.markers);
    put_clusters(out, study);
    return std::move(out).take();
}

Study study_of(std::string_view bytes) {
    ByteReader in(bytes);
    Study study;
    get_account(in, study);
    get_people(in, study.phenotypes, study.individuals);
    study.markers = get_markers(in);
    get_clusters(in, study);
    in.require_end();
    return study;
}

std::string people_bytes_of(const Study& study) {
    ByteWriter out;
    out.put(study.phenotypes);
    put_clusters(out, study);
    return std::move(out).take();
}

Study people_of(std::string_view bytes) {
    ByteReader in(bytes);
    Study study;
    study.phenotypes = in.get_values<short>();
    get_clusters(in, study);
    in.require_end();
    return study;
}

std::string bytes_of(const HeldBack& held_back) {
    ByteWriter out;
    out.put(held_back.fraction);
    put_people(out, held_back.phenotypes, held_back.individuals);
    const Genotypes& genotypes = held_back.genotypes;
    for (int j = 0; j < genotypes.markers(); ++j) out.put(genotypes.column(j));
    return std::move(out).take();
}

HeldBack held_back_of(std::string_view bytes, int markers) {
    ByteReader in(bytes);
    HeldBack held_back;
    held_back.fraction = in.get<double>();
    get_people(in, held_back.phenotypes, held_back.individuals);
    const auto people = static_cast<int>(held_back.individuals.size());
    ByteReader::require(packed_size(people) * static_cast<std::size_t>(markers) <= bytes.size());
    held_back.genotypes = Genotypes(people, markers);
    for (int j = 0; j < markers; ++j) {
        const std::string_view column = in.get_text();
        const std::span<unsigned char> to = held_back.genotypes.owned_column(j);
        ByteReader::require(column.size() == to.size());
        std::memcpy(to.data(), column.data(), column.size());
    }
    in.require_end();
    return held_back;
}

void write_genotypes(const Genotypes& genotypes, const std::string& path,
                     Diagnostics& diagnostics) {
    const std::string unfinished = unfinished_name(path);
    OutputFile file(unfinished, OutputFile::Mode::kTruncate, diagnostics);
    file << text_of(kMagic);
    for (int j = 0; j < genotypes.markers(); ++j) file << text_of(genotypes.column(j));
    if (file.close_on_disk() && std::rename(unfinished.c_str(), path.c_str()) == 0) return;
    remove_file(unfinished);
    stop("", 1);
}

Genotypes map_genotypes(const std::string& path, int individuals, int markers) {
    auto file = std::make_shared<const MappedFile>(path);
    const std::size_t size =
        kMagic.size() + packed_size(individuals) * static_cast<std::size_t>(markers);
    if (file->size() != size || !text_of({file->bytes(), size}).starts_with(text_of(kMagic))) {
        input_error(path, 0,
                    "is not the .bed of " + std::to_string(individuals) + " individuals and " +
                        std::to_string(markers) + " markers that was expected; plan anew");
    }
    return {individuals, markers, std::move(file), kMagic.size()};
}

}  // namespace vort
