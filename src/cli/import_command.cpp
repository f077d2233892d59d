#include "cli/import_command.h"

#include <CLI/CLI.hpp>

#include "cli/account.h"
#include "cli/input_guard.h"
#include "cli/interruption.h"
#include "cli/ranges.h"
#include "cli/result_folder.h"
#include "report/wording.h"
#include "study/study_directory.h"

namespace vort {

namespace {

constexpr const char* kStudyFiles[] = {"dat1.txt", "Chromosome_SNP_Name.txt", "parameter.txt"};

}  // namespace

CLI::App* add_import_command(CLI::App& app, ImportOptions& options) {
    CLI::App* const import = app.add_subcommand(
        "import", "write a study as a directory: parameter.txt, data set, marker table");
    add_input_options(*import, options.input);
    add_analysis_options(*import, options.parameters);
    import->add_option("--out", options.out, "the directory")
        ->type_name("DIR")
        ->required()
        ->group("Output");
    import->add_flag("--force", options.force, "replace a study that is there")->group("Output");
    import->add_option("--threads", options.threads, "threads [default: all processors]")
        ->type_name("N")
        ->transform(whole(1, 1024))
        ->group("Resources");
    return import;
}

void import_study(const ImportOptions& options) {
    StudyRequest request = study_request(options.input);
    request.threads = options.threads;
    Terminal terminal;
    InputGuard inputs(named_files(request));
    inputs.add_folder(request.files.directory);
    ResultFolder folder(options.out, kStudyFiles, options.force, named_files(request), terminal);
    const Interruption interruption([&] { folder.discard(); });
    tell_pipes(request, terminal);
    const Study study = load_study(request);
    folder.require_apart(paths_of(study.inputs));
    tell_account(study, terminal);
    if (const long shared = shared_identifiers(study); shared > 0) {
        terminal.say(counted(shared, "individuals") +
                     " called FID_IID as another one is; vort run --study would refuse the study");
    }
    const StudyParameters parameters = parameters_for(options.parameters, study, terminal);
    const int individuals = study.genotypes.individuals();
    const int markers = study.genotypes.markers();
    folder.require_room(2.5 * individuals * markers + 40.0 * (individuals + markers));
    write_study_directory(study, parameter_text(parameters, individuals, markers),
                          folder.unfinished());
    const std::string done = std::to_string(individuals) + " individuals and " +
                             std::to_string(markers) + " markers in " + options.out +
                             "\nanalyse them by: cd " + options.out + " && vort >console.txt\n";
    inputs.require_unchanged();
    folder.publish();
    terminal.print(done);
}

}  // namespace vort
