import {files} from './files.js';
import {state} from './state.js';

const pad = (number, width = 2) => String(number).padStart(width, '0');

/** When the first file was started, in seconds since 1970; null where it does not say so. */
export const startOfAll = () => files[0]?.start ?? null;

/** As many decimal places as tell neighbours apart, one more for steps such as 0.25. */
function decimalsFor(step) {
  const decimals = Math.max(0, Math.min(9, Math.ceil(-Math.log10(step || 1) - 1e-9)));
  const steps = step * 10 ** decimals;
  return decimals + (Math.abs(steps - Math.round(steps)) > 1e-6 ? 1 : 0);
}

/** A time on the axis, as precise as a step asks for. */
export function timeText(seconds, step = 1e-3) {
  const start = startOfAll();
  if (!state.isAbsolute || start === null) {
    return `${Number(seconds.toFixed(decimalsFor(step)))}`;
  }
  const decimals = decimalsFor(step);
  const all = start + seconds;
  const date = new Date(Math.floor(all) * 1000);
  const fraction = (all - Math.floor(all)).toFixed(decimals).slice(1);
  return `${pad(date.getUTCHours())}:${pad(date.getUTCMinutes())}:${pad(date.getUTCSeconds())}${fraction}`;
}

/** The day of a time, for the axis' title. */
export function dayText(seconds) {
  const start = startOfAll();
  if (!state.isAbsolute || start === null) return 's';
  return new Date((start + seconds) * 1000).toISOString().slice(0, 10);
}
