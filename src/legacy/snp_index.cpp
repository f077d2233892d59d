#include "legacy/snp_index.h"

#include "legacy/default_objects.h"
#include "legacy/globals.h"
#include "legacy/on_console.h"

namespace vort {

namespace {

using Numbering = MarkerTable::Numbering;

int locate(int m, Numbering numbering, int* chromosome, int* locus) {
    const MarkerTable::Place place =
        on_console([&](Transcript&) { return default_marker_table().locate(m, numbering); });
    *chromosome = place.chromosome;
    *locus = place.locus;
    return *chromosome;
}

const char* find(int m, Numbering numbering, int* chromosome, int* locus) {
    const MarkerTable::Entry entry =
        on_console([&](Transcript&) { return default_marker_table().find(m, numbering); });
    *chromosome = entry.chromosome;
    *locus = entry.locus;
    return entry.name.empty() ? "" : entry.name.data();
}

}  // namespace

const MarkerTable& default_marker_table() {
    DefaultObjects& held = default_objects();
    if (!held.markers) {
        held.markers = MarkerTable::from_file("Chromosome_SNP_Name.txt", Marker);
        held.markers->check(held.diagnostics);
    }
    return *held.markers;
}

int return_chromosome_and_locus(int m, int* chromosome, int* locus) {
    return locate(m, Numbering::kFromZero, chromosome, locus);
}

int return_chromosome_and_locus1(int m, int* chromosome, int* locus) {
    return locate(m, Numbering::kFromOne, chromosome, locus);
}

const char* findSNPname(int m, int* chromosome, int* locus) {
    return find(m, Numbering::kFromZero, chromosome, locus);
}

const char* findSNPname1(int m, int* chromosome, int* locus) {
    return find(m, Numbering::kFromOne, chromosome, locus);
}

}  // namespace vort
