#include "parts/part_folder.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <string_view>

#include "common/characters.h"
#include "common/directory_names.h"
#include "common/input_error.h"
#include "common/output_file.h"
#include "common/path_names.h"
#include "parts/bytes.h"
#include "parts/saved_study.h"

namespace vort {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kGenotypes = "genotypes.bed";
constexpr const char* kScreen = "screen";
constexpr const char* kDraws = "draws";
constexpr const char* kModel = "model";
constexpr const char* kStart = "start";
constexpr const char* kHeldBack = "holdout";

bool take_end(std::string_view& name, std::string_view end) {
    if (!name.ends_with(end)) return false;
    name.remove_suffix(end.size());
    return true;
}

// "screen-17"
bool is_of_a_task(std::string_view name) {
    const std::size_t dash = name.find('-');
    constexpr std::array kinds = {kScreen, kDraws, kModel, kStart};
    if (dash == std::string_view::npos || dash + 1 == name.size()) return false;
    return std::ranges::find(kinds, name.substr(0, dash)) != kinds.end() &&
           std::ranges::all_of(name.substr(dash + 1), is_digit);
}

// Whatever else lies in the folder is somebody else's.
bool is_own(std::string_view file) {
    if (take_end(file, ".running")) return is_of_a_task(file);
    const bool unfinished = take_end(file, ".unfinished");
    if (unfinished && file == "FDR_results") return true;
    if (file == kGenotypes) return true;
    constexpr std::array others = {"study", "people", kHeldBack};
    return take_end(file, ".part") &&
           (is_of_a_task(file) || std::ranges::find(others, file) != others.end());
}

}  // namespace

PartFolder::PartFolder(std::string folder)
    : folder_(std::move(folder)), path_(folder_ + "/parts/") {
    std::error_code absent;
    const std::string name = folder_ + "/parts";
    if (!fs::is_symlink(name, absent)) return;
    throw InputError{name + ": is a link; a directory expected; move the whole of " + folder_ +
                     " instead of its parts"};
}

void PartFolder::make() const {
    std::error_code failure;
    fs::create_directories(path_, failure);
    if (fs::is_directory(path_)) return;
    throw InputError{path_ + ": cannot be made (" + failure.message() +
                     "); a directory of your own was expected"};
}

std::vector<std::string> PartFolder::own_files() const {
    std::vector<std::string> files = {plan_path(), unfinished_name(plan_path())};
    for_each_name(path_, [&](int, const char* name) {
        if (is_own(name)) files.push_back(path_ + name);
    });
    return files;
}

void PartFolder::remove() const {
    std::error_code failure;
    fs::remove(plan_path(), failure);
    fs::remove(unfinished_name(plan_path()), failure);
    for_each_name(path_, [](int parts, const char* name) {
        if (is_own(name)) ::unlinkat(parts, name, 0);
    });
    fs::remove(folder_of(path_), failure);  // where it is empty
}

std::string PartFolder::part_path(const std::string& kind, int task) const {
    return path_ + kind + '-' + std::to_string(task) + ".part";
}

std::string PartFolder::mark_path(const std::string& kind, int task) const {
    return path_ + kind + '-' + std::to_string(task) + ".running";
}

bool PartFolder::has_part(const std::string& kind, int task) const {
    std::error_code failure;
    return fs::exists(part_path(kind, task), failure);
}

std::vector<int> PartFolder::missing(const std::string& kind, int end) const {
    std::vector<int> tasks;
    for (int t = 0; t < end; ++t) {
        if (!(kind == kScreen ? is_screened(t) : has_part(kind, t))) tasks.push_back(t);
    }
    return tasks;
}

Parts::Parts(const PartFolder& folder, const Plan& plan, Diagnostics& diagnostics)
    : folder_(folder), plan_(plan), diagnostics_(diagnostics), fingerprint_(plan.fingerprint()) {}

PartTitle Parts::title(const char* kind, const Task& task) const {
    return {kind, fingerprint_, task.number, task.first, task.count};
}

PartSizes Parts::sizes(const Task& task) const {
    return {plan_.markers, plan_.parameters.best_m, task.count};
}

// The draws come last: where they are, the rest is.
void Parts::write(const Task& task, const ScreenedTask& screened) const {
    write_part(folder_.part_path(kScreen, task.number), title(kScreen, task),
               bytes_of(screened.screen), diagnostics_);
    write_part(folder_.part_path(kDraws, task.number), title(kDraws, task),
               bytes_of(screened.draws), diagnostics_);
}

