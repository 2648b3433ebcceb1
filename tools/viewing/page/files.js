import {askJson} from './api.js';

/** The files, as the program describes them. @type {Object[]} */
export const files = [];

/** Channels by their ids "file.table.column". */
const channels = new Map();

/** From where to where channels go that were fetched, by files. */
const ranges = new Map();

/** Takes from where to where a channel goes: where times fall, its group does not tell. */
export function widen(file, first, last) {
  if (!Number.isFinite(first) || !Number.isFinite(last)) return;
  const [from, to] = ranges.get(file) ?? [Infinity, -Infinity];
  ranges.set(file, [Math.min(from, first), Math.max(to, last)]);
}

/** A channel; undefined where there is none. */
export const channelOf = (id) => channels.get(id);
export const allChannels = () => channels.values();

function addFile(file, number) {
  ranges.delete(number);
  for (const id of [...channels.keys()]) {
    if (id.startsWith(`${number}.`)) channels.delete(id);
  }
  file.tables.forEach((table, tableNumber) => table.columns.forEach((column, columnNumber) => {
    const id = `${number}.${tableNumber}.${columnNumber}`;
    const isMaster = table.has_master && columnNumber === 0;
    channels.set(id, {id, file: number, table: tableNumber, column: columnNumber, isMaster,
                      name: column.name, unit: column.unit, isText: column.text,
                      group: table.name || `group ${table.group}`,
                      fileName: file.info.file.replace(/^.*\//, '')});
  }));
}

/** Reads what is in all files, or in those that have changed; says which. */
export async function readFiles() {
  const {revisions} = await askJson('revisions');
  const changed = [];
  for (let number = 0; number < revisions.length; ++number) {
    if (files[number]?.revision === revisions[number]) continue;
    files[number] = await askJson('file', {file: number});
    changed.push(number);
    addFile(files[number], number);
  }
  return changed;
}

/** How a channel is called where others have its name, too. */
export function fullName(channel) {
  return [...allChannels()].some((other) => other.name === channel.name && other.id !== channel.id) ?
      (files.length > 1 ? `${channel.name} (${channel.fileName}, ${channel.group})` :
                          `${channel.name} (${channel.group})`) :
      channel.name;
}

/** From where to where a file goes: [from, to] of its groups. A group without times goes over its records. */
function rangesOf(file, number) {
  const {groups} = file.info;
  const spans = groups.filter(({span}) => span).map(({span}) => [span.from, span.to]);
  const untimed = file.tables.filter((table) => !table.has_master && !table.master)
      .map((table) => groups.find(({group}) => group === table.group))
      .filter((group) => group?.records > 0 && !group.span).map(({records}) => [0, records - 1]);
  return [...spans, ...untimed, ...(ranges.has(number) ? [ranges.get(number)] : [])];
}

/** From where to where the recordings go, shifted. */
export function wholeRange(shifts) {
  let [from, to] = [Infinity, -Infinity];
  files.forEach((file, number) => {
    const shift = shifts[number] ?? 0;
    for (const [first, last] of rangesOf(file, number)) {
      from = Math.min(from, first + shift);
      to = Math.max(to, last + shift);
    }
  });
  if (from < to) return [from, to];
  if (!Number.isFinite(from)) return [0, 1];
  const around = Math.max(0.5, Math.abs(from) * 1e-9);
  return [from - around, from + around];
}
