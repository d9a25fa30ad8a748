// Contrast of colours, as WCAG 2 defines it.

/** Red, green and blue of #rrggbb, linear in light, from 0 to 1. */
export const linear = (colour) =>
  [1, 3, 5]
    .map((at) => parseInt(colour.slice(at, at + 2), 16) / 255)
    .map((part) => (part <= 0.04045 ? part / 12.92 : ((part + 0.055) / 1.055) ** 2.4));

function luminance(colour) {
  const [red, green, blue] = linear(colour);
  return 0.2126 * red + 0.7152 * green + 0.0722 * blue;
}

/** From 1 for the same to 21 for black and white. */
export function contrast(one, other) {
  const [low, high] = [luminance(one), luminance(other)].sort((a, b) => a - b);
  return (high + 0.05) / (low + 0.05);
}
