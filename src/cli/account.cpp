#include "cli/account.h"

#include "common/odd_files.h"
#include "report/wording.h"

namespace vort {

void tell_pipes(const StudyRequest& request, Terminal& terminal) {
    Diagnostics diagnostics(terminal.errors());
    for (const std::string& path : named_files(request)) tell_pipe(path, diagnostics);
}

void tell_account(const Study& study, Terminal& terminal) {
    for (const LeftOut& left : study.left_out) {
        const bool individuals = left.what == LeftOut::What::kIndividuals;
        terminal.say(counted(left.count, individuals ? "individuals" : "markers") +
                     " left out: " + left.why);
    }
    for (const std::string& note : study.notes) terminal.say(note);
}

}  // namespace vort
