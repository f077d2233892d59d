// A study as additive recoding: sections raw and, where there is one, bim, and those of
// study_case.h.
#include "support/harness.h"
#include "support/study_case.h"

namespace vort::fuzz {

namespace {

void run(std::string_view text) {
    static Files files;
    const Sections input(text);
    StudyRequest request = request_for(input, files);
    request.files.format = StudyFormat::kRaw;
    request.files.raw = files.put("raw", input["raw"]);
    if (input.has("bim")) request.files.bim = files.put("bim", input["bim"]);
    check_study(request, files);
}

}  // namespace

}  // namespace vort::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    vort::fuzz::run(vort::fuzz::text_of(data, size));
    return 0;
}
