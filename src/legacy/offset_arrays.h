// Arrays whose valid indices run over a range that the caller chooses, such as 1 .. n.
//
// Both bounds of a range belong to it: dvector(1, n) makes elements 1 .. n usable and no other. A
// range [nl, nl - 1] is empty; what is allocated for it can still be freed. Every element starts
// as zero. A range shorter than empty, or one that memory cannot hold, ends the program through
// nrerror().
//
// The caller owns what an allocator returns and hands it back to the matching free_ function with
// the bounds that it was allocated with. offset_owner.h has owners that do so by themselves.
#pragma once

namespace vort {

// Vectors: v[nl .. nh].
double* dvector(long nl, long nh);
int* ivector(long nl, long nh);
char* cvector(long nl, long nh);
void free_dvector(double* v, long nl, long nh);
void free_ivector(int* v, long nl, long nh);
void free_cvector(char* v, long nl, long nh);

// Matrices: m[nrl .. nrh][ncl .. nch], each row a vector of its own.
double** matrix(long nrl, long nrh, long ncl, long nch);
int** imatrix(long nrl, long nrh, long ncl, long nch);
char** cmatrix(long nrl, long nrh, long ncl, long nch);
void free_matrix(double** m, long nrl, long nrh, long ncl, long nch);
void free_imatrix(int** m, long nrl, long nrh, long ncl, long nch);
void free_cmatrix(char** m, long nrl, long nrh, long ncl, long nch);

// Ragged matrix: row r of nrl .. nrh has elements m[r][1 .. lengths[r]].
int** ihmatrix(long nrl, long nrh, const int* lengths);
void free_ihmatrix(int** m, long nrl, long nrh);

// Three-dimensional arrays: a[nrl .. nrh][ncl .. nch][ndl .. ndh], all elements in one block.
double*** array(long nrl, long nrh, long ncl, long nch, long ndl, long ndh);
int*** iarray(long nrl, long nrh, long ncl, long nch, long ndl, long ndh);
char*** carray(long nrl, long nrh, long ncl, long nch, long ndl, long ndh);
void free_array(double*** a, long nrl, long nrh, long ncl, long nch, long ndl, long ndh);
void free_iarray(int*** a, long nrl, long nrh, long ncl, long nch, long ndl, long ndh);
void free_carray(char*** a, long nrl, long nrh, long ncl, long nch, long ndl, long ndh);

// Ragged three-dimensional array: row r of nrl .. nrh has a[r][1 .. lengths[r]][ndl .. ndh].
int*** iharray(long nrl, long nrh, const int* lengths, long ndl, long ndh);
void free_iharray(int*** a, long nrl, long nrh, const int* lengths, long ndl, long ndh);

}  // namespace vort
