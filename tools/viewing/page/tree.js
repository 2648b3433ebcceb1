import {allChannels, channelOf, files} from './files.js';
import {byId, element} from './element.js';
import {addChannel, isShown, removeChannel} from './panels.js';
import {previewOf} from './previews.js';
import {shortNumber} from './number.js';
import {onChange} from './state.js';

/** A list shows so many channels at a time. */
const mostShown = 300;
const open = new Set();

function toggle(id) {
  if (isShown(id)) removeChannel(id);
  else addChannel(id);
}

function channelRow(channel) {
  const preview = element('canvas.preview', {width: 56, height: 18, 'aria-hidden': 'true'});
  const row = element('button.channel', {
    draggable: 'true',
    'data-channel': channel.id,
    'aria-pressed': String(isShown(channel.id)),
    click: () => toggle(channel.id),
    dragstart: (event) => {
      event.dataTransfer.setData('text/x-channel', channel.id);
      event.dataTransfer.effectAllowed = 'copy';
    },
  }, element('span.name', {}, channel.name), element('span.unit', {}, channel.unit), preview);
  previewOf(preview, channel);
  return element('li', {}, row);
}

function channelList(channels) {
  const list = element('ul', {});
  const showMore = (from) => {
    list.append(...channels.slice(from, from + mostShown).map(channelRow));
    const left = channels.length - from - mostShown;
    if (left <= 0) return;
    const more = element('li', {}, element('button.more', {click: () => {
      more.remove();
      showMore(from + mostShown);
    }}, `${left} more`));
    list.append(more);
  };
  showMore(0);
  return list;
}

function groupFacts(file, table) {
  const info = files[file].info.groups.find((each) => each.group === table.group);
  const parts = [`${table.columns.length} channels`];
  if (info?.records !== null && info) parts.push(`${shortNumber(info.records)} records`);
  if (info?.rate) parts.push(`${shortNumber(info.rate)}/${info.master_unit ?? ''}`);
  return parts.join(', ');
}

function groupSection(file, number, channels, isSearch) {
  const table = files[file].tables[number];
  const key = `${file}.${number}`;
  const fill = () => {
    if (details.open && details.children.length === 1) details.append(channelList(channels));
  };
  const details = element('details.group', {toggle: () => {
    if (details.open) open.add(key);
    else open.delete(key);
    fill();
  }}, element('summary', {}, element('span.name', {}, table.name || `group ${table.group}`),
      element('span.quiet', {}, groupFacts(file, table))));
  details.open = isSearch || open.has(key);
  fill();
  return details;
}

function matches(channel, words) {
  const text = `${channel.name} ${channel.unit} ${channel.group}`.toLowerCase();
  return words.every((word) => text.includes(word));
}

/** Shows the groups and channels whose names have what is searched for. */
export function showTree() {
  const words = byId('search').value.toLowerCase().split(/\s+/).filter(Boolean);
  const groups = new Map();
  let count = 0;
  for (const channel of allChannels()) {
    if (words.length && !matches(channel, words)) continue;
    ++count;
    const key = `${channel.file}.${channel.table}`;
    if (!groups.has(key)) groups.set(key, []);
    groups.get(key).push(channel);
  }
  if (open.size === 0 && groups.size > 0) open.add(groups.keys().next().value);
  const sections = files.map((file, number) => element('section', {},
      element('h2', {title: file.info.file}, file.info.file.replace(/^.*\//, '')),
      ...[...groups].filter(([key]) => key.startsWith(`${number}.`)).map(([key, channels]) =>
        groupSection(number, Number(key.split('.')[1]), channels, words.length > 0))));
  byId('tree').replaceChildren(...sections);
  byId('found').textContent = words.length ? `${count} of ${[...allChannels()].length} channels` : '';
}

onChange((names) => {
  if (!names.has('panels')) return;
  for (const row of document.querySelectorAll('button.channel')) {
    row.setAttribute('aria-pressed', String(isShown(row.dataset.channel)));
  }
});
byId('search').addEventListener('input', showTree);
byId('search').addEventListener('keydown', (event) => {
  if (event.key !== 'Enter') return;
  const first = document.querySelector('#tree details[open] button.channel');
  if (first && channelOf(first.dataset.channel)) toggle(first.dataset.channel);
});
