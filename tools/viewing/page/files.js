import {askJson} from './api.js';

/** The files, as the program describes them. @type {Object[]} */
export const files = [];

/** Channels by their ids "file.table.column". */
const channels = new Map();

/** A channel; undefined where there is none. */
export const channelOf = (id) => channels.get(id);
export const allChannels = () => channels.values();

function addFile(file, number) {
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

/** From where to where the recordings go, shifted. */
export function wholeRange(shifts) {
  let [from, to] = [Infinity, -Infinity];
  files.forEach((file, number) => {
    const shift = shifts[number] ?? 0;
    for (const {span} of file.info.groups) {
      if (!span) continue;
      from = Math.min(from, span.from + shift);
      to = Math.max(to, span.to + shift);
    }
  });
  return from < to ? [from, to] : [Number.isFinite(from) ? from - 0.5 : 0,
                                   Number.isFinite(from) ? from + 0.5 : 1];
}
