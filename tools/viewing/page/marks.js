import {files} from './files.js';
import {styleColour} from './colours.js';
import {state} from './state.js';

/** The events that stand at a time: [time, name]. */
export function eventTimes() {
  return files.flatMap((file, number) => file.events
      .filter((event) => event.unit === 's')
      .map((event) => [event.position + (state.shifts[number] ?? 0), event.name || event.type]));
}

function line(plot, time, colour, dash) {
  const {ctx, bbox} = plot;
  const x = Math.round(plot.valToPos(time, 'x', true));
  if (x < bbox.left || x > bbox.left + bbox.width) return null;
  ctx.strokeStyle = colour;
  ctx.lineWidth = devicePixelRatio;
  ctx.setLineDash(dash);
  ctx.beginPath();
  ctx.moveTo(x, bbox.top);
  ctx.lineTo(x, bbox.top + bbox.height);
  ctx.stroke();
  return x;
}

/** A text at a line, in a row from the top. */
function flag(plot, x, row, text, colour) {
  const {ctx, bbox} = plot;
  const ratio = devicePixelRatio;
  ctx.font = `${11 * ratio}px system-ui, sans-serif`;
  const shown = text.length > 24 ? `${text.slice(0, 23)}…` : text;
  const width = ctx.measureText(shown).width + 8 * ratio;
  ctx.fillStyle = colour;
  const top = bbox.top + row * 16 * ratio;
  ctx.fillRect(x, top, width, 15 * ratio);
  ctx.fillStyle = styleColour('--ground');
  ctx.textBaseline = 'middle';
  ctx.textAlign = 'left';
  ctx.fillText(shown, x + 4 * ratio, top + 8 * ratio);
}

/** Draws events as flags, and the cursors that were placed. */
export function drawMarks(plot) {
  const ratio = devicePixelRatio;
  plot.ctx.save();
  for (const [time, name] of eventTimes()) {
    const x = line(plot, time, styleColour('--event'), [4 * ratio, 3 * ratio]);
    if (x !== null) flag(plot, x, 0, name, styleColour('--event'));
  }
  state.cursors.forEach((time, place) => {
    const x = line(plot, time, styleColour('--accent'), []);
    if (x !== null) flag(plot, x, 1, 'AB'[place], styleColour('--accent'));
  });
  plot.ctx.restore();
}