void Parts::write(const Task& task, const ModelPart& modelled) const {
    write_part(folder_.part_path(kModel, task.number), title(kModel, task), bytes_of(modelled),
               diagnostics_);
}

void Parts::write_start(const Task& task, std::span<const short> start) const {
    ByteWriter out;
    const std::vector<signed char> narrow(start.begin(), start.end());
    out.put(narrow);
    write_part(folder_.part_path(kStart, task.number), title(kStart, task), std::move(out).take(),
               diagnostics_);
}

void Parts::write_study(const Study& study) const {
    write_part(folder_.study_path(), title("study", {}), bytes_of(study), diagnostics_);
    write_part(folder_.people_path(), title("people", {}), people_bytes_of(study), diagnostics_);
}

void Parts::write_held_back(const HeldBack& held_back) const {
    write_part(folder_.held_back_path(), title(kHeldBack, {}), bytes_of(held_back), diagnostics_);
}

template <typename Parse>
auto Parts::read(const char* kind, const Task& task, Parse parse) const {
    return read_from(folder_.part_path(kind, task.number), title(kind, task), parse);
}

template <typename Parse>
auto Parts::read_from(const std::string& path, const PartTitle& title, Parse parse) const {
    const std::string bytes = read_part(path);
    const std::string_view payload = payload_of(bytes, path, title);
    try {
        return parse(payload);
    } catch (const MalformedBytes&) {
        refuse_payload(path, title.kind);
    }
}

ScreenPart Parts::screen(const Task& task) const {
    return read(kScreen, task,
                [&](std::string_view bytes) { return screen_part_of(bytes, sizes(task)); });
}

DrawsPart Parts::draws(const Task& task) const {
    return read(kDraws, task,
                [&](std::string_view bytes) { return draws_part_of(bytes, task.count); });
}

ModelPart Parts::model(const Task& task) const {
    return read(kModel, task,
                [&](std::string_view bytes) { return model_part_of(bytes, sizes(task)); });
}

std::vector<short> Parts::start(const Task& task) const {
    return read(kStart, task, [&](std::string_view bytes) {
        ByteReader in(bytes);
        const auto narrow = in.get_values<signed char>();
        in.require_end();
        ByteReader::require(std::cmp_equal(narrow.size(), plan_.individuals));
        return std::vector<short>(narrow.begin(), narrow.end());
    });
}

Study Parts::study() const {
    return read_from(folder_.study_path(), title("study", {}), [&](std::string_view bytes) {
        Study study = study_of(bytes);
        ByteReader::require(std::cmp_equal(study.individuals.size(), plan_.individuals) &&
                            std::cmp_equal(study.markers.size(), plan_.markers));
        return study;
    });
}

Study Parts::people() const {
    return read_from(folder_.people_path(), title("people", {}), [&](std::string_view bytes) {
        Study people = people_of(bytes);
        ByteReader::require(std::cmp_equal(people.phenotypes.size(), plan_.individuals));
        return people;
    });
}

HeldBack Parts::held_back() const {
    return read_from(folder_.held_back_path(), title(kHeldBack, {}),
                     [&](std::string_view bytes) { return held_back_of(bytes, plan_.markers); });
}

void Parts::require_usable(const std::string& step, const Task& task) const {
    const auto require = [&](const char* kind) {
        require_title_and_size(folder_.part_path(kind, task.number), title(kind, task));
    };
    if (step == kModel) return require(kModel);
    require(kScreen);
    require(kDraws);
}

std::vector<double> Parts::observed_pvalues() const {
    return screen(plan_.tasks.front()).record.observed;
}

void Parts::skip_draws(const Task& task, ModelStart& start) const {
    const DrawsPart part = draws(task);
    for (std::size_t d = 0; d < part.draws.size(); ++d) {
        start.draws.skip(static_cast<std::uint64_t>(part.draws[d]));
        start.method_told = start.method_told || part.pairs[d] != 0;
    }
}

ModelStart Parts::model_start(const Task& task) const {
    ModelStart start;
    for (const Task& earlier : plan_.tasks) {
        if (earlier.number == task.number) break;
        skip_draws(earlier, start);
    }
    return start;
}

}  // namespace vort
