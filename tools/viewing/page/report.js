import {NumberLevels, TextLevels, unpack} from './levels.js';
import {printed, tableText} from './csv.js';

/** What a page that needs no server has in it; null where the program serves the page. */
export const report = readReport();

function readReport() {
  const source = globalThis.document?.getElementById('report');
  return source ? JSON.parse(source.textContent) : null;
}

const blockOf = (number) => document.getElementsByClassName('block')[number].textContent;
const listOf = (packed) => unpack(packed, blockOf);
const groupLists = ['minimum', 'maximum', 'first', 'last', 'mean', 'squares', 'values', 'gaps'];

/** What was unpacked so far, by "file.table" and "file.table.column". */
const axes = new Map();
const levels = new Map();

function kept(map, key, make) {
  if (!map.has(key)) map.set(key, make());
  return map.get(key);
}

function axisOf(file, table) {
  return kept(axes, `${file}.${table}`, () => {
    const {width, lists: [times]} = report.samples[file][table];
    const begins = listOf(times[0]);
    return {width, begins, ends: width === 1 ? begins : listOf(times[1])};
  });
}

const columnsOf = (file, table) => report.files[file].tables[table].columns;

function makeLevels(file, table, column) {
  const {width, lists} = report.samples[file][table];
  const columns = columnsOf(file, table);
  const place = columns.slice(0, column).filter(({text}) => text === columns[column].text).length;
  if (columns[column].text) return new TextLevels(...lists[1 + place].map(listOf));
  if (width === 1) return new NumberLevels(axisOf(file, table), {numbers: listOf(lists[0][1 + place])});
  const first = 2 + place * groupLists.length;
  return new NumberLevels(axisOf(file, table), Object.fromEntries(
      groupLists.map((name, i) => [name, listOf(lists[0][first + i])])));
}

function levelsOf(file, table, column) {
  return kept(levels, `${file}.${table}.${column}`, () => makeLevels(file, table, column));
}

function spanOf(file, table) {
  const {begins, ends} = axisOf(file, table);
  return {first: begins[0] ?? -Infinity, last: ends.at(-1) ?? -Infinity};
}

function value({file, table, column, at}) {
  const found = levelsOf(file, table, column);
  const {text, single} = columnsOf(file, table)[column];
  if (text) {
    const shown = found.text(at);
    return shown === null ? null : {value: shown};
  }
  const sample = found.value(at);
  return sample?.value === undefined ? sample : {...sample, value: printed(sample.value, single)};
}

/** Answers questions as the program does. */
export const answers = {
  revisions: () => ({revisions: report.files.map(() => 0)}),
  file: ({file}) => report.files[file],
  value,
  statistics: ({file, table, column, from, to}) => levelsOf(file, table, column).statistics(from, to),
  bands: ({file, table, column, from, to, pixels}) =>
    ({...levelsOf(file, table, column).bands(from, to, pixels), ...spanOf(file, table)}),
  curve: ({file, table, column, from, to, pixels}) => {
    const {records, out_of_order: outOfOrder} = report.samples[file][table];
    return {...levelsOf(file, table, column).curve(from, to, pixels), ...spanOf(file, table), records, outOfOrder};
  },
  csv: ({file, table, columns, from, to}) => {
    const all = columnsOf(file, table);
    const chosen = columns.split(',').map((column) => ({...all[column], levels: levelsOf(file, table, Number(column))}));
    return tableText(report.files[file].tables[table].master, chosen, axisOf(file, table), from, to);
  },
};
