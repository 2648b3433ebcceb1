const prefixes = [[1e12, 'T'], [1e9, 'G'], [1e6, 'M'], [1e3, 'k']];

/** A number in few characters, with a prefix where it is large: "25 G", "0.004". */
export function shortNumber(number) {
  if (!Number.isFinite(number)) return '–';
  const size = Math.abs(number);
  if (size >= 1e15 || (size > 0 && size < 1e-4)) return number.toExponential(3);
  for (const [factor, letter] of prefixes) {
    if (size >= factor && size >= 1e5) return `${Number((number / factor).toPrecision(5))} ${letter}`;
  }
  return String(Number(number.toPrecision(6)));
}

/** Seconds as people say them: "12.5 s", "0.25 ms", "1:02:03". */
export function shortSpan(seconds) {
  const size = Math.abs(seconds);
  if (size === 0) return '0 s';
  if (size < 1e-6) return `${Number((seconds * 1e9).toPrecision(4))} ns`;
  if (size < 1e-3) return `${Number((seconds * 1e6).toPrecision(4))} µs`;
  if (size < 1) return `${Number((seconds * 1e3).toPrecision(4))} ms`;
  return `${Number(seconds.toPrecision(6))} s`;
}
