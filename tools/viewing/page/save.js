import {askText} from './api.js';
import {channelOf, files} from './files.js';
import {pictureOf} from './picture.js';
import {showMessage} from './message.js';
import {allPanels} from './panels.js';
import {state} from './state.js';

function save(name, blob) {
  const link = document.createElement('a');
  link.href = URL.createObjectURL(blob);
  link.download = name;
  link.click();
  setTimeout(() => URL.revokeObjectURL(link.href), 10000);
}

const baseName = () => (files[0]?.info.file ?? 'view').replace(/^.*\//, '').replace(/\.[^.]*$/, '');

const svgBlob = () => new Blob([pictureOf(allPanels())], {type: 'image/svg+xml'});

export function saveSvg() {
  save(`${baseName()}.svg`, svgBlob());
}

export async function savePng() {
  const picture = new Image();
  picture.src = URL.createObjectURL(svgBlob());
  await picture.decode();
  const canvas = document.createElement('canvas');
  canvas.width = picture.width * 2;
  canvas.height = picture.height * 2;
  canvas.getContext('2d').drawImage(picture, 0, 0, canvas.width, canvas.height);
  URL.revokeObjectURL(picture.src);
  canvas.toBlob((blob) => save(`${baseName()}.png`, blob));
}

/** Saves the visible samples: a file for each table that channels are of. */
export async function saveCsv() {
  const tables = new Map();
  for (const id of state.panels.flat()) {
    const {file, table, column} = channelOf(id);
    const key = `${file}.${table}`;
    if (!tables.has(key)) tables.set(key, new Set());
    tables.get(key).add(column);
  }
  for (const [key, columns] of tables) {
    const [file, table] = key.split('.').map(Number);
    const shift = state.shifts[file] ?? 0;
    try {
      const text = await askText('csv', {file, table, columns: [...columns].join(','),
                                         from: state.from - shift, to: state.to - shift, pixels: 1});
      const ending = tables.size > 1 ? `-${key}` : '';
      save(`${baseName()}${ending}.csv`, new Blob([text], {type: 'text/csv'}));
    } catch (error) {
      showMessage(error.message);
    }
  }
}
