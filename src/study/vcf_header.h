// The header of a VCF or BCF.
#pragma once

#include <htslib/vcf.h>

#include <memory>
#include <string>

namespace vort {

struct HeaderRelease {
    void operator()(bcf_hdr_t* header) const { bcf_hdr_destroy(header); }
};
using VcfHeader = std::unique_ptr<bcf_hdr_t, HeaderRelease>;

// Of a file that has just been opened, which is left at its first record. Null where there is no
// header. Throws InputError, which names `path`, where it asks for tables that its own size does
// not justify: the library makes one as long as the largest number in an IDX= says.
VcfHeader read_vcf_header(htsFile& file, const std::string& path);

}  // namespace vort
