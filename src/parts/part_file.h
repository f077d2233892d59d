// A part: a file with some of what a run computes, which another process takes up.
//
// It says what it is, of which plan and which data sets, and ends with the SHA-256 of all that
// stands before. It gets its name when all of it is on the disk. So what bears the name of a part
// is whole, or can be told not to be:
//
//     "vort part\n"  8 bytes version  kind  fingerprint  task  first  count  payload  64 digits
#pragma once

#include <string>
#include <string_view>

#include "common/diagnostics.h"

namespace vort {

// What a part is of.
struct PartTitle {
    std::string kind;         // "screen", "model", ...
    std::string fingerprint;  // of the plan
    int task = 0;
    int first = 0;  // data set
    int count = 0;

    bool operator==(const PartTitle&) const = default;
};

std::string part_bytes(const PartTitle& title, std::string_view payload);

// A part that cannot be written to its end, told on standard error, stops the run with status 1.
void write_part(const std::string& path, const PartTitle& title, std::string_view payload,
                Diagnostics& diagnostics);

// All of a part's bytes. Throws InputError where they cannot be read.
std::string read_part(const std::string& path);

// The payload among the bytes, which are said to come from `path`. Throws InputError, naming the
// file, where it is damaged, belongs to another plan, or is not the part that `title` asks for.
std::string_view payload_of(std::string_view bytes, const std::string& path,
                            const PartTitle& title);

// Throws as `payload_of` does where the title or the size tells that the part cannot be used. It is
// quick, since it believes the payload: no checksum is made.
void require_title_and_size(const std::string& path, const PartTitle& title);

// Where the payload itself makes no sense, though its checksum is right.
[[noreturn]] void refuse_payload(const std::string& path, std::string_view kind);

}  // namespace vort
