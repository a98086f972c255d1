#pragma once
// JpegDct: the forward DCT of eight values, by the flow graph of Arai, Agui and Nakajima: five
// multiplications, and outputs that prepare_quant_tables scales. A value is a number, or a vector of
// numbers from as many lines of a block. The order of the operations is fixed, so that every machine
// rounds alike.

template <typename Value>
[[gnu::always_inline]] inline void transformLine(Value (&s)[8]) {
    const Value sum07 = s[0] + s[7];
    const Value sum16 = s[1] + s[6];
    const Value sum25 = s[2] + s[5];
    const Value sum34 = s[3] + s[4];
    const Value difference07 = s[0] - s[7];
    const Value difference16 = s[1] - s[6];
    const Value difference25 = s[2] - s[5];
    const Value difference34 = s[3] - s[4];

    const Value outer = sum07 + sum34;
    const Value inner = sum16 + sum25;
    const Value outerSlope = sum07 - sum34;
    const Value innerSlope = sum16 - sum25;
    const Value evenRotated = (innerSlope + outerSlope) * 0.707106781f;
    s[0] = outer + inner;
    s[4] = outer - inner;
    s[2] = outerSlope + evenRotated;
    s[6] = outerSlope - evenRotated;

    const Value low = difference34 + difference25;
    const Value middle = difference25 + difference16;
    const Value high = difference16 + difference07;
    const Value rotation = (low - high) * 0.382683433f;
    const Value lowRotated = low * 0.541196100f + rotation;
    const Value highRotated = high * 1.306562965f + rotation;
    const Value middleRotated = middle * 0.707106781f;
    const Value above = difference07 + middleRotated;
    const Value below = difference07 - middleRotated;
    s[5] = below + lowRotated;
    s[3] = below - lowRotated;
    s[1] = above + highRotated;
    s[7] = above - highRotated;
}
