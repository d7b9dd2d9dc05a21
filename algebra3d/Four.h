// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef ALGEBRA3D_FOUR_H
#define ALGEBRA3D_FOUR_H

#include <cmath>
#include <cstddef>

#if defined(__x86_64__)
#include <emmintrin.h>
#endif

#include <algebra3d/Vector3.h>

// Four doubles, or four vectors, at once, for sources with inner loops; it is not installed. Each
// of the four is computed by the same operations in the same order as one alone, so the doubles are
// those of the plain formulas, whatever processor it is: where it has AVX2, that is used.

#if defined(__x86_64__) && defined(__GNUC__) && !defined(__clang__) &&                             \
    !defined(STRANDVIEW_BASELINE_ONLY)
// Compiled twice, and chosen when the library is loaded. The compiler leaves the AVX2
// state (vzeroupper) before it calls or returns to anything else. Clang refuses vectors that go
// between one of two such functions and what is compiled into it.
#define FOUR_AT_ONCE __attribute__((target_clones("avx2", "default")))
#else
#define FOUR_AT_ONCE
#endif
#define ALWAYS_INLINE inline __attribute__((always_inline))

// Four are passed only between functions that are compiled into each other.
#pragma GCC diagnostic ignored "-Wpsabi"

namespace algebra3d {

typedef double Four __attribute__((vector_size(32)));
// Wherever four doubles lie, even as a vector.
typedef double FourInMemory __attribute__((vector_size(32), aligned(8), may_alias));
typedef long long FourMasks __attribute__((vector_size(32)));

struct FourVectors
{
    Four x, y, z;
};

ALWAYS_INLINE Four all(double value) { return Four{value, value, value, value}; }

ALWAYS_INLINE Four load(const double* values)
{
    return *reinterpret_cast<const FourInMemory*>(values);
}

ALWAYS_INLINE void store(const Four& four, double* values)
{
    *reinterpret_cast<FourInMemory*>(values) = four;
}

// The first of some vectors, and the three that are so many further on each.
ALWAYS_INLINE FourVectors gather(const Vector3<double>* first, std::size_t step)
{
    const Vector3<double>&a = first[0], &b = first[step], &c = first[2 * step],
          &d = first[3 * step];
    return {Four{a.x, b.x, c.x, d.x}, Four{a.y, b.y, c.y, d.y}, Four{a.z, b.z, c.z, d.z}};
}

ALWAYS_INLINE FourVectors operator+(const FourVectors& a, const FourVectors& b)
{
    return {a.x + b.x, a.y + b.y, a.z + b.z};
}

ALWAYS_INLINE FourVectors operator-(const FourVectors& a, const FourVectors& b)
{
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}

ALWAYS_INLINE FourVectors operator*(const Four& factor, const FourVectors& v)
{
    return {factor * v.x, factor * v.y, factor * v.z};
}

ALWAYS_INLINE FourVectors operator/(const FourVectors& v, const Four& divisor)
{
    return {v.x / divisor, v.y / divisor, v.z / divisor};
}

ALWAYS_INLINE Four dot(const FourVectors& a, const FourVectors& b)
{
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

ALWAYS_INLINE FourVectors cross(const FourVectors& a, const FourVectors& b)
{
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

ALWAYS_INLINE FourVectors select(const FourMasks& mask, const FourVectors& a, const FourVectors& b)
{
    return {mask ? a.x : b.x, mask ? a.y : b.y, mask ? a.z : b.z};
}

ALWAYS_INLINE bool areAll(const FourMasks& mask)
{
    return (mask[0] & mask[1] & mask[2] & mask[3]) != 0;
}

ALWAYS_INLINE Four squareRoot(const Four& four)
{
#if defined(__x86_64__)
    const __m128d low = _mm_sqrt_pd(__m128d{four[0], four[1]});
    const __m128d high = _mm_sqrt_pd(__m128d{four[2], four[3]});
    return Four{low[0], low[1], high[0], high[1]};
#else
    return Four{std::sqrt(four[0]), std::sqrt(four[1]), std::sqrt(four[2]), std::sqrt(four[3])};
#endif
}

ALWAYS_INLINE Four norm(const FourVectors& v) { return squareRoot(dot(v, v)); }

} // namespace algebra3d

#endif
