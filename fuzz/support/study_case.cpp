#include "support/study_case.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <set>
#include <sstream>
#include <string>

#include "common/characters.h"
#include "genotypes/marker_table.h"
#include "genotypes/text_data_set.h"
#include "study/study_directory.h"
#include "support/harness.h"

namespace vort::fuzz {

namespace {

// As the command line takes it.
std::optional<double> share_in(const std::string& text) {
    double value = 0;
    const auto read = std::from_chars(text.data(), text.data() + text.size(), value);
    if (read.ec != std::errc() || !(value >= 0 && value <= 1)) return std::nullopt;
    return value;
}

void take_options(std::string_view text, StudyRequest& request) {
    std::istringstream words{std::string(text)};
    Filters& filters = request.filters;
    for (std::string word; words >> word;) {
        if (word == "1") request.phenotype.control_is_0 = true;
        if (word == "threads") request.threads = 2;
        if (word == "name") words >> request.phenotype.name;
        if (word == "within-name") words >> request.within.name;
        if (word == "chr") words >> filters.chromosomes;
        for (auto& [name, value] : {std::pair("mind", &filters.mind),
                                    {"geno", &filters.geno},
                                    {"maf", &filters.maf},
                                    {"hwe", &filters.hwe}}) {
            std::string number;
            if (word == name && words >> number) *value = share_in(number);
        }
    }
}

std::string one_word(std::string name) {
    std::ranges::replace_if(
        name, [](char c) { return is_space(c); }, '_');
    return name.empty() ? "." : name;
}

std::string identifier_of(const Individual& person) {
    const bool one = person.family == person.id || person.family == "0";
    return one_word(one ? person.id : person.family + '_' + person.id);
}

// Different people of one identifier, which only a study directory cannot tell apart.
bool has_namesakes(const Study& study) {
    std::set<std::string> seen;
    return !std::ranges::all_of(study.individuals, [&](const Individual& person) {
        return seen.insert(identifier_of(person)).second;
    });
}

void require_accounts(const Study& study) {
    long individuals = study.genotypes.individuals();
    long markers = study.genotypes.markers();
    for (const LeftOut& out : study.left_out) {
        require(out.count > 0 && !out.why.empty(), "what is left out is counted");
        (out.what == LeftOut::What::kMarkers ? markers : individuals) += out.count;
    }
    require(individuals == study.individuals_read, "nobody is lost without a word");
    require(markers == study.markers_read, "no marker is lost without a word");
}

void require_markers_sound(const Study& study) {
    const MarkerInfo* before = nullptr;
    for (const MarkerInfo& marker : study.markers) {
        require(marker.chromosome >= 1 && marker.chromosome <= 26, "chromosomes are 1 to 26");
        require(marker.position >= 0, "positions are not negative");
        require(!marker.name.empty(), "markers have names");
        const bool behind =
            before == nullptr || before->chromosome < marker.chromosome ||
            (before->chromosome == marker.chromosome && before->position <= marker.position);
        require(behind, "markers are in order");
        before = &marker;
    }
}

// The padding of genotypes that were packed here is zero.
void require_padding(const Genotypes& genotypes) {
    const int used = genotypes.individuals() % 4;
    if (!genotypes.is_owned() || used == 0) return;
    for (int j = 0; j < genotypes.markers(); ++j) {
        require(genotypes.column(j).back() >> 2 * used == 0, "the padding is zero");
    }
}

void require_same_genotypes(const Genotypes& one, const Genotypes& other) {
    require(one.individuals() == other.individuals() && one.markers() == other.markers(),
            "sizes are the same");
    for (int j = 0; j < one.markers(); ++j) {
        for (int i = 0; i < one.individuals(); ++i) {
            require(one.code(i, j) == other.code(i, j), "genotypes are the same");
        }
    }
}

void require_clusters(const Study& study) {
    const Clusters& clusters = study.clusters;
    require(clusters.none() == !study.within, "clusters are told of");
    if (clusters.none()) return;
    require(clusters.items() == study.genotypes.individuals(), "everybody is in a cluster");
    long alone = 0;
    bool some_can_move = false;
    for (int c = 0; c < clusters.count(); ++c) {
        const std::span<const int> members = clusters.members(c);
        if (members.size() == 1) ++alone;
        const auto cases = std::ranges::count_if(
            members, [&](int i) { return study.phenotypes[static_cast<std::size_t>(i)] == 1; });
        some_can_move = some_can_move || (cases > 0 && cases < std::ssize(members));
    }
    require(some_can_move, "there is something to shuffle");
    require(study.within->unassigned <= alone, "who is in no cluster is alone");
    require(study.within->clusters == clusters.count() - study.within->unassigned,
            "clusters are counted");
}

void require_sound(const Study& study) {
    const auto individuals = static_cast<std::size_t>(study.genotypes.individuals());
    const auto markers = static_cast<std::size_t>(study.genotypes.markers());
    require(study.individuals.size() == individuals, "everybody has genotypes");
    require(study.phenotypes.size() == individuals, "everybody has a phenotype");
    require(study.markers.size() == markers && markers > 0, "every marker has genotypes");
    const auto cases = std::ranges::count(study.phenotypes, short{1});
    const auto controls = std::ranges::count(study.phenotypes, short{0});
    require(cases > 0 && controls > 0 && cases + controls == std::ssize(study.phenotypes),
            "there are cases, controls and nobody else");
    require_accounts(study);
    require_markers_sound(study);
    require_padding(study.genotypes);
    require_clusters(study);
    for (const std::string& note : study.notes) {
        require(!note.empty() && note.find('\n') == std::string::npos, "a note is a line");
    }
}

// What the bare program makes of a folder that was written from `study`.
void require_same_when_bare(const Study& study, const std::string& folder) {
    std::ostringstream told;
    Diagnostics diagnostics(told);
    Transcript nobody(false);
    const int markers = study.genotypes.markers();
    const DataSet data =
        load_text_data_set({folder + "/dat1.txt", study.genotypes.individuals(), markers, 1, 1}, 1,
                           diagnostics, nobody);
    require(told.str().empty(), "the bare program has nothing to say of a data set");
    require(data.phenotypes == study.phenotypes, "phenotypes are the same for the bare program");
    require_same_genotypes(data.genotypes, study.genotypes);
    const MarkerTable table = MarkerTable::from_file(folder + "/Chromosome_SNP_Name.txt", markers);
    for (int m = 1; m <= markers; ++m) {
        const MarkerInfo& marker = study.markers[static_cast<std::size_t>(m) - 1];
        const std::string word = one_word(marker.name);
        const std::string kept = word.substr(0, std::min(word.find('\0'), std::size_t{14}));
        const MarkerTable::Entry entry = table.find(m, MarkerTable::Numbering::kFromOne);
        require(entry.name == kept && entry.chromosome == marker.chromosome,
                "markers are the same for the bare program");
    }
}

void require_same_study(const Study& study, const Study& again) {
    require(again.phenotypes == study.phenotypes, "phenotypes are the same when read again");
    require_same_genotypes(again.genotypes, study.genotypes);
    for (std::size_t j = 0; j < study.markers.size(); ++j) {
        require(again.markers[j].name == one_word(study.markers[j].name) &&
                    again.markers[j].chromosome == study.markers[j].chromosome,
                "markers are the same when read again");
    }
    for (std::size_t i = 0; i < study.individuals.size(); ++i) {
        require(again.individuals[i].id == identifier_of(study.individuals[i]),
                "people are the same when read again");
    }
    require(again.left_out.empty(), "nothing is left out when read again");
}

void check_round_trip(const Study& study, Files& files) {
    const std::string folder = files.folder("written");
    const StudyParameters parameters = study.parameters.value_or(StudyParameters{0, 1, 0, 0.5});
    write_study_directory(
        study, parameter_text(parameters, study.genotypes.individuals(), study.genotypes.markers()),
        folder);
    require_same_when_bare(study, folder);
    StudyRequest request;
    request.files.format = StudyFormat::kDirectory;
    request.files.directory = folder;
    Study again;
    if (accepts([&] { again = load_study(request); })) {
        require(!has_namesakes(study), "people of one name are refused");
        require_sound(again);
        require_same_study(study, again);
    } else {
        require(has_namesakes(study), "a study that was written is accepted");
    }
}

}  // namespace

StudyRequest request_for(const Sections& input, Files& files) {
    StudyRequest request;
    take_options(input["options"], request);
    const auto file = [&](const std::string& name) {
        return input.has(name) ? files.put(name, input[name]) : std::string();
    };
    request.phenotype.file = file("pheno");
    request.within.file = file("within");
    request.filters.keep = file("keep");
    request.filters.remove = file("remove");
    request.filters.extract = file("extract");
    request.filters.exclude = file("exclude");
    return request;
}

std::optional<Study> check_study(const StudyRequest& request, Files& files) {
    Study study;
    if (!accepts([&] { study = load_study(request); })) return std::nullopt;
    require_sound(study);
    check_round_trip(study, files);
    return study;
}

}  // namespace vort::fuzz
