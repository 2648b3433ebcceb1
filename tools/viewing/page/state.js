/**
 * What the page shows. It stands in the address after "#", so that a bookmark comes back to it.
 * Panels are lists of channels "file.table.column".
 */
export const state = {
  panels: [],
  from: null,
  to: null,
  cursors: [],
  shifts: {},
  isAbsolute: false,
  hasSteps: false,
  theme: null,
};

const listeners = new Set();

/** Calls back after each change, with the names of what has changed. */
export function onChange(listener) {
  listeners.add(listener);
}

/** Changes the state, the address, and whatever listens. */
export function change(changes) {
  Object.assign(state, changes);
  const names = new Set(Object.keys(changes));
  for (const listener of listeners) listener(names);
  writeSoon();
}

let timer = 0;
function writeSoon() {
  clearTimeout(timer);
  timer = setTimeout(() => history.replaceState(null, '', `#${toHash()}`), 200);
}

/** The state as it stands in the address. */
export function toHash() {
  const parts = new URLSearchParams();
  if (state.panels.length) parts.set('p', state.panels.map((panel) => panel.join(',')).join(';'));
  if (state.from !== null) parts.set('x', `${state.from},${state.to}`);
  if (state.cursors.length) parts.set('c', state.cursors.join(','));
  const shifts = Object.entries(state.shifts).filter(([, shift]) => shift !== 0);
  if (shifts.length) parts.set('s', shifts.map(([file, shift]) => `${file}:${shift}`).join(','));
  if (state.isAbsolute) parts.set('clock', '1');
  if (state.hasSteps) parts.set('steps', '1');
  if (state.theme) parts.set('theme', state.theme);
  return parts.toString();
}

const numbers = (text) => (text ?? '').split(',').map(Number).filter(Number.isFinite);

/** Takes the state from the address; what makes no sense there is left out. */
export function fromHash(hash) {
  const parts = new URLSearchParams(hash.replace(/^#/, ''));
  const panels = (parts.get('p') ?? '').split(';').map(
      (panel) => panel.split(',').filter((id) => /^\d+\.\d+\.\d+$/.test(id)));
  state.panels = panels.filter((panel) => panel.length);
  const [from, to] = parts.has('x') ? numbers(parts.get('x')) : [];
  [state.from, state.to] = from < to ? [from, to] : [null, null];
  state.cursors = parts.has('c') ? numbers(parts.get('c')).slice(0, 2) : [];
  state.shifts = {};
  for (const [, file, shift] of (parts.get('s') ?? '').matchAll(/(\d+):([-+.e\d]+)/g)) {
    if (Number.isFinite(Number(shift))) state.shifts[file] = Number(shift);
  }
  state.isAbsolute = parts.has('clock');
  state.hasSteps = parts.has('steps');
  state.theme = ['dark', 'light'].includes(parts.get('theme')) ? parts.get('theme') : null;
}
