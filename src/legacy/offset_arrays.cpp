#include "legacy/offset_arrays.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <limits>

#include "legacy/nrerror.h"

// Part of the leak checker's runtime; null where the program is built without it.
// NOLINTNEXTLINE(bugprone-reserved-identifier)
extern "C" __attribute__((weak)) void __lsan_ignore_object(const void* block);

namespace vort {

namespace {

constexpr const char* kDoubleVector = "allocation failure in dvector()";
constexpr const char* kIntVector = "allocation failure in ivector()";
constexpr const char* kCharVector = "allocation failure in cvector()";
constexpr const char* kMatrixTable = "allocation failure 1 in matrix()";
constexpr const char* kMatrixRow = "allocation failure 2 in matrix()";
constexpr const char* kTensorTable = "allocation failure in 1 in d3tensor()";
constexpr const char* kTensorRows = "allocation failure 2 in d3tensor()";
constexpr const char* kTensorBlock = "allocation failure 3 in d3tensor()";
constexpr const char* kRaggedTable = "allocation failure 1 in iharray()";
constexpr const char* kRaggedRows = "allocation failure 2 in iharray()";
constexpr const char* kRaggedRow = "allocation failure 3 in iharray()";

// Number of indices in [low, high]; a range shorter than empty fails.
std::size_t length_of(long low, long high, const char* failure) {
    if (high >= low) {
        const std::uint64_t difference =
            static_cast<std::uint64_t>(high) - static_cast<std::uint64_t>(low);
        if (difference < std::numeric_limits<std::int64_t>::max()) return difference + 1;
        nrerror(failure);
    }
    if (low > std::numeric_limits<long>::min() && high == low - 1) return 0;
    nrerror(failure);
}

std::size_t product_of(std::size_t a, std::size_t b, const char* failure) {
    if (b != 0 && a > std::numeric_limits<std::size_t>::max() / b) nrerror(failure);
    return a * b;
}

// Index 0 of an array may lie outside its block, where pointer arithmetic is not defined; the
// shift is therefore done on addresses.
template <typename T>
T* moved(T* pointer, std::uintptr_t elements) {
    const auto address = reinterpret_cast<std::uintptr_t>(pointer) + elements * sizeof(T);
    return reinterpret_cast<T*>(address);  // NOLINT(performance-no-int-to-ptr)
}

template <typename T>
T* shifted(T* block, long low) {
    return moved(block, -static_cast<std::uintptr_t>(low));
}

template <typename T>
T* block_of(T* array, long low) {
    return moved(array, static_cast<std::uintptr_t>(low));
}

// A zeroed block of at least one element. Zero pages of the system cost nothing until they are
// written, which an array that is mostly left empty gains from. The leak checker does not follow
// shifted pointers and would take every array that is alive at an early end for a leak.
template <typename T>
T* allocate_block(std::size_t count, const char* failure) {
    void* block = nullptr;
    if (count <= std::numeric_limits<std::ptrdiff_t>::max() / sizeof(T)) {
        block = std::calloc(std::max<std::size_t>(count, 1), sizeof(T));
    }
    if (block == nullptr) nrerror(failure);
    if (__lsan_ignore_object != nullptr) __lsan_ignore_object(block);
    return static_cast<T*>(block);
}

template <typename T>
T* allocate_vector(long nl, long nh, const char* failure) {
    return shifted(allocate_block<T>(length_of(nl, nh, failure), failure), nl);
}

template <typename T>
void free_vector(T* v, long nl) {
    std::free(block_of(v, nl));
}

template <typename T>
T** allocate_matrix(long nrl, long nrh, long ncl, long nch) {
    T** m = allocate_vector<T*>(nrl, nrh, kMatrixTable);
    for (long r = nrl; r <= nrh; ++r) m[r] = allocate_vector<T>(ncl, nch, kMatrixRow);
    return m;
}

template <typename T>
void free_rows(T** m, long nrl, long nrh, long ncl) {
    for (long r = nrl; r <= nrh; ++r) free_vector(m[r], ncl);
    free_vector(m, nrl);
}

// The first entries of both tables lead to the blocks behind them, so they are filled even where
// the ranges are empty.
template <typename T>
T*** allocate_array(long nrl, long nrh, long ncl, long nch, long ndl, long ndh) {
    T*** a = allocate_vector<T**>(nrl, nrh, kTensorTable);
    const std::size_t rows = length_of(nrl, nrh, kTensorTable);
    const std::size_t columns = length_of(ncl, nch, kTensorRows);
    const std::size_t depth = length_of(ndl, ndh, kTensorBlock);
    const std::size_t vectors = product_of(rows, columns, kTensorRows);

    T** tables = allocate_block<T*>(vectors, kTensorRows);
    T* elements = allocate_block<T>(product_of(vectors, depth, kTensorBlock), kTensorBlock);
    tables[0] = shifted(elements, ndl);
    for (std::size_t v = 1; v < vectors; ++v) tables[v] = shifted(elements + v * depth, ndl);
    a[nrl] = shifted(tables, ncl);
    for (std::size_t r = 1; r < rows; ++r) {
        a[nrl + static_cast<long>(r)] = shifted(tables + r * columns, ncl);
    }
    return a;
}

template <typename T>
void release_array(T*** a, long nrl, long ncl, long ndl) {
    free_vector(a[nrl][ncl], ndl);
    free_vector(a[nrl], ncl);
    free_vector(a, nrl);
}

}  // namespace

double* dvector(long nl, long nh) {
    return allocate_vector<double>(nl, nh, kDoubleVector);
}
int* ivector(long nl, long nh) {
    return allocate_vector<int>(nl, nh, kIntVector);
}
char* cvector(long nl, long nh) {
    return allocate_vector<char>(nl, nh, kCharVector);
}

void free_dvector(double* v, long nl, long) {
    free_vector(v, nl);
}
void free_ivector(int* v, long nl, long) {
    free_vector(v, nl);
}
void free_cvector(char* v, long nl, long) {
    free_vector(v, nl);
}

double** matrix(long nrl, long nrh, long ncl, long nch) {
    return allocate_matrix<double>(nrl, nrh, ncl, nch);
}
int** imatrix(long nrl, long nrh, long ncl, long nch) {
    return allocate_matrix<int>(nrl, nrh, ncl, nch);
}
char** cmatrix(long nrl, long nrh, long ncl, long nch) {
    return allocate_matrix<char>(nrl, nrh, ncl, nch);
}

void free_matrix(double** m, long nrl, long nrh, long ncl, long) {
    free_rows(m, nrl, nrh, ncl);
}
void free_imatrix(int** m, long nrl, long nrh, long ncl, long) {
    free_rows(m, nrl, nrh, ncl);
}
void free_cmatrix(char** m, long nrl, long nrh, long ncl, long) {
    free_rows(m, nrl, nrh, ncl);
}

int** ihmatrix(long nrl, long nrh, const int* lengths) {
    int** m = allocate_vector<int*>(nrl, nrh, kMatrixTable);
    for (long r = nrl; r <= nrh; ++r) m[r] = allocate_vector<int>(1, lengths[r], kMatrixRow);
    return m;
}

void free_ihmatrix(int** m, long nrl, long nrh) {
    free_rows(m, nrl, nrh, 1);
}

double*** array(long nrl, long nrh, long ncl, long nch, long ndl, long ndh) {
    return allocate_array<double>(nrl, nrh, ncl, nch, ndl, ndh);
}
int*** iarray(long nrl, long nrh, long ncl, long nch, long ndl, long ndh) {
    return allocate_array<int>(nrl, nrh, ncl, nch, ndl, ndh);
}
char*** carray(long nrl, long nrh, long ncl, long nch, long ndl, long ndh) {
    return allocate_array<char>(nrl, nrh, ncl, nch, ndl, ndh);
}

void free_array(double*** a, long nrl, long, long ncl, long, long ndl, long) {
    release_array(a, nrl, ncl, ndl);
}
void free_iarray(int*** a, long nrl, long, long ncl, long, long ndl, long) {
    release_array(a, nrl, ncl, ndl);
}
void free_carray(char*** a, long nrl, long, long ncl, long, long ndl, long) {
    release_array(a, nrl, ncl, ndl);
}

int*** iharray(long nrl, long nrh, const int* lengths, long ndl, long ndh) {
    int*** a = allocate_vector<int**>(nrl, nrh, kRaggedTable);
    for (long r = nrl; r <= nrh; ++r) {
        a[r] = allocate_vector<int*>(1, lengths[r], kRaggedRows);
        for (long i = 1; i <= lengths[r]; ++i) {
            a[r][i] = allocate_vector<int>(ndl, ndh, kRaggedRow);
        }
    }
    return a;
}

void free_iharray(int*** a, long nrl, long nrh, const int* lengths, long ndl, long) {
    for (long r = nrl; r <= nrh; ++r) free_rows(a[r], 1, lengths[r], ndl);
    free_vector(a, nrl);
}

}  // namespace vort
