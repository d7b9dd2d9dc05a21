// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef BIARC_TRIGONOMETRY_H
#define BIARC_TRIGONOMETRY_H

// Of a double or of a vector of doubles (GCC's vector_size): lane by lane the same doubles,
// whichever it is, which no library promises.
namespace biarc {

/// Up to this magnitude an angle is one of ofSmallAngle().
constexpr double SMALL_ANGLE = 0.75;

/// Up to this magnitude of an angle cosineAndSine() is right to the last bit but one.
constexpr double LARGEST_ANGLE = 1000;

/// The cosine and the sine of an angle in radians that is less than the eighth part of a turn:
/// those that cosineAndSine() gives. Taylor's series, of which the first term left out is below
/// 1e-17.
template <class Number>
inline __attribute__((always_inline)) void ofSmallAngle(const Number& angle, Number& cosine,
                                                        Number& sine)
{
    constexpr double SINE[] = {-1.0 / 6,        1.0 / 120,        -1.0 / 5040,         1.0 / 362880,
                               -1.0 / 39916800, 1.0 / 6227020800, -1.0 / 1307674368000};
    constexpr double COSINE[] = {
        1.0 / 24,        -1.0 / 720,         1.0 / 40320,         -1.0 / 3628800,
        1.0 / 479001600, -1.0 / 87178291200, 1.0 / 20922789888000};

    const Number square = angle * angle;
    Number ofSine = square * SINE[6] + SINE[5];
    Number ofCosine = square * COSINE[6] + COSINE[5];
    for (int i = 4; i >= 0; --i) {
        ofSine = ofSine * square + SINE[i];
        ofCosine = ofCosine * square + COSINE[i];
    }
    sine = angle + angle * (square * ofSine);
    cosine = 1.0 - (square * 0.5 - square * (square * ofCosine));
}

/// The cosine and the sine of an angle in radians.
///
/// Those of the angle less the nearest multiple of a quarter turn, of which three parts are
/// subtracted (W. J. Cody, W. Waite, Software Manual for the Elementary Functions, 1980, chapter
/// 8).
template <class Number>
inline __attribute__((always_inline)) void cosineAndSine(const Number& angle, Number& cosine,
                                                         Number& sine)
{
    constexpr double TO_WHOLE = 0x1.8p+52; // added and subtracted again it rounds to whole numbers
    constexpr double QUARTER[] = {0x1.921fb544p+0, 0x1.0b4611a6p-34, 0x1.3198a2e037073p-69};

    const Number quarters = (angle * 0x1.45f306dc9c883p-1 + TO_WHOLE) - TO_WHOLE;
    const Number rest =
        ((angle - quarters * QUARTER[0]) - quarters * QUARTER[1]) - quarters * QUARTER[2];
    Number restCosine, restSine;
    ofSmallAngle(rest, restCosine, restSine);

    // -2 to 2, of which the ends are the same
    const Number turn = quarters - 4.0 * ((quarters * 0.25 + TO_WHOLE) - TO_WHOLE);
    const Number isOdd = turn * turn;
    const Number ofX = isOdd == 1.0 ? restSine : restCosine;
    const Number ofY = isOdd == 1.0 ? restCosine : restSine;
    cosine = (turn > 0.5) | (turn < -1.5) ? -ofX : ofX;
    sine = (turn > 1.5) | (turn < -0.5) ? -ofY : ofY;
}

/// The angle from 0 to pi of a cosine, right to the last bit but two; not-a-number beyond -1 and 1.
/// takeSquareRoot(number) makes it that of std::sqrt() in each lane.
///
/// From the arc sine of the cosine up to a half, else of the sine of half the angle; its series is
/// replaced by a polynomial through as many Chebyshev nodes, off by at most 2e-17 of it.
template <class Number, class TakeSquareRoot>
inline __attribute__((always_inline)) void arcCosine(const Number& cosine,
                                                     TakeSquareRoot takeSquareRoot, Number& angle)
{
    constexpr double QUARTER = 0x1.921fb54442d18p+0, REST_OF_QUARTER = 0x1.1a62633145c07p-54;
    constexpr double ARC_SINE[] = {
        0x1.5555555555556p-3, 0x1.3333333332ecap-4, 0x1.6db6db6e31f13p-5, 0x1.f1c71c1db0623p-6,
        0x1.6e8bb1c8209a2p-6, 0x1.1c4d35cf95421p-6, 0x1.c9cf07674736ap-7, 0x1.782651caa6547p-7,
        0x1.52420b04b37bep-7, 0x1.65a9c4dfcf8b2p-8, 0x1.1d189408314eep-6, -0x1.e6aaa8a0a04ccp-7,
        0x1.d72b2bc8155f8p-6};

    const Number size = cosine < 0.0 ? -cosine : cosine;
    const Number half = (1.0 - size) * 0.5;
    const Number square = size <= 0.5 ? cosine * cosine : half;
    Number root = half;
    takeSquareRoot(root);
    const Number sine = size <= 0.5 ? cosine : root;
    Number series = square * ARC_SINE[12] + ARC_SINE[11];
    for (int i = 10; i >= 0; --i)
        series = series * square + ARC_SINE[i];
    const Number arcSine = sine + sine * (square * series);
    const Number fromQuarter = QUARTER - (arcSine - REST_OF_QUARTER);
    const Number fromEnd = cosine < 0.0 ? 2.0 * fromQuarter : 2.0 * arcSine;
    angle = size <= 0.5 ? fromQuarter : fromEnd;
}

} // namespace biarc

#endif
