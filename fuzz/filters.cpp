// Phenotype file and filters, over a study that does not change: the sections and options of
// study_case.h.
#include <string>

#include "support/harness.h"
#include "support/study_case.h"

namespace vort::fuzz {

namespace {

constexpr std::string_view kFam =
    "f a 0 0 1 2\nf b 0 0 2 1\nf c a b 1 2\ng a 0 0 2 1\n0 d 0 0 1 1\ne e x 0 0 2\nh h 0 0 1 -9\n";
constexpr std::string_view kBim =
    "1 rs1 0 100 A G\n1 rs2 0 200 A G\n7 rs3 0 5 0 T\nX rs4 0 9 C T\nY rs5 0 9 C T\n"
    "XY rs6 0 9 C T\nMT rs7 0 9 C T\n2 rs1 0 7 A G\n0 rs8 0 1 A G\n3 rs9 0 -1 A G\n";

std::string bed() {
    std::string bytes = "\x6C\x1B\x01";
    for (int b = 0; b < 20; ++b) bytes.push_back(static_cast<char>(b * b * 41 + 3));
    for (std::size_t b = 4; b < bytes.size(); b += 2) bytes[b] = static_cast<char>(bytes[b] & 63);
    return bytes;
}

class FixedStudy {
  public:
    FixedStudy() {
        files_.format = StudyFormat::kBed;
        files_.bed = folder_.put("study.bed", bed());
        files_.bim = folder_.put("study.bim", kBim);
        files_.fam = folder_.put("study.fam", kFam);
    }

    void run(const Sections& input) {
        StudyRequest request = request_for(input, folder_);
        request.files = files_;
        check_study(request, folder_);
    }

  private:
    Files folder_;
    StudyFiles files_;
};

}  // namespace

}  // namespace vort::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static vort::fuzz::FixedStudy study;
    study.run(vort::fuzz::Sections(vort::fuzz::text_of(data, size)));
    return 0;
}
