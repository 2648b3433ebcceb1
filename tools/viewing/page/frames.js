import {askJson} from './api.js';
import {files} from './files.js';
import {byId, element} from './element.js';
import {change, onChange, state} from './state.js';
import {showMessage} from './message.js';

const region = byId('frames');
const button = byId('frames-button');

const fileWithFrames = () => files.findIndex((file) => file.has_frames);

/** Frames of buses in the window, as a table below the panels. */
export function prepareFrames() {
  button.hidden = fileWithFrames() < 0;
}

export function toggleFrames() {
  if (button.hidden) return;
  region.hidden = !region.hidden;
  button.setAttribute('aria-pressed', String(!region.hidden));
  if (!region.hidden) showFrames();
}

/** Identifiers as people write them: three hexadecimal digits, or eight for one of 29 bits. */
function shownCells(cells, columns) {
  const shown = [...cells];
  const id = columns.indexOf('id');
  if (cells[id] !== null) {
    const digits = cells[columns.indexOf('extended')] === '1' ? 8 : 3;
    shown[id] = Number(cells[id]).toString(16).toUpperCase().padStart(digits, '0');
  }
  return shown;
}

function rowOf(cells, shift) {
  const time = Number(cells[0]) + shift;
  const row = element('tr', {tabindex: '0', click: () => change({cursors: [time]}),
                             keydown: (event) => event.key === 'Enter' && change({cursors: [time]})},
      ...cells.map((cell) => element('td', {}, cell ?? '')));
  return row;
}

async function showFrames() {
  const file = fileWithFrames();
  const shift = state.shifts[file] ?? 0;
  try {
    const {columns, rows} = await askJson('frames', {file, from: state.from - shift});
    region.replaceChildren(element('table', {},
        element('thead', {}, element('tr', {}, ...columns.map((name) =>
          element('th', {scope: 'col'}, name)))),
        element('tbody', {}, ...rows.map((cells) => rowOf(shownCells(cells, columns), shift)))));
  } catch (error) {
    showMessage(error.message);
  }
}

let timer = 0;
onChange((names) => {
  if (region.hidden || !(names.has('from') || names.has('shifts'))) return;
  clearTimeout(timer);
  timer = setTimeout(showFrames, 250);
});
button.addEventListener('click', toggleFrames);
