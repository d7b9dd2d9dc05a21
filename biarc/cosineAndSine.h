// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef BIARC_COSINEANDSINE_H
#define BIARC_COSINEANDSINE_H

namespace biarc {

/// Up to this magnitude of an angle cosineAndSine() is right to the last bit but one.
constexpr double LARGEST_ANGLE = 1000;

/// The cosine and the sine of an angle in radians, a double or a vector of doubles (GCC's
/// vector_size): lane by lane the same doubles, whichever it is, which no library promises.
///
/// The angle less the nearest multiple of a quarter turn, of which three parts are subtracted
/// (W. J. Cody, W. Waite, Software Manual for the Elementary Functions, 1980, chapter 8); of the
/// rest Taylor's series, of which the first term left out is below 1e-17.
template <class Number>
inline __attribute__((always_inline)) void cosineAndSine(const Number& angle, Number& cosine,
                                                         Number& sine)
{
    constexpr double TO_WHOLE = 0x1.8p+52; // added and subtracted again it rounds to whole numbers
    constexpr double QUARTER[] = {0x1.921fb544p+0, 0x1.0b4611a6p-34, 0x1.3198a2e037073p-69};
    constexpr double SINE[] = {-1.0 / 6,        1.0 / 120,        -1.0 / 5040,         1.0 / 362880,
                               -1.0 / 39916800, 1.0 / 6227020800, -1.0 / 1307674368000};
    constexpr double COSINE[] = {
        1.0 / 24,        -1.0 / 720,         1.0 / 40320,         -1.0 / 3628800,
        1.0 / 479001600, -1.0 / 87178291200, 1.0 / 20922789888000};

    const Number quarters = (angle * 0x1.45f306dc9c883p-1 + TO_WHOLE) - TO_WHOLE;
    const Number rest =
        ((angle - quarters * QUARTER[0]) - quarters * QUARTER[1]) - quarters * QUARTER[2];
    const Number square = rest * rest;
    Number ofSine = square * SINE[6] + SINE[5];
    Number ofCosine = square * COSINE[6] + COSINE[5];
    for (int i = 4; i >= 0; --i) {
        ofSine = ofSine * square + SINE[i];
        ofCosine = ofCosine * square + COSINE[i];
    }
    const Number restSine = rest + rest * (square * ofSine);
    const Number restCosine = 1.0 - (square * 0.5 - square * (square * ofCosine));

    // -2 to 2, of which the ends are the same
    const Number turn = quarters - 4.0 * ((quarters * 0.25 + TO_WHOLE) - TO_WHOLE);
    const Number isOdd = turn * turn;
    const Number ofX = isOdd == 1.0 ? restSine : restCosine;
    const Number ofY = isOdd == 1.0 ? restCosine : restSine;
    cosine = (turn > 0.5) | (turn < -1.5) ? -ofX : ofX;
    sine = (turn > 1.5) | (turn < -0.5) ? -ofY : ofY;
}

} // namespace biarc

#endif
