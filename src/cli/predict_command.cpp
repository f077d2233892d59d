#include "cli/predict_command.h"

#include <CLI/CLI.hpp>
#include <filesystem>
#include <iterator>

#include "cli/account.h"
#include "cli/input_guard.h"
#include "cli/interruption.h"
#include "cli/prediction_output.h"
#include "cli/prediction_summary.h"
#include "cli/ranges.h"
#include "cli/results.h"
#include "cli/summary_line.h"
#include "common/path_names.h"
#include "prediction/prediction_file.h"
#include "results/model_json.h"

namespace vort {

namespace {

std::string model_path(const std::string& given) {
    std::error_code failure;
    if (!std::filesystem::is_directory(given, failure)) return given;
    return path_in(given, "model.json");
}

std::vector<std::string> all_inputs(const StudyRequest& request, const std::string& model) {
    std::vector<std::string> files = named_files(request);
    files.push_back(model);
    return files;
}

std::set<std::string> names_of(std::span<const MarkerInfo> markers) {
    std::set<std::string> names;
    for (const MarkerInfo& marker : markers) names.insert(marker.name);
    return names;
}

// Whether the input's chromosomes and positions are those of the genome.
bool has_places(const StudyFiles& files) {
    return files.format != StudyFormat::kDirectory &&
           (files.format != StudyFormat::kRaw || !files.bim.empty());
}

std::string table_text(const Study& study, const RiskModel& model, const Predictions& predictions) {
    Transcript out(true);
    put_predictions(study.individuals, study.phenotypes, model, predictions, out);
    return std::string(out.text());
}

}  // namespace

CLI::App* add_predict_command(CLI::App& app, PredictOptions& options) {
    CLI::App* const predict =
        app.add_subcommand("predict", "apply the model of a run to other individuals");
    predict->add_option("--model", options.model, "model.json of a run, or the run's directory")
        ->type_name("FILE")
        ->required()
        ->group("Model");
    add_people_options(*predict, options.input);
    predict
        ->add_option("--out", options.out,
                     "the table, NAME.tsv; NAME.json beside it has what it rests on")
        ->type_name("FILE")
        ->required()
        ->group("Output");
    predict->add_flag("--force", options.force, "replace files that are there")->group("Output");
    predict->add_option("--threads", options.threads, "threads [default: all processors]")
        ->type_name("N")
        ->transform(whole(1, 1024))
        ->group("Resources");
    return predict;
}

void predict_study(const PredictOptions& options) {
    StudyRequest request = study_request(options.input);
    request.threads = options.threads;
    const std::string path = model_path(options.model);
    const std::vector<std::string> files = all_inputs(request, path);
    Terminal terminal;
    InputGuard inputs(files);
    inputs.add_folder(request.files.directory);
    const RiskModel model = risk_model_of(read_model(path), path);
    PredictionOutput output(options.out, options.force, files);
    const Interruption interruption([&] {
        terminal.clear_progress();
        output.discard();
    });
    tell_pipes(request, terminal);
    request.only_markers = names_of(model.markers);
    Study study = load_study(request);
    output.require_apart(paths_of(study.inputs));
    const std::vector<MarkerMatch> matches =
        match_markers(model.markers, study.markers, model.has_places && has_places(request.files));
    std::ranges::move(match_notes(model.markers, study.markers, matches),
                      std::back_inserter(study.notes));
    tell_account(study, terminal);
    const Predictions predictions = predict(model, matches, study.genotypes);
    const Evaluation evaluation = evaluate(predictions.risk, study.phenotypes, model.study_share);
    const PredictionDescription run{path,    request.files.format, study,     model,
                                    matches, predictions,          evaluation};
    Diagnostics diagnostics(terminal.errors());
    output.write(table_text(study, model, predictions), json_text(prediction_json(run)),
                 diagnostics);
    const std::string summary = prediction_summary(run) + summary_line("Table", output.table()) +
                                summary_line("In numbers", output.summary());
    inputs.require_unchanged();
    output.publish();
    terminal.print(summary);
}

}  // namespace vort
