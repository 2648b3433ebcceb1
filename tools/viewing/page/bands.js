import {bandColour, styleColour} from './colours.js';
import {bandText, samplesOf} from './samples.js';

/** How high a text channel's band is, in pixels of the page. */
export const laneHeight = 24;

/** The bands of a text channel as rectangles: [left, right, text, code] in pixels of the plot. */
export function bandBoxes(plot, id, toPixels) {
  const data = samplesOf(id);
  if (!data) return [];
  const [low, high] = [plot.scales.x.min, plot.scales.x.max];
  const end = data.last ?? high;
  return data.runs.map(([time, code], place) => {
    const next = data.runs[place + 1]?.[0] ?? Math.max(end, time);
    return [time, next, code];
  }).filter(([from, to, code]) => to >= low && from <= high && code !== -1).map(([from, to, code]) => [
    toPixels(Math.max(from, low)), toPixels(Math.min(to, high)), bandText(data, code),
    code === -2 ? -2 : data.texts[code][0]]);
}

/** Draws text channels at the foot of a plot, one above the other. */
export function drawBands(plot, ids) {
  const {ctx, bbox} = plot;
  const ratio = devicePixelRatio;
  const height = laneHeight * ratio;
  ctx.save();
  ctx.beginPath();
  ctx.rect(bbox.left, bbox.top, bbox.width, bbox.height);
  ctx.clip();
  ctx.font = `${12 * ratio}px system-ui, sans-serif`;
  ctx.textBaseline = 'middle';
  ctx.textAlign = 'left';
  ids.forEach((id, lane) => {
    const top = bbox.top + bbox.height - (ids.length - lane) * height + 2 * ratio;
    const boxes = bandBoxes(plot, id, (time) => plot.valToPos(time, 'x', true));
    for (const box of boxes) drawBox(ctx, box, top, height - 4 * ratio, ratio);
  });
  ctx.restore();
}

function drawBox(ctx, [left, right, text, code], top, height, ratio) {
  const width = Math.max(ratio, right - left - ratio);
  ctx.fillStyle = code === -2 ? styleColour('--ink-faint') : bandColour(code);
  ctx.fillRect(left, top, width, height);
  if (width < 24 * ratio) return;
  ctx.fillStyle = styleColour('--ink');
  ctx.save();
  ctx.beginPath();
  ctx.rect(left, top, width - 3 * ratio, height);
  ctx.clip();
  ctx.fillText(text, left + 6 * ratio, top + height / 2);
  ctx.restore();
}
