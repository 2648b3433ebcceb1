import {channelOf, wholeRange} from './files.js';
import {byId} from './element.js';
import {listenTo} from './gestures.js';
import {Panel} from './panel.js';
import {exactValue, fetchSamples, roughValue, samplesOf, statisticsOf} from './samples.js';
import {change, onChange, state} from './state.js';
import {showMessage} from './message.js';

const area = byId('panels');
/** @type {Panel[]} */
let panels = [];
let hovered = null;

/** A legend that takes another line leaves less to its plot. */
const sizes = new ResizeObserver(() => panels.forEach((panel) => panel.resize()));

/** What gestures and keys do. */
export const act = {
  window: () => [state.from, state.to],
  setWindow: (from, to) => {
    if (from < to) change({from, to});
  },
  whole: () => {
    const [from, to] = wholeRange(state.shifts);
    change({from, to});
  },
  place: (time) => {
    if (state.cursors.length < 2 && (isMeasuring() || state.cursors.length === 0)) {
      change({cursors: [...state.cursors, time]});
    } else {
      const [a, b] = state.cursors;
      const isFirst = b === undefined || Math.abs(time - a) < Math.abs(time - b);
      change({cursors: b === undefined ? [time] : isFirst ? [time, b] : [a, time]});
    }
  },
};

const isMeasuring = () => byId('measure').getAttribute('aria-pressed') === 'true';

/** Panels with one more channel: in a panel, or where its unit is, or else in a new panel. */
function withChannel(panels, id, panel = null, most = Infinity) {
  const channel = channelOf(id);
  const next = panels.map((ids) => [...ids]);
  const fits = next.findIndex((ids) => ids.length < most && ids.every((other) =>
    channelOf(other).unit === channel.unit && channelOf(other).isText === channel.isText));
  const place = panel ?? fits;
  if (next[place]?.includes(id)) return next;
  if (place >= 0 && place < next.length) next[place].push(id);
  else next.push([id]);
  return next;
}

/** Adds a channel to a panel, or where its unit is. */
export function addChannel(id, panel = null) {
  change({panels: withChannel(state.panels, id, panel)});
}

/** Adds channels where their units are, as many to a panel as can be told apart. */
export function addChannels(ids) {
  const mostOfPanel = 8;
  state.panels = ids.reduce((all, id) => withChannel(all, id, null, mostOfPanel), state.panels);
}

export function removeChannel(id, panel = null) {
  const next = state.panels.map((ids, place) =>
    panel === null || place === panel ? ids.filter((other) => other !== id) : ids);
  change({panels: next.filter((ids) => ids.length)});
}

export const isShown = (id) => state.panels.some((ids) => ids.includes(id));

function shiftFileOf(ids, by) {
  const file = Math.max(...ids.map((id) => channelOf(id).file));
  change({shifts: {...state.shifts, [file]: (state.shifts[file] ?? 0) + by}});
}

function takeDrops(target, place) {
  target.addEventListener('dragover', (event) => {
    if (!event.dataTransfer.types.includes('text/x-channel')) return;
    event.preventDefault();
    target.classList.add('drop');
  });
  target.addEventListener('dragleave', () => target.classList.remove('drop'));
  target.addEventListener('drop', (event) => {
    target.classList.remove('drop');
    const id = event.dataTransfer.getData('text/x-channel');
    if (!channelOf(id)) return;
    event.preventDefault();
    event.stopPropagation();
    addChannel(id, place());
  });
}
takeDrops(byId('main'), () => state.panels.length);

function makePanel(ids, place, axes) {
  const panel = new Panel(ids, {
    axes,
    isLast: place === state.panels.length - 1,
    onRemove: (id) => removeChannel(id, place),
    onCursor: (plot) => hover(plot),
    onPlot: (plot) => listenTo(plot.over, {...act, shift: (by) => shiftFileOf(ids, by)}),
  });
  takeDrops(panel.element, () => place);
  return panel;
}

