// A VCF, plain or bgzipped, or a BCF, record after record.
#pragma once

#include <memory>
#include <span>
#include <string>

#include "genotypes/marker_info.h"
#include "study/vcf_genotypes.h"

namespace vort {

struct VcfRecord {
    MarkerInfo marker;  // a1 is ALT, "." where there is none; a marker without a name gets one
    int alleles = 0;    // REF and every ALT
};

class VcfFile {
  public:
    // Throws InputError where the file is not what it should be, as all that follows does. Blocks
    // are unpacked by the thread that reads: others of the library's save a sixth of the time, but
    // one that lacks memory leaves the reader waiting for ever.
    explicit VcfFile(std::string path);
    ~VcfFile();
    VcfFile(const VcfFile&) = delete;
    VcfFile& operator=(const VcfFile&) = delete;

    const std::string& path() const;
    std::span<char* const> samples() const;

    // The next record; false at the end.
    bool next(VcfRecord& record);

    // Packs the genotypes of the record, all missing where it has none, and says so.
    struct Packed {
        bool has_calls = true;
        long polyploid = 0;  // genotypes of more than two alleles, taken as missing
    };
    Packed pack(std::span<unsigned char> out);

  private:
    class File;
    std::unique_ptr<File> file_;
};

}  // namespace vort
