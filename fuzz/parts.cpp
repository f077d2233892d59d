// Plans, and what tasks leave: a letter for the kind, three bytes for the sizes that the plan says,
// and the payload. A checksum guards it from accidents, not from whoever can compute one.
#include <sstream>

#include "common/input_error.h"
#include "parts/bytes.h"
#include "parts/model_part.h"
#include "parts/part_file.h"
#include "parts/plan.h"
#include "parts/saved_study.h"
#include "parts/screen_part.h"
#include "support/harness.h"

namespace vort::fuzz {

namespace {

// What is read is written, and read again to the same.
template <typename Read, typename Write>
void check_round_trip(std::string_view payload, Read read, Write write) {
    std::string once;
    try {
        once = write(read(payload));
    } catch (const MalformedBytes&) {
        return;
    }
    require(write(read(once)) == once, "what was written is read as it was");
}

void check_kept(const ScreenPart& part, const PartSizes& sizes) {
    for (const auto& best : part.best) {
        for (const int j : best) require(j >= 0 && j < sizes.markers, "columns are of the study");
    }
    for (const KeptSets& kept : part.kept) {
        for (int s = 0; s < kept.count(); ++s) {
            const MarkerSet set = kept.set(s, sizes.best_m);
            for (int l = 0; l < set.size; ++l) {
                require(set.marker[l] >= 0 && set.marker[l] < sizes.best_m,
                        "ranks are of the best");
            }
        }
    }
}

void check_plan(std::string_view text) {
    try {
        const Plan plan = plan_of(std::string(text), "plan.json", "1.1.0");
        require(plan_of(plan_text(plan), "again", "1.1.0").tasks == plan.tasks,
                "a plan that was written is read");
    } catch (const InputError& error) {
        require(error.text.starts_with("plan.json: "), "what is wrong is told of the plan");
    }
}

void check_part_file(std::string_view bytes) {
    try {
        payload_of(bytes, "part", {"screen", "", 0, 0, 1});
    } catch (const InputError& error) {
        require(error.text.starts_with("part: "), "what is wrong is told of the part");
    }
}

void run(std::string_view input) {
    if (input.size() < 4) return;
    const auto size = [&](std::size_t k) { return static_cast<unsigned char>(input[k]) + 1; };
    const PartSizes sizes{size(1), size(2), size(3)};
    const std::string_view payload = input.substr(4);
    const auto write = [](const auto& part) { return bytes_of(part); };
    switch (input.front()) {
        case 's':
            return check_round_trip(
                payload,
                [&](std::string_view bytes) {
                    ScreenPart part = screen_part_of(bytes, sizes);
                    check_kept(part, sizes);
                    return part;
                },
                write);
        case 'd':
            return check_round_trip(
                payload,
                [&](std::string_view bytes) { return draws_part_of(bytes, sizes.data_sets); },
                write);
        case 'm':
            return check_round_trip(
                payload, [&](std::string_view bytes) { return model_part_of(bytes, sizes); },
                write);
        case 'n':
            return check_round_trip(payload, study_of, write);
        case 'c':
            return check_round_trip(payload, people_of, people_bytes_of);
        case 'h':
            return check_round_trip(
                payload, [&](std::string_view bytes) { return held_back_of(bytes, sizes.markers); },
                write);
        case 'p':
            return check_plan(payload);
        default:
            return check_part_file(payload);
    }
}

}  // namespace

}  // namespace vort::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    vort::fuzz::run(vort::fuzz::text_of(data, size));
    return 0;
}
