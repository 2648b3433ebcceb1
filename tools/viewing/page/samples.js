import {askCurve, askJson, parametersOf} from './api.js';
import {channelOf, wholeRange, widen} from './files.js';
import {shortNumber} from './number.js';
import {change, state} from './state.js';

/**
 * What was fetched of each channel. More than the window is asked for, so that it can be moved
 * while the next answer is on its way.
 */
const kept = new Map();
const shiftOf = (channel) => state.shifts[channel.file] ?? 0;

/** Forgets what was fetched of a file. */
export function forgetFile(file) {
  for (const id of [...kept.keys()]) {
    if (Number(id.split('.')[0]) === file) kept.delete(id);
  }
}

/** What is there of a channel, moved by the shift of its file; null before it was fetched. */
export function samplesOf(id) {
  const entry = kept.get(id);
  if (!entry?.data) return null;
  const shift = shiftOf(channelOf(id));
  if (entry.shift !== shift) {
    entry.shift = shift;
    entry.shifted = shift === 0 ? entry.data : moved(entry.data, shift);
  }
  return entry.shifted;
}

function moved(data, shift) {
  if (data.runs) return {...data, last: data.last + shift, runs: data.runs.map(([time, code]) => [time + shift, code])};
  return {...data, x: data.x.map((x) => x + shift)};
}

function isEnough(entry, from, to, pixels) {
  if (!entry?.data || entry.from > from || entry.to < to) return false;
  const isFine = (entry.to - entry.from) / entry.pixels <= 1.5 * (to - from) / pixels;
  return entry.data.isExact || isFine;
}

/**
 * Fetches what a window of so many pixels needs, unless it is there.
 * @returns {Promise<boolean>} whether there is something new
 */
export async function fetchSamples(id, from, to, pixels) {
  const channel = channelOf(id);
  const shift = shiftOf(channel);
  [from, to] = [from - shift, to - shift];
  const entry = kept.get(id);
  if (isEnough(entry, from, to, pixels) || entry?.isBusy) return false;
  const around = to - from;
  const wanted = {...entry, from: from - around, to: to + around, pixels: Math.min(3 * pixels, 12000)};
  const busy = {...entry, isBusy: true};
  kept.set(id, busy);
  try {
    const data = await fetchPart(channel, wanted);
    // The file may have changed meanwhile.
    if (kept.get(id) === busy) kept.set(id, {...wanted, data, shift: NaN, isBusy: false});
  } catch (error) {
    if (kept.get(id) === busy) kept.set(id, {...entry, isBusy: false});
    throw error;
  }
  showAllOf(channel.file, kept.get(id)?.data);
  return true;
}

/** Where all was shown, what a channel has beyond it is shown, too. */
function showAllOf(file, data) {
  const before = wholeRange(state.shifts);
  widen(file, data?.first, data?.last);
  const [from, to] = wholeRange(state.shifts);
  if (state.from === before[0] && state.to === before[1] && (from < before[0] || to > before[1])) {
    change({from, to});
  }
}

async function fetchPart(channel, {from, to, pixels}) {
  if (!channel.isText) return askCurve(channel, from, to, pixels);
  const bands = await askJson('bands', {...parametersOf(channel), from, to, pixels});
  // A run of a window that was asked for does not go on beyond it.
  return {...bands, last: Math.min(bands.last ?? to, to)};
}

/** The place of the last time that is not after another; -1 for none. */
export function placeAt(x, time) {
  let [low, high] = [0, x.length];
  while (low < high) {
    const middle = (low + high) >> 1;
    if (x[middle] <= time) low = middle + 1;
    else high = middle;
  }
  return low - 1;
}

/** What stands at a time, as far as it is on the page: a number, a text, or null. */
export function roughValue(id, time) {
  const data = samplesOf(id);
  if (!data) return null;
  if (data.runs) {
    const place = placeAt(data.runs.map(([start]) => start), time);
    return place < 0 ? null : bandText(data, data.runs[place][1]);
  }
  const place = placeAt(data.x, time);
  return place < 0 || Number.isNaN(data.y[place]) ? null : data.y[place];
}

/** The text of a run. */
export function bandText(data, code) {
  return code === -1 ? '' : code === -2 ? 'several' : data.texts[code][1];
}

/**
 * The sample up to a time, as the file has it. Where a report knows no more, a text with the lowest and
 * the highest that it may be.
 */
export async function exactValue(id, time) {
  const channel = channelOf(id);
  const found = await askJson('value', {...parametersOf(channel), at: time - shiftOf(channel)});
  if (!found) return null;
  if (found.minimum !== undefined) {
    return `${shortNumber(found.minimum)} … ${shortNumber(found.maximum)}${found.hasGaps ? ' or invalid' : ''}`;
  }
  return channel.isText ? found.value : found.value === '' ? null : Number(found.value);
}

/** Statistics of the samples from one time to another. */
export async function statisticsOf(id, from, to) {
  const channel = channelOf(id);
  const shift = shiftOf(channel);
  return askJson('statistics',
                 {...parametersOf(channel), from: from - shift, to: to - shift, pixels: 1});
}
