import {allChannels, channelOf, files, readFiles, wholeRange} from './files.js';
import {applyTheme} from './colours.js';
import {byId} from './element.js';
import {zoomAt} from './gestures.js';
import {dayText, startOfAll, timeText} from './clock.js';
import {listenToTabs, showEvents, showFacts, showFindings} from './lists.js';
import {showMessage} from './message.js';
import {shortSpan} from './number.js';
import {act, addChannels, rebuildPanels, refreshAll} from './panels.js';
import {prepareFrames, toggleFrames} from './frames.js';
import {report} from './report.js';
import {saveCsv, savePng, saveSvg} from './save.js';
import {forgetFile} from './samples.js';
import {change, fromHash, onChange, state} from './state.js';
import {showTree} from './tree.js';

const press = (id, isOn) => byId(id).setAttribute('aria-pressed', String(isOn));

/** What is shown, and what lies between the cursors. */
function showRange() {
  if (state.from === null) return;
  const [from, to] = act.window();
  const step = (to - from) / 1000;
  const unit = dayText(from);
  let text = `${timeText(from, step)} … ${timeText(to, step)} ${unit}  (${shortSpan(to - from)})`;
  if (state.cursors.length === 2) {
    const difference = state.cursors[1] - state.cursors[0];
    text += `   Δt ${shortSpan(difference)}`;
    if (difference !== 0) text += ` (${Number((1 / Math.abs(difference)).toPrecision(4))} Hz)`;
  }
  byId('range').textContent = text;
}

const toggles = {
  clock: () => change({isAbsolute: !state.isAbsolute}),
  steps: () => change({hasSteps: !state.hasSteps}),
  theme: () => change({theme: document.documentElement.dataset.theme === 'dark' ? 'light' : 'dark'}),
  measure: () => {
    const isOn = byId('measure').getAttribute('aria-pressed') !== 'true';
    press('measure', isOn);
    change({cursors: isOn ? state.cursors : []});
  },
};

function zoom(factor) {
  const [from, to] = act.window();
  const [only] = state.cursors;
  zoomAt(act, only > from && only < to ? only : (from + to) / 2, factor);
}

function move(part) {
  const [from, to] = act.window();
  act.setWindow(from + part * (to - from), to + part * (to - from));
}

function moveCursor(part) {
  if (state.cursors.length === 0) return;
  const [from, to] = act.window();
  const cursors = [...state.cursors];
  cursors[cursors.length - 1] += part * (to - from);
  change({cursors});
}

const keys = {
  'ArrowLeft': (event) => (event.shiftKey ? moveCursor(-0.005) : move(-0.1)),
  'ArrowRight': (event) => (event.shiftKey ? moveCursor(0.005) : move(0.1)),
  'ArrowUp': () => zoom(0.7),
  'ArrowDown': () => zoom(1 / 0.7),
  '+': () => zoom(0.5),
  '=': () => zoom(0.5),
  '-': () => zoom(2),
  '0': act.whole,
  '/': () => byId('search').focus(),
  't': toggles.clock,
  's': toggles.steps,
  'd': toggles.theme,
  'm': toggles.measure,
  'f': toggleFrames,
  'Escape': () => change({cursors: []}),
};

function listenToKeys() {
  document.addEventListener('keydown', (event) => {
    if (event.ctrlKey || event.metaKey || event.altKey) return;
    if (event.target.matches('input, textarea')) {
      if (event.key === 'Escape') event.target.blur();
      return;
    }
    // Arrows scroll lists that have the focus.
    if (event.key.startsWith('Arrow') && event.target.closest('#side, #frames')) return;
    const work = keys[event.key];
    if (!work) return;
    event.preventDefault();
    work(event);
  });
}

function listenToButtons() {
  byId('whole').addEventListener('click', act.whole);
  byId('zoom-in').addEventListener('click', () => zoom(0.5));
  byId('zoom-out').addEventListener('click', () => zoom(2));
  byId('absolute').addEventListener('click', toggles.clock);
  byId('steps').addEventListener('click', toggles.steps);
  byId('measure').addEventListener('click', toggles.measure);
  byId('theme').addEventListener('click', toggles.theme);
  byId('save-png').addEventListener('click', savePng);
  byId('save-svg').addEventListener('click', saveSvg);
  byId('save-csv').addEventListener('click', saveCsv);
}

function showLists() {
  showTree();
  showFacts();
  showEvents();
  showFindings();
  prepareFrames();
}

/** The panels without channels that are in no file. */
const knownPanels = () =>
  state.panels.map((ids) => ids.filter(channelOf)).filter((ids) => ids.length);

/** A recording that grows is followed where the end of it was shown. */
async function follow() {
  if (document.hidden) return;
  try {
    const before = wholeRange(state.shifts);
    const changed = await readFiles();
    if (changed.length === 0) return;
    changed.forEach(forgetFile);
    const known = knownPanels();
    if (known.flat().length < state.panels.flat().length) change({panels: known});
    showLists();
    const [from, to] = wholeRange(state.shifts);
    const isAtEnd = Math.abs(state.to - before[1]) <= 1e-9 * Math.abs(before[1]) || state.to >= before[1];
    const isWhole = isAtEnd && state.from <= before[0];
    if (isWhole) change({from, to});
    else if (isAtEnd) change({from: state.from + to - before[1], to: state.to + to - before[1]});
    refreshAll();
  } catch (error) {
    showMessage(`mdf view does not answer: ${error.message}`);
  }
}

onChange((names) => {
  if (names.has('theme')) showTree();
  if (names.has('shifts')) {
    showEvents();
    showFacts();
  }
  press('absolute', state.isAbsolute);
  press('steps', state.hasSteps);
  showRange();
});

/** A report shows all of its channels at first, but for very many. */
function beginReport() {
  const most = 64;
  byId('name').textContent = report.title;
  document.title = report.title;
  if (location.hash.length > 1) return;
  Object.assign(state, {isAbsolute: report.clock, hasSteps: report.steps});
  addChannels([...allChannels()].slice(0, most).map(({id}) => id));
}

async function start() {
  fromHash(location.hash);
  applyTheme();
  listenToTabs();
  listenToKeys();
  listenToButtons();
  await readFiles();
  document.title = `${files.map((file) => file.info.file.replace(/^.*\//, '')).join(', ')} – mdf view`;
  if (report) beginReport();
  byId('absolute').disabled = startOfAll() === null;
  state.panels = knownPanels();
  if (state.from === null) [state.from, state.to] = wholeRange(state.shifts);
  if (state.cursors.length === 2) press('measure', true);
  showLists();
  change({});
  rebuildPanels();
  if (!report) setInterval(follow, 2000);
}

start().catch((error) => showMessage(error.message));