/** Makes all panels anew. */
function build() {
  panels.forEach((panel) => panel.plot?.destroy());
  const unitsOf = (ids) =>
    new Set(ids.map(channelOf).filter((channel) => !channel.isText).map(({unit}) => unit)).size;
  const axes = Math.max(1, ...state.panels.map(unitsOf));
  panels = state.panels.map((ids, place) => makePanel(ids, place, axes));
  area.replaceChildren(...panels.map((panel) => panel.element));
  panels.forEach((panel) => panel.element.classList.toggle('only-text', !panel.numbers.length));
  panels.forEach((panel) => panel.mount());
  sizes.disconnect();
  panels.forEach((panel) => sizes.observe(panel.body));
  byId('hint').hidden = panels.length > 0;
  area.hidden = panels.length === 0;
  fetchAll();
  showMarks();
}

/** Fetches what the window needs; a panel is drawn as soon as something is there. */
async function fetchAll() {
  if (state.from === null) return;
  await Promise.all(panels.map(async (panel) => {
    const pixels = Math.round(panel.width * Math.min(devicePixelRatio, 2));
    await Promise.all(panel.ids.map((id) => fetchOne(panel, id, pixels)));
  }));
  showSettled();
}

/** Panels may have been made anew before an answer comes. */
function showArrived(id) {
  for (const panel of panels) {
    if (panel.ids.includes(id)) panel.legend.showWaiting(id, false);
  }
  refreshSoon(true);
}

async function fetchOne(panel, id, pixels) {
  const [from, to] = act.window();
  if (!samplesOf(id)) panel.legend.showWaiting(id, true);
  try {
    if (await fetchSamples(id, from, to, pixels)) {
      showArrived(id);
      const [newFrom, newTo] = act.window();
      // The window has moved on meanwhile.
      if (newFrom !== from || newTo !== to) fetchSoon();
      showMarks();
    }
  } catch (error) {
    showArrived(id);
    showMessage(`${channelOf(id)?.name}: ${error.message}`);
  }
}

let fetching = 0;
function fetchSoon() {
  clearTimeout(fetching);
  fetching = setTimeout(fetchAll, 30);
}

let settling = 0;
function showSettled() {
  clearTimeout(settling);
  settling = setTimeout(showStatistics, 150);
}

async function showStatistics() {
  const [from, to] = act.window();
  for (const panel of panels) {
    for (const id of panel.numbers) {
      try {
        const found = await statisticsOf(id, from, to);
        if (panels.includes(panel)) panel.legend.showStatistics(id, found);
      } catch {
        // Without these the page is as useful as before.
      }
    }
  }
}

/** The values at the cursors that were placed. */
async function showMarks() {
  const cursors = [...state.cursors];
  for (const panel of panels) {
    for (const id of panel.ids) {
      const values = await Promise.all(cursors.map((time) => exactValue(id, time).catch(() => null)));
      if (panels.includes(panel)) panel.legend.showMarks(id, values);
    }
  }
}

let looking = 0;
function hover(plot) {
  const time = plot.cursor.left >= 0 ? plot.posToVal(plot.cursor.left, 'x') : null;
  if (time === hovered) return;
  hovered = time;
  for (const panel of panels) {
    for (const id of panel.ids) panel.legend.showValue(id, time === null ? null : roughValue(id, time));
  }
  window.dispatchEvent(new CustomEvent('hover', {detail: time}));
  clearTimeout(looking);
  if (time !== null) looking = setTimeout(() => showExact(time), 120);
}

async function showExact(time) {
  for (const panel of panels) {
    for (const id of panel.ids) {
      const value = await exactValue(id, time).catch(() => undefined);
      if (hovered === time && value !== undefined && panels.includes(panel)) {
        panel.legend.showValue(id, value);
      }
    }
  }
}

let frame = 0;
function refreshSoon(hasNewData) {
  refreshSoon.isNew ||= hasNewData;
  cancelAnimationFrame(frame);
  frame = requestAnimationFrame(() => {
    panels.forEach((panel) => panel.refresh(refreshSoon.isNew));
    refreshSoon.isNew = false;
  });
}

/** Draws all again, and fetches what is missing. */
export function refreshAll() {
  refreshSoon(true);
  fetchSoon();
}

export const allPanels = () => panels;
export {build as rebuildPanels};

onChange((names) => {
  if (['panels', 'hasSteps', 'isAbsolute', 'theme'].some((name) => names.has(name))) return build();
  if (names.has('shifts')) refreshSoon(true);
  if (names.has('from') || names.has('shifts')) {
    refreshSoon(false);
    fetchSoon();
  }
  if (names.has('cursors')) {
    refreshSoon(false);
    showMarks();
  }
});
