/**
 * Lays curves with points of their own over one x, as uPlot wants them: null is a gap, undefined a
 * place where another curve has a point. Points of one curve with the same x stay apart.
 * @param {{x: ArrayLike<number>, y: ArrayLike<number>}[]} curves x does not fall; y is NaN for gaps
 */
export function joinCurves(curves) {
  if (curves.length === 0) return [[]];
  const at = curves.map(() => 0);
  const x = [];
  const ys = curves.map(() => []);
  for (;;) {
    let next = Infinity;
    curves.forEach((curve, i) => {
      if (at[i] < curve.x.length && curve.x[at[i]] < next) next = curve.x[at[i]];
    });
    if (next === Infinity) return [x, ...ys];
    x.push(next);
    curves.forEach((curve, i) => {
      if (at[i] < curve.x.length && curve.x[at[i]] === next) {
        const y = curve.y[at[i]++];
        ys[i].push(Number.isNaN(y) ? null : y);
      } else {
        ys[i].push(undefined);
      }
    });
  }
}
