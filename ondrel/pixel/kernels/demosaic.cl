// Bayer demosaic by Patterned Pixel Grouping (Chuan-kai Lin, "Pixel Grouping for Color Filter Array Demosaicing",
// 2003), in two stages: first the green of every pixel, then red and blue from the differences to green. The input
// holds each sensor value in the channel of its own colour; its other channels are not read.
//
// Both stages leave a border of 2 pixels as it was. The second one reads the green that the first one wrote, of direct
// neighbours: pixels at a distance of 2 from an edge so depend on what the border of `out` held before.

// The colour that the sensor has at a pixel: 0 red, 1 green, 2 blue. `filters` is a Bayer word of two bits a pixel.
uint a0(uint filters, uint row, uint col)
{
    return (filters >> ((((row << 1) & 14u) | (col & 1u)) << 1)) & 3u;
}

// Hue transit: the value at the middle of three pixels in a row, where l1, l2, l3 are their values of a colour known at
// all three, and p1 and p3 the outer values of the colour sought. In between, the colour follows the known one; at a
// peak or in a flat place, it is the mean corrected by the curvature.
int b0(int l1, int l2, int l3, int p1, int p3)
{
    int d = l3 - l1;
    if (d == 0)
        d = 1;
    if ((l1 < l2 && l2 < l3) || (l3 < l2 && l2 < l1))
        return p1 + (int)((long)(p3 - p1) * (l2 - l1) / d); // the product takes 33 bits
    return ((p1 + p3) >> 1) + ((2 * l2 - l1 - l3) >> 2);
}

// Green.
__kernel void c0(uint w, uint h, uint filters, __global unsigned short* in, __global unsigned short* out)
{
    const uint id = (uint)get_global_id(0);
    if (id >= w * h)
        return;
    const uint x = id % w;
    const uint y = id / w;
    if (x < 2 || x >= w - 2 || y < 2 || y >= h - 2)
        return;
    const uint color = a0(filters, y, x);
    const size_t right = 4; // samples from a pixel to the next one
    const size_t down = (size_t)w * 4;
    const __global unsigned short* same = in + (size_t)id * 4 + color;
    const __global unsigned short* green = in + (size_t)id * 4 + 1;

    int value = *green;
    if (color != 1) {
        const int C = *same;
        const int N = *(green - down), N2 = *(same - 2 * down);
        const int E = *(green + right), E2 = *(same + 2 * right);
        const int W = *(green - right), W2 = *(same - 2 * right);
        const int S = *(green + down), S2 = *(same + 2 * down);
        const int vertical = (int)abs(N - S);
        const int horizontal = (int)abs(W - E);
        const int gradientN = 2 * (int)abs(C - N2) + vertical;
        const int gradientE = 2 * (int)abs(C - E2) + horizontal;
        const int gradientW = 2 * (int)abs(C - W2) + horizontal;
        const int gradientS = 2 * (int)abs(C - S2) + vertical;
        const int smallest = min(min(gradientN, gradientE), min(gradientW, gradientS));
        // On a tie the earliest of north, east, west, south.
        if (gradientN == smallest)
            value = (3 * N + S + C - N2) / 4;
        else if (gradientE == smallest)
            value = (3 * E + W + C - E2) / 4;
        else if (gradientW == smallest)
            value = (3 * W + E + C - W2) / 4;
        else
            value = (3 * S + N + C - S2) / 4;
        value = clamp(value, 0, 65535);
    }
    out[(size_t)id * 4 + 1] = (unsigned short)value;
    out[(size_t)id * 4 + 3] = 65535;
}

// Red and blue. Writes these two samples alone: other work items read the green beside them at the same time.
__kernel void d0(uint w, uint h, uint filters, __global unsigned short* in, __global unsigned short* out)
{
    const uint id = (uint)get_global_id(0);
    if (id >= w * h)
        return;
    const uint x = id % w;
    const uint y = id / w;
    if (x < 2 || x >= w - 2 || y < 2 || y >= h - 2)
        return;
    const uint color = a0(filters, y, x);
    const size_t right = 4;
    const size_t down = (size_t)w * 4;
    const __global unsigned short* sensor = in + (size_t)id * 4;
    const __global unsigned short* green = out + (size_t)id * 4 + 1;
    const int G = *green;

    int red, blue;
    if (color == 1) {
        const uint colorRight = a0(filters, y, x + 1);
        const __global unsigned short* beside = sensor + colorRight;
        const __global unsigned short* above = sensor + a0(filters, y - 1, x);
        const int horizontal = clamp(b0(*(green - right), G, *(green + right), *(beside - right), *(beside + right)),
                                     0, 65535);
        const int vertical = clamp(b0(*(green - down), G, *(green + down), *(above - down), *(above + down)),
                                   0, 65535);
        red = colorRight == 2 ? vertical : horizontal;
        blue = colorRight == 2 ? horizontal : vertical;
    } else {
        const __global unsigned short* same = sensor + color;
        const __global unsigned short* other = sensor + a0(filters, y - 1, x + 1);
        const int c = *same;
        const int oNE = *(other - down + right), oSW = *(other + down - right);
        const int oNW = *(other - down - right), oSE = *(other + down + right);
        const int gNE = *(green - down + right), gSW = *(green + down - right);
        const int gNW = *(green - down - right), gSE = *(green + down + right);
        const int risingGradient = (int)(abs(oNE - oSW) + abs(*(same - 2 * down + 2 * right) - c) +
                                         abs(c - *(same + 2 * down - 2 * right)) + abs(gNE - G) + abs(G - gSW));
        const int fallingGradient = (int)(abs(oNW - oSE) + abs(*(same - 2 * down - 2 * right) - c) +
                                          abs(c - *(same + 2 * down + 2 * right)) + abs(gNW - G) + abs(G - gSE));
        const int estimate = clamp(risingGradient < fallingGradient ? b0(gNE, G, gSW, oNE, oSW)
                                                                    : b0(gNW, G, gSE, oNW, oSE),
                                   0, 65535);
        red = color == 2 ? estimate : c;
        blue = color == 2 ? c : estimate;
    }
    out[(size_t)id * 4] = (unsigned short)red;
    out[(size_t)id * 4 + 2] = (unsigned short)blue;
}
